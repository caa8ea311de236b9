// ChannelConfig: the channel line-up and the favourites (OIPF DAE 7.13.9). A document has one.

class ChannelConfig extends EventTarget {
    #channelList = null;
    #favouriteLists = null;
    #currentFavouriteList;

    // Returns whether the channel list has a channel. Those that a page defines are not in it.
    static lists(channel) {
        const ccid = channel.ccid;
        const list = channelConfig.channelList;
        return list !== null && ccid !== undefined && list.getChannel(ccid) !== null;
    }

    // Lists are read again when the platform reports a change.
    static forget(config) {
        config.#channelList = null;
        config.#favouriteLists = null;
        config.#currentFavouriteList = undefined;
        for (const channel of channels.objects.values()) Channel.identityOf(channel).forget();
    }

    get channelList() {
        if (this.#channelList === null) {
            const list = askPlatform('IChannelConfig.GetChannelList', {}, 'list', 0);
            if (list) this.#channelList = new ChannelList(list);
        }
        return this.#channelList;
    }

    get favouriteLists() {
        if (this.#favouriteLists === null) {
            const collection = askPlatform('IChannelConfig.GetFavouriteListCollection', {}, 'collection', 0);
            if (collection) this.#favouriteLists = new FavouriteListCollection(collection);
        }
        return this.#favouriteLists;
    }

    // undefined: no favourite list is in use.
    get currentFavouriteList() {
        if (this.#currentFavouriteList === undefined) {
            const list = askPlatform('IChannelConfig.GetCurrentFavouriteList', {}, 'list', 0);
            if (list) this.#currentFavouriteList = favouriteLists.get(list);
        }
        return this.#currentFavouriteList;
    }

    get currentChannel() {
        return channels.get(askPlatform('IChannelConfig.GetCurrentChannel', {}, 'channel', 0));
    }

    createFilteredList(blocked, favourite, hidden, favouriteListID) {
        const list = createFilteredList([blocked, favourite, hidden], favouriteListID || '');
        return list ? new ChannelList(list) : null;
    }

    createChannelObject(...args) {
        const supervisor = askPlatform('IChannelConfig.GetBroadcastSupervisor', {}, 'supervisor', 0);
        return createChannelObject(supervisor, args);
    }

    // The interface makes lists of channels, not of discovery records.
    createChannelList() {
        return null;
    }
}
defineHandlers(ChannelConfig, ['onChannelListUpdate', 'onChannelScan']);
makeEnumerable(ChannelConfig);

const channelConfig = new ChannelConfig();

onPlatform('OnChannelConfigEvent', ({event}) => {
    if (event !== 0) return;
    ChannelConfig.forget(channelConfig);
    fire(channelConfig, 'ChannelListUpdate');
});

// A flag that is undefined lets channels with and without the property in. The platform takes only true and false, so
// the lists of both are joined, in the order of the channel list. Returns the list's handle, or 0.
function createFilteredList(flags, favouriteListId) {
    const combinations = flags.reduce((rows, flag) => rows.flatMap((row) =>
        (flag === undefined || flag === null ? [true, false] : [Boolean(flag)]).map((value) => [...row, value])), [[]]);
    const lists = exchangeCalls(combinations.map(([blocked, favourite, hidden]) => callOf(
        'IChannelConfig.CreateFilteredList', {blocked, favourite, hidden, favouriteListId})));
    if (lists.includes(null)) return 0;
    if (lists.length === 1) return lists[0].list;
    const wanted = new Set(lists.flatMap(({list}) => fetchHandles('IChannelList', list) || []));
    const all = Array.from(channelConfig.channelList || []).filter((channel) => wanted.has(channel));
    return askPlatform('IChannelConfig.CreateChannelList', {channels: all.map(handleOf)}, 'list', 0);
}
