// application/oipfCapabilities (OIPF DAE 7.15.3).

class Capabilities extends EmbeddedObject {
    // null if the platform gives no XML.
    get xmlCapabilities() {
        const xml = askPlatform('ICapabilities.GetXmlCapabilities', {}, 'xml', '');
        const parsed = new DOMParser().parseFromString(xml, 'text/xml');
        return xml === '' || parsed.querySelector('parsererror') !== null ? null : parsed;
    }

    get extraSDVideoDecodes() { return askPlatform('ICapabilities.GetExtraSDVideoDecodes', {}, 'n', 0); }

    get extraHDVideoDecodes() { return askPlatform('ICapabilities.GetExtraHDVideoDecodes', {}, 'n', 0); }

    // The interface numbers capabilities as the platform likes, so the answer is found in the name of the terminal's
    // profile: a base profile and its fragments, such as OITF_HD_UIPROF+DVB_S+PVR.
    hasCapability(profileName) {
        const has = askPlatform('ICapabilities.GetTerminalCapability', {}, 'cap', '').split('+');
        const asked = String(profileName).split('+').filter((part) => part !== '');
        return asked.length > 0 && asked.every((part) => has.includes(part));
    }
}
embed('application/oipfCapabilities', Capabilities);
