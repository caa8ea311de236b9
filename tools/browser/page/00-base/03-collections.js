// The standard's Collection: length, item(index) and access by [index].

const indexed = {
    get(target, name, receiver) {
        return isIndex(name) ? receiver.item(Number(name)) : Reflect.get(target, name, receiver);
    },
    has(target, name) {
        return isIndex(name) ? Number(name) < target.length : Reflect.has(target, name);
    },
};

function isIndex(name) {
    return typeof name === 'string' && /^(0|[1-9][0-9]*)$/.test(name);
}

class Collection {
    // `source.items()` returns an array; it is called at each access.
    constructor(source) {
        const collection = new Proxy(this, indexed);
        sources.set(this, source);
        sources.set(collection, source);
        return collection;
    }

    get length() {
        return itemsOf(this).length;
    }

    // The standard has undefined for an index without an item.
    item(index) {
        return itemsOf(this)[index];
    }

    [Symbol.iterator]() {
        return itemsOf(this)[Symbol.iterator]();
    }
}

const sources = new WeakMap();

function itemsOf(collection) {
    return sources.get(collection).items();
}

// A source that never changes.
function fixed(items) {
    return {items: () => items};
}

class StringCollection extends Collection {
    constructor(strings) {
        super(fixed(strings));
    }
}

class IntegerCollection extends Collection {
    constructor(integers) {
        super(fixed(integers));
    }
}

// A source that calls `fetch` once, and again after forget(). `fetch` returns null if it failed; that is not kept.
class Fetched {
    constructor(fetch) {
        this.fetch = fetch;
        this.found = null;
    }

    items() {
        if (this.found === null) this.found = this.fetch();
        return this.found || [];
    }

    forget() {
        this.found = null;
    }
}

// Reads the items of a list of the platform: their number, then each by its index. Returns what `toItem` makes of the
// handles, or null.
function fetchItems(length, lengthResult, item, itemResult, list, toItem) {
    const count = askPlatform(length, list, lengthResult, null);
    if (count === null) return null;
    const calls = Array.from({length: count}, (_, index) => callOf(item, {...list, index}));
    return exchangeCalls(calls).filter((results) => results !== null && results[itemResult])
        .map((results) => toItem(results[itemResult]));
}
