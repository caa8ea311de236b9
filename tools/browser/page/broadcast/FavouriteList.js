// FavouriteList (OIPF DAE 7.13.13).

class FavouriteList extends ListOfChannels {
    constructor(handle) {
        super(handle, 'IFavouriteList');
    }

    get favID() {
        return askPlatform('IFavouriteList.GetFavID', {list: handleOf(this)}, 'favId', undefined);
    }

    get name() {
        return askPlatform('IFavouriteList.GetName', {list: handleOf(this)}, 'name', undefined);
    }

    set name(name) {
        tellPlatform('IFavouriteList.SetName', {list: handleOf(this), name: String(name)});
    }

    getChannelByTriplet(onid, tsid, sid) {
        return findChannel(this, 'GetChannelByTriplet', {onid: onid | 0, tsid: orAny(tsid), sid: sid | 0});
    }

    insertBefore(index, ccid) {
        return changeList(this, 'IFavouriteList.InsertBefore', {index: index | 0, channelId: String(ccid)});
    }

    remove(index) {
        return changeList(this, 'IFavouriteList.Remove', {index: index | 0});
    }

    commit() {
        return tellPlatform('IFavouriteList.Commit', {list: handleOf(this)});
    }

    toString() {
        return this.favID || '';
    }
}

function changeList(list, method, args) {
    listDetails.get(list).source.forget();
    return tellPlatform(method, {list: handleOf(list), ...args});
}

for (const Class of [ListOfChannels, ChannelList, FavouriteList]) makeEnumerable(Class);

const favouriteLists = {
    known: new Map(),
    get(handle) {
        if (!handle) return undefined;
        if (!this.known.has(handle)) this.known.set(handle, new FavouriteList(handle));
        return this.known.get(handle);
    },
};
