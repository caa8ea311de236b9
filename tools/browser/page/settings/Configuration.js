// Configuration: the user's preferences (OIPF DAE 7.3.2, TS 102 796 A.2.4). A document has one.

// Kept until an event reports a change.
const preferenceReaders = {
    preferredAudioLanguage: ['IConfiguration.GetPreferredAudioLanguage', 'languages'],
    preferredSubtitleLanguage: ['IConfiguration.GetPreferredSubtitleLanguage', 'languages'],
    preferredUILanguage: ['IConfiguration.GetPreferredUILanguage', 'languages'],
    subtitlesEnabled: ['IConfiguration.GetSubtitleEnable', 'enabled'],
    audioDescriptionEnabled: ['IConfiguration.GetAudioDescriptionEnable', 'enabled'],
};

// Those that change without an event.
const placeReaders = {
    countryId: ['IConfiguration.GetCountryId', 'countryId'],
    regionId: ['IConfiguration.GetRegionId', 'regionId'],
    dtt_network_ids: ['IConfiguration.GetDttNetworkIds', 'networkIds', (ids) => new IntegerCollection(ids)],
};

class Configuration {
    #preferences = new Properties(this, '', preferenceReaders);
    #place = new Properties(this, '', placeReaders, {ofTask: true});

    static read(configuration, name) {
        return (name in preferenceReaders ? configuration.#preferences : configuration.#place).get(name);
    }

    static write(configuration, name, method, args) {
        tellPlatform(method, args);
        Configuration.forget(configuration);
    }

    static forget(configuration) {
        configuration.#preferences.forget();
        configuration.#place.forget();
    }

    get deviceId() { return deviceIdOfOrigin(); }

    // The user is not asked: access is as the television's settings have it.
    requestAccessToDistinctiveIdentifier(callback) {
        setTimeout(() => callback(!deviceIdOfOrigin().startsWith('#')));
    }

    // The interface has nothing for the following.
    get timeShiftSynchronized() { return false; }
    get pvrPolicy() { return undefined; }
    get pvrSaveEpisodes() { return undefined; }
    get pvrSaveDays() { return undefined; }
    get pvrStartPadding() { return undefined; }
    get pvrEndPadding() { return undefined; }
    get preferredTimeShiftMode() { return 0; }
    getText() { return undefined; }
    setText() {}
}

const configurationWriters = {
    preferredAudioLanguage: (languages) => ['IConfiguration.SetPreferredAudioLanguage', {languages: String(languages)}],
    preferredSubtitleLanguage: (languages) =>
        ['IConfiguration.SetPreferredSubtitleLanguage', {languages: String(languages)}],
    preferredUILanguage: (languages) => ['IConfiguration.SetPreferredUILanguage', {languages: String(languages)}],
    countryId: (countryId) => ['IConfiguration.SetCountryId', {countryId: String(countryId)}],
    regionId: (regionId) => ['IConfiguration.SetRegionId', {regionId: regionId >>> 0}],
};

for (const name of [...Object.keys(preferenceReaders), ...Object.keys(placeReaders)]) {
    const writer = configurationWriters[name];
    Object.defineProperty(Configuration.prototype, name, {
        get() { return Configuration.read(this, name); },
        set: writer && function(value) { Configuration.write(this, name, ...writer(value)); },
        configurable: true,
    });
}
makeEnumerable(Configuration);

const configuration = new Configuration();

onPlatform('onConfigurationEvent', () => Configuration.forget(configuration));
