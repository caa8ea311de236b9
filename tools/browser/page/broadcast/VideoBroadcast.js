// The video/broadcast object (OIPF DAE 7.13.1): state and channel. Its other members are in the files
// VideoBroadcast*.js.

const sessions = new WeakMap();

function sessionOf(object) {
    return sessions.get(object);
}

class VideoBroadcast extends EmbeddedObject {
    constructor() {
        super();
        sessions.set(this, new BroadcastSession(this));
    }

    get playState() { return sessionOf(this).playState; }

    get currentChannel() { return sessionOf(this).currentChannel(); }

    // Always empty, whatever a page sets.
    get data() { return ''; }

    // The object claims resources only while it connects and presents.
    get allocationMethod() { return this.DYNAMIC_ALLOCATION; }

    // The interface has no list of formats.
    get playerCapabilities() { return null; }

    getChannelConfig() {
        return channelConfig.channelList === null ? null : channelConfig;
    }

    createChannelObject(...args) {
        const session = sessionOf(this);
        return session.create() ? createChannelObject(session.handle, args) : null;
    }

    bindToCurrentChannel() {
        const session = sessionOf(this);
        if (session.playState === kConnecting || session.playState === kPresenting) return session.currentChannel();
        if (!broadcastIsAllowed()) {
            fireLater(this, 'PlayStateChange', {state: kUnrealized, error: kInsufficientResources});
            return null;
        }
        const results = session.change('IVideoBroadcast.BindToCurrentChannel', {});
        if (results !== null) return channels.get(results.channel);
        fireLater(this, 'PlayStateChange', {state: session.playState, error: kUnidentified});
        return null;
    }

    setChannel(channel, trickplay, contentAccessDescriptorURL, quiet) {
        const session = sessionOf(this);
        if (channel && !(channel instanceof Channel)) {
            fireLater(this, 'ChannelChangeError', {channel, errorState: kNotSupported});
            return;
        }
        const args = {channel: handleOf(channel), trickPlay: Boolean(trickplay), url: contentAccessDescriptorURL || ''};
        const results = quiet === undefined ? session.change('IVideoBroadcast.SetChannel', args) :
            session.change('IVideoBroadcast.SetChannel_Quiet', {...args, quiet: quiet | 0});
        if (results !== null) changeRelation(channel ? 'related' : 'independent');
        else fireLater(this, 'ChannelChangeError', {channel: channel || null, errorState: kUnidentified});
    }

    nextChannel() { changeByList(this, 'IVideoBroadcast.NextChannel'); }

    prevChannel() { changeByList(this, 'IVideoBroadcast.PrevChannel'); }

    stop() {
        const session = sessionOf(this);
        if (session.playState !== kUnrealized) session.change('IVideoBroadcast.Stop', {});
    }

    release() {
        const session = sessionOf(this);
        if (session.playState !== kUnrealized) session.change('IVideoBroadcast.Release', {});
        // Also while the document is left, when nothing can be asked.
        session.enter(kUnrealized);
        session.channel = 0;
    }

    // Returns whether the volume has changed.
    setVolume(volume) {
        const session = sessionOf(this);
        if (!(volume >= 0 && volume <= 100) || !session.create()) return false;
        const vb = session.handle;
        const [before, set, after] = exchangeCalls([callOf('IVideoBroadcast.GetVolume', {vb}),
            callOf('IVideoBroadcast.SetVolume', {vb, volume: volume | 0}), callOf('IVideoBroadcast.GetVolume', {vb})]);
        return before !== null && set !== null && after !== null && before.volume !== after.volume;
    }

    // 100: the platform has no volume of its own for the object.
    getVolume() {
        const session = sessionOf(this);
        return session.create() ? askPlatform('IVideoBroadcast.GetVolume', {vb: session.handle}, 'volume', 100) : 100;
    }
}
defineConstants(VideoBroadcast, {STATIC_ALLOCATION: 1, DYNAMIC_ALLOCATION: 2});
defineHandlers(VideoBroadcast, ['onPlayStateChange', 'onChannelChangeSucceeded', 'onChannelChangeError']);

// Reasons for a failed change of channel.
const kNotSupported = 0;
const kNoNextOrPrevious = 10;
const kInsufficientResources = 11;
const kUnidentified = 100;

function changeByList(object, method) {
    const session = sessionOf(object);
    const errorState = session.playState === kUnrealized ? kNoNextOrPrevious : kUnidentified;
    if (session.playState === kUnrealized || session.change(method, {}) === null) {
        fireLater(object, 'ChannelChangeError', {channel: null, errorState});
    }
}

// Creates a channel from a delivery system descriptor (idType, dsd, sid) or from identifiers (idType, onid, tsid, sid,
// sourceID, ipBroadcastID). Returns null if arguments are missing that the kind of channel needs.
function createChannelObject(vb, args) {
    const idType = args[0];
    if (!vb || typeof idType !== 'number') return null;
    if (typeof args[1] === 'string') {
        const [, dsd, sid] = args;
        if (!(sid >= 1 && sid <= 65535)) return null;
        return channels.get(askPlatform('IVideoBroadcast.CreateChannel_1', {vb, idType, dsd, sid}, 'channel', 0));
    }
    const [, onid, tsid, sid, sourceID, ipBroadcastID] = args;
    if (isDvbOrIsdb(idType) && (!isNumber(onid) || !isNumber(sid))) return null;
    if (idType === kChannelConstants.ID_ATSC_T && !isNumber(sourceID)) return null;
    if ((isSds(idType) || isUri(idType)) && !ipBroadcastID) return null;
    return channels.get(askPlatform('IVideoBroadcast.CreateChannel_2', {vb, idType, onid: onid | 0,
        tsid: isNumber(tsid) ? tsid : transportStreamOf(onid, sid), sid: sid | 0, sourceId: sourceID | 0,
        ipBroadcastId: ipBroadcastID || ''}, 'channel', 0));
}

function isNumber(value) {
    return typeof value === 'number' && !Number.isNaN(value);
}

// The standard lets a page omit the transport stream; the interface does not.
function transportStreamOf(onid, sid) {
    const list = channelConfig.channelList;
    const channel = list && isNumber(onid) && isNumber(sid) ? list.getChannelByTriplet(onid, null, sid) : null;
    return channel ? channel.tsid : 0;
}
