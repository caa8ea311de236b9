// FavouriteListCollection (OIPF DAE 7.13.12).

class FavouriteListCollection extends Collection {
    constructor(handle) {
        const source = new Fetched(() => fetchItems('IFavouriteListCollection.GetLength', 'length',
            'IFavouriteListCollection.Item', 'list', {collection: handle}, (list) => favouriteLists.get(list)));
        super(source);
        setHandle(this, handle);
        listDetails.set(this, {source});
    }

    getFavouriteList(favID) {
        return favouriteLists.get(askPlatform('IFavouriteListCollection.GetFavouriteList',
            {collection: handleOf(this), favId: String(favID)}, 'list', 0)) || null;
    }

    createFavouriteList(name) {
        listDetails.get(this).source.forget();
        return favouriteLists.get(askPlatform('IFavouriteListCollection.CreateFavouriteList',
            {collection: handleOf(this), name: String(name)}, 'list', 0)) || null;
    }

    remove(index) {
        listDetails.get(this).source.forget();
        return tellPlatform('IFavouriteListCollection.Remove', {collection: handleOf(this), index: index | 0});
    }

    commit() {
        return tellPlatform('IFavouriteListCollection.Commit', {collection: handleOf(this)});
    }

    activateFavouriteList(favID) {
        return tellPlatform('IFavouriteListCollection.ActivateFavouriteList',
            {collection: handleOf(this), favId: String(favID)});
    }
}
makeEnumerable(FavouriteListCollection);
