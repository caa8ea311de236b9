// AVComponent: an audio, video or subtitle component (OIPF DAE 7.16.5.2 to 7.16.5.6).

const kComponentTypes = {COMPONENT_TYPE_VIDEO: 0, COMPONENT_TYPE_AUDIO: 1, COMPONENT_TYPE_SUBTITLE: 2};

const componentReaders = {
    componentTag: ['IAVComponent.GetComponentTag', 'componentTag'],
    pid: ['IAVComponent.GetPid', 'pid'],
    type: ['IAVComponent.GetType', 'type'],
    encoding: ['IAVComponent.GetEncoding', 'encoding'],
    encrypted: ['IAVComponent.GetEncrypted', 'encrypted'],
    label: ['IAVComponent.GetLabel', 'label', orUndefined],
    aspectRatio: ['IAVComponent.GetAspectRatio', 'aspectRatio', orUndefined],
    language: ['IAVComponent.GetLanguage', 'language'],
    audioDescription: ['IAVComponent.GetAudioDescription', 'audioDescription'],
    audioChannels: ['IAVComponent.GetAudioChannelNum', 'num'],
    hearingImpaired: ['IAVComponent.GetHearingImpaired', 'hearingImpaired'],
};

const componentProperties = new WeakMap();

class AVComponent {}
class AVVideoComponent extends AVComponent {}
class AVAudioComponent extends AVComponent {}
class AVSubtitleComponent extends AVComponent {}

const componentPart = (component) => componentProperties.get(component);
defineRead(AVComponent, ['componentTag', 'pid', 'type', 'encoding', 'encrypted', 'label'], componentPart);
defineRead(AVVideoComponent, ['aspectRatio'], componentPart);
defineRead(AVAudioComponent, ['language', 'audioDescription', 'audioChannels'], componentPart);
defineRead(AVSubtitleComponent, ['language', 'hearingImpaired'], componentPart);
for (const Class of [AVComponent, AVVideoComponent, AVAudioComponent, AVSubtitleComponent]) {
    defineConstants(Class, kComponentTypes);
}

const componentClasses = [AVVideoComponent, AVAudioComponent, AVSubtitleComponent];
const components = new Map();  // by handle

// Returns the components with these handles; reads the properties of those that are not known yet in one request.
function componentsOf(list) {
    const unknown = list.filter((handle) => !components.has(handle)).map((handle) => {
        const properties = new Properties(setHandle({}, handle), 'component', componentReaders);
        return {handle, properties};
    });
    if (unknown.length > 0) readProperties(unknown.map(({properties}) => properties));
    for (const {handle, properties} of unknown) {
        const component = new (componentClasses[properties.values.type] || AVComponent)();
        componentProperties.set(component, properties);
        components.set(handle, setHandle(component, handle));
    }
    return list.map((handle) => components.get(handle));
}

class AVComponentCollection extends Collection {
    constructor(list) {
        super(fixed(list));
    }
}
