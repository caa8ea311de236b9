// Embedded objects: the members of the standard on <object> elements, by the type that an element has when it is used.

const classesByType = new Map();
const implementations = new WeakMap();  // element: {type, object}
const elements = new WeakMap();         // object: element

class EmbeddedObject extends EventTarget {}

// Events of an object go to its element. Objects that oipfObjectFactory creates have none.
function targetOf(object) {
    return elements.get(object) || object;
}

function typeOf(element) {
    return (element.getAttribute('type') || '').trim().toLowerCase();
}

// Returns null for an element that is not one of the standard's objects.
function implementationOf(element) {
    if (element === HTMLObjectElement.prototype) return null;
    const type = typeOf(element);
    const known = implementations.get(element);
    if (known && known.type === type) return known.object;
    const Class = classesByType.get(type);
    if (Class === undefined) return null;
    const object = new Class();
    implementations.set(element, {type, object});
    elements.set(object, element);
    adoptOwnValues(element, object);
    return object;
}

// What a page has set before the element got its type, such as handlers, belongs to the object.
function adoptOwnValues(element, object) {
    for (const name of Object.keys(element).filter((key) => exposed.has(key))) {
        const value = element[name];
        delete element[name];
        Reflect.set(object, name, value);
    }
}

function membersOf(Class) {
    const names = [];
    for (let prototype = Class.prototype; prototype !== EmbeddedObject.prototype;
        prototype = Object.getPrototypeOf(prototype)) {
        names.push(...Object.getOwnPropertyNames(prototype).filter((name) => name !== 'constructor'));
    }
    return names;
}

// Defines the class of a type, when all of its members are there.
function embed(type, Class) {
    classesByType.set(type.toLowerCase(), Class);
    makeEnumerable(Class);
    for (const name of membersOf(Class)) exposeMember(name);
}

const exposed = new Set();

function exposeMember(name) {
    if (exposed.has(name)) return;
    exposed.add(name);
    const prototype = HTMLObjectElement.prototype;
    const native = Object.getOwnPropertyDescriptor(prototype, name) || ownValue(name);
    Object.defineProperty(prototype, name, {
        get() {
            const object = implementationOf(this);
            if (object === null || !(name in object)) return native.get.call(this);
            const value = object[name];
            return typeof value === 'function' && !name.startsWith('on') ? method(name) : value;
        },
        set(value) {
            const object = implementationOf(this);
            if (object === null || !(name in object)) native.set.call(this, value);
            else Reflect.set(object, name, value);  // a read-only property stays as it is
        },
        enumerable: true,
        configurable: true,
    });
}

// Other elements have a property only if the page sets it.
function ownValue(name) {
    return {
        get() {},
        set(value) {
            Object.defineProperty(this, name, {value, writable: true, enumerable: true, configurable: true});
        },
    };
}

const methods = new Map();

// Returns the function that a page finds as method of an element.
function method(name) {
    if (!methods.has(name)) {
        methods.set(name, {[name](...args) { return implementationOf(this)[name](...args); }}[name]);
    }
    return methods.get(name);
}
