// Channel: a service, in the channel list or defined by the page (OIPF DAE 7.13.11).

const kChannelConstants = {
    TYPE_TV: 0, TYPE_RADIO: 1, TYPE_OTHER: 2, TYPE_ALL: 128, TYPE_HBB_DATA: 256,
    ID_ANALOG: 0, ID_DVB_C: 10, ID_DVB_S: 11, ID_DVB_T: 12, ID_DVB_SI_DIRECT: 13, ID_DVB_C2: 14, ID_DVB_S2: 15,
    ID_DVB_T2: 16, ID_ISDB_C: 20, ID_ISDB_S: 21, ID_ISDB_T: 22, ID_ATSC_T: 30, ID_IPTV_SDS: 40, ID_IPTV_URI: 41,
};

// What names a channel. It is kept until the channel configuration changes, and read for a whole list at a time.
const channelIdentity = {
    channelType: ['IChannel.GetChannelType', 'channelType'],
    idType: ['IChannel.GetIdType', 'idType'],
    ccid: ['IChannel.GetCcid', 'ccid', orUndefined],
    onid: ['IChannel.GetOnid', 'onid'],
    nid: ['IChannel.GetNid', 'nid'],
    tsid: ['IChannel.GetTsid', 'tsid'],
    sid: ['IChannel.GetSid', 'sid'],
    name: ['IChannel.GetName', 'name'],
    majorChannel: ['IChannel.GetMajorChannel', 'majorChannel', orUndefined],
    minorChannel: ['IChannel.GetMinorChannel', 'minorChannel', orUndefined],
    terminalChannel: ['IChannel.GetTerminalChannel', 'terminalChannel', orUndefined],
    ipBroadcastID: ['IChannel.GetIpBroadcastID', 'ipBroadcastId', orUndefined],
};

// The rest, which changes without an event.
const channelState = {
    tunerID: ['IChannel.GetTunerID', 'tunerId', orUndefined],
    sourceID: ['IChannel.GetSourceID', 'sourceId'],
    freq: ['IChannel.GetFreq', 'freq'],
    cni: ['IChannel.GetCni', 'cni'],
    dsd: ['IChannel.GetDsd', 'dsd', orUndefined],
    favourite: ['IChannel.GetFavourite', 'favourite'],
    locked: ['IChannel.GetLocked', 'locked'],
    manualBlock: ['IChannel.GetManualBlock', 'manualBlock'],
    channelMaxBitRate: ['IChannel.GetChannelMaxBitRate', 'maxBitrate'],
    channelTTR: ['IChannel.GetChannelTTR', 'ttr'],
    recordable: ['IChannel.GetRecordable', 'recordable'],
    longName: ['IChannel.GetLongName', 'name', orUndefined],
    description: ['IChannel.GetDescription', 'description', orUndefined],
    authorised: ['IChannel.GetAuthorized', 'authorized'],
    hidden: ['IChannel.GetHidden', 'hidden'],
    logoURL: ['IChannel.GetLogoURL', 'url', orUndefined],
};

// Kinds of channels that have a property; the others have undefined.
const isDvbOrIsdb = (idType) => idType >= 10 && idType <= 22;
const isUri = (idType) => idType === kChannelConstants.ID_IPTV_URI;
const isSds = (idType) => idType === kChannelConstants.ID_IPTV_SDS;
const kindsWithProperty = {
    onid: (idType) => isDvbOrIsdb(idType) || isUri(idType),
    nid: isDvbOrIsdb,
    tsid: (idType) => isDvbOrIsdb(idType) || isUri(idType),
    sid: (idType) => isDvbOrIsdb(idType) || isUri(idType),
    sourceID: (idType) => idType === kChannelConstants.ID_ATSC_T,
    freq: (idType) => idType === kChannelConstants.ID_ANALOG,
    cni: (idType) => idType === kChannelConstants.ID_ANALOG,
    channelMaxBitRate: isSds,
    channelTTR: isSds,
};

class Channel {
    #identity = new Properties(this, 'channel', channelIdentity);
    #state = new Properties(this, 'channel', channelState, {ofTask: true});

    static identityOf(channel) { return channel.#identity; }

    static read(channel, name) {
        const applies = kindsWithProperty[name];
        if (applies && !applies(channel.#identity.get('idType'))) return undefined;
        return (name in channelIdentity ? channel.#identity : channel.#state).get(name);
    }

    // A write changes a channel that the page has defined. One of the channel list stays as it is, except for `hidden`.
    static write(channel, name, method, argument, value) {
        if (name !== 'hidden' && ChannelConfig.lists(channel)) return;
        if (!tellPlatform(method, {channel: handleOf(channel), [argument]: value})) return;
        channel.#identity.set(name, value);
        channel.#state.forget();
    }

    get tunerid() { return this.tunerID; }

    get favIDs() {
        return new StringCollection(fetchItems('IChannel.GetFavIDsNum', 'num', 'IChannel.GetFavIDsNameByIndex', 'name',
            {channel: handleOf(this)}, (name) => name) || []);
    }

    get genre() {
        return new StringCollection(fetchItems('IChannel.GetGenreNum', 'num', 'IChannel.GetGenreByIndex', 'genre',
            {channel: handleOf(this)}, (genre) => genre) || []);
    }

    set genre(strings) {
        if (ChannelConfig.lists(this)) return;
        const list = {channel: handleOf(this)};
        const genres = Array.from(strings || [], String);
        exchangeCalls([callOf('IChannel.SetGenreNum', {...list, num: genres.length}),
            ...genres.map((genre, index) => callOf('IChannel.SetGenreByIndex', {...list, index, genre}))]);
    }

    // The interface has no field for these two.
    get isHD() { return undefined; }
    get is3D() { return undefined; }

    getField(fieldId) {
        const args = {channel: handleOf(this), fieldId: String(fieldId)};
        return askPlatform('IChannel.GetField', args, 'field', undefined);
    }

    getLogo(width, height) {
        return askPlatform('IChannel.GetLogo', {channel: handleOf(this), width: width | 0, height: height | 0}, 'logo',
            null) || null;
    }
}

const channelWriters = {
    name: ['IChannel.SetName', 'name', String],
    longName: ['IChannel.SetLongName', 'name', String],
    description: ['IChannel.SetDescription', 'description', String],
    hidden: ['IChannel.SetHidden', 'hidden', Boolean],
    logoURL: ['IChannel.SetLogoURL', 'url', String],
};

for (const name of [...Object.keys(channelIdentity), ...Object.keys(channelState)]) {
    const [method, argument, convert] = channelWriters[name] || [];
    Object.defineProperty(Channel.prototype, name, {
        get() { return Channel.read(this, name); },
        set: method && function(value) { Channel.write(this, name, method, argument, convert(value)); },
        configurable: true,
    });
}
makeEnumerable(Channel);
defineConstants(Channel, kChannelConstants);

const channels = new ObjectsByHandle(Channel);

// Returns the channels with these handles. Their identities are read together when the first one is.
function channelsOf(list) {
    const found = list.map((handle) => channels.get(handle));
    readTogether(found.map(Channel.identityOf));
    return found;
}
