// The A/V control object: <object type="video/mp4"> and the like (OIPF DAE 7.14, CEA-2014). A <video> element in it
// plays the content.

const kAvTypes = ['video/mp4', 'video/mpeg', 'video/webm', 'audio/mp4', 'audio/mpeg', 'audio/webm'];

const kAvStopped = 0;
const kAvPlaying = 1;
const kAvPaused = 2;
const kAvConnecting = 3;
const kAvBuffering = 4;
const kAvFinished = 5;
const kAvError = 6;

// Chromium's code of an error: the standard's.
const avErrors = {1: 2, 2: 1, 3: 4, 4: 0};

class AVControl extends EmbeddedObject {
    #video = document.createElement('video');
    #data = '';
    #playState = kAvStopped;
    #error = undefined;
    #fullScreen = false;

    constructor() {
        super();
        const states =
            {waiting: kAvBuffering, playing: kAvPlaying, pause: kAvPaused, ended: kAvFinished, error: kAvError};
        for (const [type, state] of Object.entries(states)) {
            this.#video.addEventListener(type, () => this.#follow(state));
        }
        this.#video.addEventListener('seeked', () => {
            fire(this, 'PlayPositionChanged', {position: this.playPosition});
        });
        this.#video.addEventListener('ratechange', () => fire(this, 'PlaySpeedChanged', {speed: this.speed}));
        this.#video.addEventListener('SelectedComponentChanged', ({componentType}) => {
            fire(this, 'SelectedComponentChanged', {componentType});
        });
        this.#video.style.cssText = 'width: 100%; height: 100%;';
    }

    // The <video> element also reports a pause at its end and after an error, and that it waits for its first data.
    #follow(state) {
        const over = this.#playState === kAvStopped || this.#playState === kAvError;
        const isPauseAtEnd = state === kAvPaused && this.#video.ended;
        const isStart = state === kAvBuffering && this.#video.readyState === 0;
        if (!over && !isPauseAtEnd && !isStart) this.#enter(state);
    }

    #enter(state) {
        if (state === this.#playState) return;
        this.#playState = state;
        this.#error = state === kAvError ? avErrors[(this.#video.error || {}).code] ?? 2 : undefined;
        fire(this, 'PlayStateChange', {state, error: this.#error});
    }

    get data() { return this.#data; }

    // Other content stops what is played.
    set data(url) {
        this.stop();
        this.#data = String(url) === '' ? '' : new URL(url, document.baseURI).href;
    }

    get playState() { return this.#playState; }
    get error() { return this.#error; }
    get fullScreen() { return this.#fullScreen; }
    get speed() { return this.#playState === kAvPlaying ? this.#video.playbackRate : 0; }

    // In milliseconds; undefined while it is not known.
    get playPosition() { return this.#video.readyState > 0 ? Math.round(this.#video.currentTime * 1000) : undefined; }
    get playTime() {
        return Number.isFinite(this.#video.duration) ? Math.round(this.#video.duration * 1000) : undefined;
    }

    // Speed 0 pauses; the default is 1.
    play(speed = 1) {
        if (this.#data === '' || speed < 0) return false;
        if (speed === 0) {
            this.#video.pause();
            return true;
        }
        const element = elements.get(this);
        if (element) pictureOf(element).append(this.#video);
        const starts = this.#playState === kAvStopped || this.#playState === kAvError;
        if (starts) this.#video.src = this.#data;
        this.#video.playbackRate = speed;
        this.#video.play().catch(() => {});  // the event "error" reports it
        if (starts) this.#enter(kAvConnecting);
        return true;
    }

    stop() {
        this.#video.pause();
        this.#video.removeAttribute('src');
        this.#video.load();
        this.#video.remove();
        this.#enter(kAvStopped);
        return true;
    }

    seek(position) {
        if (this.#video.readyState === 0 || !(position >= 0) || position > (this.playTime ?? Infinity)) return false;
        this.#video.currentTime = position / 1000;
        return true;
    }

    setVolume(volume) {
        if (!(volume >= 0 && volume <= 100)) return false;
        const changed = this.getVolume() !== volume;
        this.#video.volume = volume / 100;
        return changed;
    }

    getVolume() { return Math.round(this.#video.volume * 100); }

    setFullScreen(fullScreen) {
        if (this.#fullScreen === Boolean(fullScreen)) return;
        this.#fullScreen = Boolean(fullScreen);
        const element = elements.get(this);
        if (element) element.toggleAttribute('data-hbbtv-full-screen', this.#fullScreen);
        fire(this, 'FullScreenChange');
    }

    getComponents(componentType) { return this.#video.getComponents(componentType); }
    getCurrentActiveComponents(componentType) { return this.#video.getCurrentActiveComponents(componentType); }
    selectComponent(componentOrType) { this.#video.selectComponent(componentOrType); }
    unselectComponent(componentOrType) { this.#video.unselectComponent(componentOrType); }
}
defineConstants(AVControl, kComponentTypes);
defineHandlers(AVControl, ['onPlayStateChange', 'onPlayPositionChanged', 'onPlaySpeedChanged', 'onFullScreenChange',
    'onSelectedComponentChanged']);
for (const type of kAvTypes) embed(type, AVControl);

// Chromium would show the content of the attribute itself, so the object takes it over.
function takeData(element) {
    const url = element.getAttribute('data');
    element.removeAttribute('data');
    implementationOf(element).data = url;
}

const kAvObjects = kAvTypes.map((type) => `object[type="${type}" i]`).join();

function findAvObjects(node) {
    if (!(node instanceof Element)) return;
    const found = [node, ...node.querySelectorAll(kAvObjects)].filter((element) => element.matches(kAvObjects));
    for (const element of found) {
        pictureOf(element);
        if (element.hasAttribute('data')) takeData(element);
    }
}

new MutationObserver((changes) => {
    for (const {type, target, addedNodes} of changes) {
        (type === 'attributes' ? [target] : addedNodes).forEach(findAvObjects);
    }
}).observe(document, {childList: true, subtree: true, attributes: true, attributeFilter: ['type', 'data']});

const avLooks = new CSSStyleSheet();
avLooks.replaceSync(`:is(${kAvObjects}) > :not([data-hbbtv-picture]) { display: none !important; }
:where(${kAvObjects}) { display: inline-block; color: transparent; }`);
document.adoptedStyleSheets = [...document.adoptedStyleSheets, avLooks];
