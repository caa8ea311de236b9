// MetadataSearch and Query (OIPF DAE 7.12.2, 7.12.3).

class MetadataSearch {
    #result = null;

    constructor(handle) {
        setHandle(this, handle);
    }

    get searchTarget() {
        return askPlatform('ISearchManager.MetaSearch_GetSearchTarget', {search: handleOf(this)}, 'target', 0);
    }

    get result() {
        if (this.#result === null) {
            this.#result = new SearchResults(askPlatform('ISearchManager.MetaSearch_GetResult',
                {search: handleOf(this)}, 'results', 0));
        }
        return this.#result;
    }

    // Returns null if the platform does not take the query.
    createQuery(field, comparison, value) {
        return queries.get(askPlatform('ISearchManager.MetaSearch_CreateQuery', {search: handleOf(this),
            field: String(field), comparison: comparison | 0, value: String(value)}, 'query', 0));
    }

    setQuery(query) {
        changeSearch(this, 'ISearchManager.MetaSearch_SetQuery', {query: handleOf(query)});
    }

    // Takes a channel, a list of channels, or null, which removes the constraint.
    addChannelConstraint(channelOrList) {
        const list = channelOrList instanceof Collection ? Array.from(channelOrList) : [channelOrList];
        for (const channel of list) {
            changeSearch(this, 'ISearchManager.MetaSearch_AddChannelConstraint', {channel: handleOf(channel)});
        }
    }

    // Without a count, there are as many results as getResults() asks for; without a start, the present counts.
    findProgrammesFromStream(channel, startTime, count) {
        changeSearch(this, 'ISearchManager.MetaSearch_FindProgrammesFromStream', {channel: handleOf(channel),
            startTime: isNumber(startTime) ? startTime : Math.floor(Date.now() / 1000),
            count: isNumber(count) ? count : kNoLimit});
    }

    // The interface has no constraint by rating and no order.
    addRatingConstraint() {}
    addCurrentRatingConstraint() {}
    orderBy() {}
}
makeEnumerable(MetadataSearch);

const kNoLimit = 0x7fffffff;

// A change of a search's parameters discards its results.
function changeSearch(search, method, args) {
    SearchResults.finish(search.result, false);
    tellPlatform(method, {search: handleOf(search), ...args});
}

// Queries do not change: an operation makes another one.
class Query {
    and(query) {
        return queries.get(askPlatform('ISearchManager.Query_And', {first: handleOf(this), second: handleOf(query)},
            'query', 0));
    }

    or(query) {
        return queries.get(askPlatform('ISearchManager.Query_Or', {first: handleOf(this), second: handleOf(query)},
            'query', 0));
    }

    not() {
        return queries.get(askPlatform('ISearchManager.Query_Not', {query: handleOf(this)}, 'negated', 0));
    }
}
makeEnumerable(Query);

const queries = new ObjectsByHandle(Query);
