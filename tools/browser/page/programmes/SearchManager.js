// application/oipfSearchManager (OIPF DAE 7.12.1).

class SearchManager extends EmbeddedObject {
    // Not known.
    get guideDaysAvailable() { return -1; }

    // Returns null if the platform creates no search.
    createSearch(searchTarget) {
        const manager = searchManager();
        const search = manager && askPlatform('ISearchManager.SearchManager_CreateSearch',
            {manager, target: searchTarget >>> 0}, 'search', 0);
        if (!search) {
            managerHandle = 0;  // of a platform that has been restarted
            return null;
        }
        const created = new MetadataSearch(search);
        searches.set(search, {search: created, manager: this});
        return created;
    }

    getChannelConfig() {
        return channelConfig.channelList === null ? null : channelConfig;
    }
}
defineHandlers(SearchManager, ['onMetadataSearch', 'onMetadataUpdate']);
embed('application/oipfSearchManager', SearchManager);

const searches = new Map();  // by handle

let managerHandle = 0;

// A document has one manager on the platform.
function searchManager() {
    if (!managerHandle) managerHandle = askPlatform('ISearchManager.SearchManager_Create', {}, 'manager', 0);
    return managerHandle;
}

const kSearchChanged = 0;
const kSearchFinished = 0;

onPlatform('OnSearchManagerEvent', ({event, info}) => {
    const entry = searches.get(info.searchHandle);
    if (event !== kSearchChanged || entry === undefined) return;
    SearchResults.finish(entry.search.result, info.state === kSearchFinished);
    fire(entry.manager, 'MetadataSearch', {search: entry.search, state: info.state});
});
