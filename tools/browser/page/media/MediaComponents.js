// Components of the page's own media: the members of OIPF DAE 7.16.5.1 on <video> and <audio>, and their reports to the
// platform, whose menus select among them.

// A track of a media element as the standard's component.
function componentOfTrack(track, type, tag) {
    const base = {componentTag: tag, pid: undefined, type, encoding: '', encrypted: false};
    const language = track.language || '';
    if (type === kComponentTypes.COMPONENT_TYPE_VIDEO) return {...base, aspectRatio: undefined};
    if (type === kComponentTypes.COMPONENT_TYPE_AUDIO) {
        return {...base, language, audioDescription: track.kind === 'descriptions', audioChannels: undefined};
    }
    return {...base, language, hearingImpaired: track.kind === 'captions'};
}

const isActive = (track) => track.selected || track.enabled || track.mode === 'showing';

function activate(track, active) {
    if ('selected' in track) track.selected = active;
    else if ('enabled' in track) track.enabled = active;
    else track.mode = active ? 'showing' : 'disabled';
}

// Chromium always lists text tracks. It lists tracks of video and audio only if that is enabled; otherwise, one of each
// kind that the media has is assumed.
function tracksOf(media, type) {
    if (type === kComponentTypes.COMPONENT_TYPE_VIDEO) {
        return Array.from(media.videoTracks || (media.videoWidth > 0 ? [{selected: true}] : []));
    }
    if (type === kComponentTypes.COMPONENT_TYPE_AUDIO) {
        return Array.from(media.audioTracks || (media.readyState > 0 ? [{enabled: true}] : []));
    }
    return Array.from(media.textTracks).filter(({kind}) => kind === 'subtitles' || kind === 'captions');
}

const trackComponents = new WeakMap();  // track: component

function mediaComponents(media, type) {
    return tracksOf(media, type).map((track, index) => {
        if (!trackComponents.has(track)) trackComponents.set(track, componentOfTrack(track, type, index));
        return {track, component: trackComponents.get(track)};
    });
}

function allMediaComponents(media, componentType) {
    return kindsOf(componentType).flatMap((type) => mediaComponents(media, type));
}

function changeMediaComponent(media, componentOrType, active) {
    const isType = typeof componentOrType === 'number';
    const type = isType ? componentOrType : (componentOrType || {}).type;
    const list = allMediaComponents(media, type);
    list.forEach(({track, component}, index) => {
        const chosen = isType ? index === 0 : component === componentOrType;
        if (active) activate(track, chosen);
        else if (isType || component === componentOrType) activate(track, false);
    });
    reportMedia(media, type);
}

const mediaMembers = {
    getComponents(componentType) {
        return new AVComponentCollection(allMediaComponents(this, componentType).map(({component}) => component));
    },
    getCurrentActiveComponents(componentType) {
        return new AVComponentCollection(allMediaComponents(this, componentType)
            .filter(({track}) => isActive(track)).map(({component}) => component));
    },
    selectComponent(componentOrType) { changeMediaComponent(this, componentOrType, true); },
    unselectComponent(componentOrType) { changeMediaComponent(this, componentOrType, false); },
};
extendClass(HTMLMediaElement, mediaMembers);
for (const [name, value] of Object.entries(kComponentTypes)) {
    Object.defineProperty(HTMLMediaElement.prototype, name, {value, enumerable: true});
}
defineHandlers(HTMLMediaElement, ['onSelectedComponentChanged']);

// What has changed in a report has numbers that the platform defines; 0 stands for any change.
const kAnyChange = 0;

let reported = null;  // the media element that the platform knows

function reportMedia(media, type) {
    reported = media;
    const list = mediaComponents(media, type);
    const components = list.map(({track, component}) => ({actived: Boolean(isActive(track)),
        componentTag: component.componentTag, type, encoding: component.encoding, language: component.language || '',
        audioChannels: component.audioChannels || 0, hearingImpaired: Boolean(component.hearingImpaired),
        audioDescription: Boolean(component.audioDescription)}));
    tellPlatform('IAVControl.ComponentUpdate', {event: kAnyChange, type, components,
        currentIndex: list.findIndex(({track}) => isActive(track))});
}

function reportAll({target}) {
    if (target instanceof HTMLMediaElement) kindsOf().forEach((type) => reportMedia(target, type));
}

// Media that is not in the document reports nothing.
document.addEventListener('loadedmetadata', reportAll, true);
document.addEventListener('emptied', reportAll, true);

onPlatform('onComponentSelect', ({type, index}) => {
    const entry = reported && mediaComponents(reported, type)[index];
    if (!entry) return;
    changeMediaComponent(reported, entry.component, true);
    fire(reported, 'SelectedComponentChanged', {componentType: type});
});
