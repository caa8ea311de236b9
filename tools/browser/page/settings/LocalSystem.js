// LocalSystem: the television (OIPF DAE 7.3.3). A document has one.

const systemReaders = {
    deviceID: ['ILocalSystem.GetDeviceID', 'deviceId'],
    vendorName: ['ILocalSystem.GetVendorName', 'vendorName'],
    modelName: ['ILocalSystem.GetModelName', 'modelName'],
    familyName: ['ILocalSystem.GetFamilyName', 'familyName'],
    softwareVersion: ['ILocalSystem.GetSoftwareVersion', 'softwareVersion'],
    hardwareVersion: ['ILocalSystem.GetHardwareVersion', 'hardwareVersion'],
    serialNumber: ['ILocalSystem.GetSerialNumber', 'serialNumber'],
    pvrEnabled: ['ILocalSystem.GetPvrEnabled', 'enabled'],
    ciplusEnabled: ['ILocalSystem.GetCiplusEnabled', 'enabled', Boolean],
};

class LocalSystem extends EventTarget {
    #system = new Properties(this, '', systemReaders, {ofTask: true});

    static partOf(system) { return system.#system; }

    // A bit field; 1: recording on the television.
    get pvrSupport() { return this.pvrEnabled ? 1 : 0; }

    // The release of the standard that the objects follow: release 2, version 2.3.
    get releaseVersion() { return 2; }
    get majorVersion() { return 2; }
    get minorVersion() { return 3; }

    // A page runs only while the television is on.
    get systemReady() { return true; }
    get powerState() { return this.ON; }

    // The interface has nothing for the following.
    get oipfProfile() { return undefined; }
    get previousPowerState() { return undefined; }
    get timeCurrentPowerState() { return undefined; }
    get volume() { return undefined; }
    set volume(volume) {}
    get mute() { return undefined; }
    set mute(mute) {}
    get outputs() { return new Collection(fixed([])); }
    get networkInterfaces() { return new Collection(fixed([])); }
    get tuners() { return new Collection(fixed([])); }
    get tvStandardsSupported() { return 0; }
    get tvStandard() { return 0; }
    get startupInformation() { return undefined; }

    setScreenSize() { return false; }
    setTVStandard() { return false; }
    setPvrSupport() { return this.pvrSupport; }
    setPowerState() { return false; }
    setDigestCredentials() { return false; }
    clearDigestCredentials() { return false; }
    hasDigestCredentials() { return false; }
}
defineRead(LocalSystem, Object.keys(systemReaders), LocalSystem.partOf);
defineHandlers(LocalSystem, ['onPowerStateChange', 'onStartupInfoChange']);
makeEnumerable(LocalSystem);
defineConstants(LocalSystem, {
    OFF: 0, ON: 1, PASSIVE_STANDBY: 2, ACTIVE_STANDBY: 3, PASSIVE_STANDBY_HIBERNATE: 4, RESTART: 5, FACTORY_RESET: 6,
    STARTUP_URL_NONE: 0, STARTUP_URL_DHCP: 1, STARTUP_URL_TR069: 2, STARTUP_URL_PRECONFIGURED: 3, STARTUP_URL_OTHER: 9,
});

const localSystem = new LocalSystem();
