// oipfObjectFactory (OIPF DAE 7.1): objects without an <object> element of the page.

const factoryTypes = {
    createApplicationManagerObject: 'application/oipfApplicationManager',
    createCapabilitiesObject: 'application/oipfCapabilities',
    createConfigurationObject: 'application/oipfConfiguration',
    createParentalControlManagerObject: 'application/oipfParentalControlManager',
    createSearchManagerObject: 'application/oipfSearchManager',
};

class OipfObjectFactory {
    // Also the formats that a <video> element plays.
    isObjectSupported(mimeType) {
        const type = String(mimeType).trim().toLowerCase();
        return classesByType.has(type) || document.createElement('video').canPlayType(type) !== '';
    }

    createVideoBroadcastObject() {
        const element = document.createElement('object');
        element.setAttribute('type', 'video/broadcast');
        return element;
    }

    createChannelConfig() {
        return channelConfig;
    }
}

for (const [name, type] of Object.entries(factoryTypes)) {
    OipfObjectFactory.prototype[name] = {[name]() { return new (classesByType.get(type.toLowerCase()))(); }}[name];
}
makeEnumerable(OipfObjectFactory);
Object.defineProperty(window, 'oipfObjectFactory',
    {value: new OipfObjectFactory(), enumerable: true, writable: true, configurable: true});

// Debug output of an application (OIPF DAE 7.15.5).
Object.defineProperty(window, 'debug', {value(text) { console.debug(text); }, writable: true, configurable: true});
