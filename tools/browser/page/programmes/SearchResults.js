// SearchResults: a window on the results of a search (OIPF DAE 7.12.4). Empty until the search has finished.

class SearchResults extends Collection {
    #finished = false;
    #window = null;

    constructor(handle) {
        let items = null;
        super({items: () => items()});
        items = () => this.#items();
        setHandle(this, handle);
    }

    // Called by the event of the search.
    static finish(results, finished) {
        results.#finished = finished;
        results.#window = null;
    }

    #read() {
        if (this.#window === null) {
            const results = handleOf(this);
            const [offset, length, size] = exchangeCalls([callOf('ISearchManager.SearchResults_GetOffset', {results}),
                callOf('ISearchManager.SearchResults_GetLength', {results}),
                callOf('ISearchManager.SearchResults_GetTotalSize', {results})]);
            if (offset === null || length === null || size === null) return {offset: 0, totalSize: 0, items: []};
            const calls = Array.from({length: length.length}, (_, index) =>
                callOf('ISearchManager.SearchResults_GetProgramme', {results, index}));
            const found = exchangeCalls(calls).filter((item) => item !== null && item.programme);
            this.#window = {offset: offset.offset, totalSize: size.size,
                items: programmesOf(found.map(({programme}) => programme))};
        }
        return this.#window;
    }

    #items() { return this.#finished ? this.#read().items : []; }

    get offset() { return this.#finished ? this.#read().offset : 0; }
    get totalSize() { return this.#finished ? this.#read().totalSize : 0; }

    // Always false: results come with an event.
    getResults(offset, count) {
        SearchResults.finish(this, false);
        tellPlatform('ISearchManager.SearchResults_GetResults',
            {results: handleOf(this), offset: offset >>> 0, count: count >>> 0});
        return false;
    }

    abort() {
        SearchResults.finish(this, false);
        tellPlatform('ISearchManager.SearchResults_Abort', {results: handleOf(this)});
    }
}
makeEnumerable(SearchResults);
