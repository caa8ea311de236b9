// Properties of the platform's objects, read in one request for many properties and many objects.
//
// A reader is [method, result, convert]. `convert` is optional and makes the value that the standard wants.

// The platform returns 0 and '' for what an object does not have, where the standard wants undefined.
const orUndefined = (value) => value || undefined;

// Some properties of one object.
class Properties {
    // `argument` is the name of the methods' argument for the handle; '' if they have none.
    constructor(object, argument, readers, {ofTask = false} = {}) {
        this.object = object;
        this.argument = argument;
        this.readers = readers;
        this.ofTask = ofTask;  // values that change without an event are read again in the page's next task
        this.values = null;
        this.mates = null;  // properties of neighbours in a list, read with these
    }

    get(name) {
        if (this.values === null) readProperties(this.mates === null ? [this] : unreadNear(this));
        return this.values[name];
    }

    set(name, value) {
        if (this.values !== null) this.values[name] = value;
    }

    forget() {
        this.values = null;
    }
}

// How many neighbours one request reads: a request must be answered before the host's deadline.
const kMatesOfRequest = 125;

function unreadNear(properties) {
    const near = properties.mates.slice(properties.mates.indexOf(properties))
        .filter((mate) => mate.values === null);
    return near.slice(0, kMatesOfRequest);
}

// Lets a list's properties be read together.
function readTogether(list) {
    for (const properties of list) properties.mates = list;
}

function readProperties(list) {
    const calls = list.flatMap(({object, argument, readers}) => Object.values(readers).map(
        ([method]) => callOf(method, argument ? {[argument]: handleOf(object)} : {})));
    const answers = exchangeCalls(calls);
    for (const properties of list) {
        const names = Object.keys(properties.readers);
        const read = answers.splice(0, names.length);
        properties.values = {};
        names.forEach((name, index) => {
            const [, result, convert] = properties.readers[name];
            const value = read[index] === null ? undefined : read[index][result];
            properties.values[name] = convert && value !== undefined ? convert(value) : value;
        });
        // A failure is not kept either: the platform may be back by then.
        const failed = read.every((results) => results === null);
        if (properties.ofTask || failed) queueMicrotask(() => properties.forget());
    }
}

// Defines properties that `partOf(object)`, a Properties, reads.
function defineRead(Class, names, partOf) {
    for (const name of names) {
        Object.defineProperty(Class.prototype, name,
            {get() { return partOf(this).get(name); }, enumerable: true, configurable: true});
    }
}

// Makes the members of a class visible to `for (name in object)`, as those of a browser's own objects are.
function makeEnumerable(Class) {
    for (const [name, descriptor] of Object.entries(Object.getOwnPropertyDescriptors(Class.prototype))) {
        if (name === 'constructor' || !descriptor.configurable) continue;
        Object.defineProperty(Class.prototype, name, {...descriptor, enumerable: true});
    }
}

// Defines constants, which objects of a class have besides the class.
function defineConstants(Class, constants) {
    for (const target of [Class, Class.prototype]) {
        for (const [name, value] of Object.entries(constants)) {
            Object.defineProperty(target, name, {value, enumerable: true});
        }
    }
}

// Adds the members of an object literal to a class whose members are in several files.
function extendClass(Class, members) {
    Object.defineProperties(Class.prototype, Object.getOwnPropertyDescriptors(members));
}
