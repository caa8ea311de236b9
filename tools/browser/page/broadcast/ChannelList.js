// ChannelList (OIPF DAE 7.13.10), and what it shares with FavouriteList: channels by their identifiers.

class ListOfChannels extends Collection {
    // `prefix` is the interface of the list.
    constructor(handle, prefix) {
        const source = new Fetched(() => fetchHandles(prefix, handle));
        super(source);
        setHandle(this, handle);
        listDetails.set(this, {prefix, source});
    }

    getChannel(channelID) {
        return findChannel(this, 'GetChannel', {channelId: String(channelID)});
    }

    getChannelBySourceID(sourceID) {
        return findChannel(this, 'GetChannelBySourceID', {sourceId: sourceID | 0});
    }
}

const listDetails = new WeakMap();

function fetchHandles(prefix, list) {
    const found = fetchItems(`${prefix}.GetLength`, 'length', `${prefix}.Item`, 'channel', {list}, (handle) => handle);
    // A platform that has been restarted does not know the list.
    if (found === null) queueMicrotask(() => ChannelConfig.forget(channelConfig));
    return found && channelsOf(found);
}

function findChannel(list, method, args) {
    return channels.get(askPlatform(`${listDetails.get(list).prefix}.${method}`, {list: handleOf(list), ...args},
        'channel', 0));
}

// The platform takes a negative number for any.
function orAny(number) {
    return number === null || number === undefined ? -1 : number | 0;
}

class ChannelList extends ListOfChannels {
    constructor(handle) {
        super(handle, 'IChannelList');
    }

    getChannelByTriplet(onid, tsid, sid, nid) {
        return findChannel(this, 'GetChannelByTriplet',
            {onid: onid | 0, tsid: orAny(tsid), sid: sid | 0, nid: orAny(nid)});
    }
}
