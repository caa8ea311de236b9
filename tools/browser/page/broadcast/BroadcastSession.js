// What a video/broadcast object uses of the platform: its handle, and the state that events keep up to date.

const kUnrealized = 0;
const kConnecting = 1;
const kPresenting = 2;
const kStopped = 3;

class BroadcastSession {
    constructor(object) {
        this.object = object;
        this.handle = 0;         // created when the page first uses the platform
        this.wasCreated = false;
        this.playState = kUnrealized;
        this.fullScreen = false;
        this.channel = 0;        // handle of the current channel; undefined: not known
        this.playSpeed = undefined;
        this.playPosition = undefined;
        this.recordingState = 0;
        this.programmes = new Fetched(() => fetchProgrammes(this));
    }

    // Returns whether the platform has an object for this one.
    create() {
        return this.handle !== 0 || this.createAgain();
    }

    // Calls a method that may change state and channel, and reads both in the same request. Its outcome is an event of
    // this object. Returns the method's results, or null if it failed.
    change(method, args) {
        if (!this.create()) return null;
        let [results, state, channel] = this.ask(method, args);
        // A platform that has been restarted does not know the handle.
        if (results === null && state === null && this.createAgain()) [results, state, channel] = this.ask(method, args);
        if (results !== null) asking = this;
        if (state !== null) this.enter(state.state);
        if (channel !== null) this.channel = channel.channel;
        return results;
    }

    ask(method, args) {
        const vb = this.handle;
        return exchangeCalls([callOf(method, {vb, ...args}), callOf('IVideoBroadcast.GetPlayState', {vb}),
            callOf('IVideoBroadcast.GetCurrentChannel', {vb})]);
    }

    createAgain() {
        this.handle = askPlatform('IVideoBroadcast.Create', {context: 1}, 'vb', 0);
        this.enter(kUnrealized);
        if (!this.handle) return false;
        // The restarted platform does not know the handles of channels either.
        if (this.wasCreated) {
            ChannelConfig.forget(channelConfig);
            fireLater(channelConfig, 'ChannelListUpdate');
        }
        this.wasCreated = true;
        followWindow(this);
        return true;
    }

    enter(playState) {
        if (playState !== this.playState) this.forget();
        this.playState = playState;
        using.delete(this);
        if (playState !== kUnrealized) using.add(this);
        const element = elements.get(this.object);
        if (element) pictureOf(element).style.background = playState === kStopped ? 'black' : '';
    }

    // What belongs to the channel is not known any more.
    forget() {
        this.programmes.forget();
        components.clear();
    }

    // Returns null while no channel is selected.
    currentChannel() {
        if (this.playState === kUnrealized) return null;
        if (this.channel === undefined) {
            this.channel = askPlatform('IVideoBroadcast.GetCurrentChannel', {vb: this.handle}, 'channel', undefined);
        }
        return channels.get(this.channel);
    }
}

// Events do not name the object that they belong to. They go to the one that waits for the outcome of its request, else
// to the one that uses the tuner.
let asking = null;
const using = new Set();

function sessionOfEvent() {
    return asking || Array.from(using).pop() || null;
}

// Calls `handle` with the session and the event's arguments.
function onBroadcast(event, handle) {
    onPlatform(event, (args) => {
        const session = sessionOfEvent();
        if (session !== null) handle(session, args);
    });
}

// Whether an event belongs to an object of another document, which was refused the tuner that this one uses.
function isOfAnother(session, state) {
    return session !== asking && state === kUnrealized &&
        askPlatform('IVideoBroadcast.GetPlayState', {vb: session.handle}, 'state', kUnrealized) !== kUnrealized;
}

// An event that was on its way when the page made a request reports a state that has passed. The state that was read
// with the request is later; if an event differs from it, the platform decides.
function stateAfterEvent(session, state) {
    if (session !== asking || state === session.playState) return state;
    return askPlatform('IVideoBroadcast.GetPlayState', {vb: session.handle}, 'state', state);
}

onBroadcast('onPlayStateChange', (session, {state, error}) => {
    if (isOfAnother(session, state)) return;
    const present = stateAfterEvent(session, state);
    if (present === state) asking = null;
    session.enter(present);
    if (present === kUnrealized) session.channel = 0;
    if (present === kConnecting) session.channel = undefined;
    fire(session.object, 'PlayStateChange', {state, error: orUndefined(error)});
});

onBroadcast('onChannelChangeSucceeded', (session, {channel}) => {
    session.channel = session === asking ? undefined : channel;
    session.forget();
    fire(session.object, 'ChannelChangeSucceeded', {channel: channels.get(channel)});
});

onBroadcast('onChannelChangeError', (session, {channel, errorState}) => {
    asking = null;
    fire(session.object, 'ChannelChangeError', {channel: channels.get(channel), errorState});
});
