// Events: from the host to the objects of this document, and from these to the page.

const receivers = new Map();  // event of a callback interface, such as onPlayStateChange: functions

// Calls `receiver` with the arguments by name whenever the platform sends the event.
function onPlatform(event, receiver) {
    if (!receivers.has(event)) receivers.set(event, new Set());
    receivers.get(event).add(receiver);
}

// Called by the host, see docs/browser.md.
function receiveEvent({event, arguments: args}) {
    for (const receiver of receivers.get(event) || []) receiver(args || {});
}

Object.defineProperty(window, '__hbbtv', {value: Object.freeze({event: receiveEvent})});

const handlers = new WeakMap();  // object: function by property, such as onPlayStateChange

// Defines properties for functions of the page. Their default is null.
function defineHandlers(Class, names) {
    for (const name of names) {
        Object.defineProperty(Class.prototype, name, {
            get() { return (handlers.get(this) || {})[name] || null; },
            set(handler) {
                if (!handlers.has(this)) handlers.set(this, {});
                handlers.get(this)[name] = typeof handler === 'function' ? handler : null;
            },
            enumerable: true,
            configurable: true,
        });
    }
}

// Calls the page's handler on<type> with the values of `detail`, then dispatches the DOM event with these as its
// properties. An error of the page is reported and changes nothing else.
function fire(object, type, detail) {
    const target = targetOf(object);
    const handler = (handlers.get(object) || {})['on' + type];
    if (handler) {
        try {
            handler.apply(target, Object.values(detail || {}));
        } catch (error) {
            reportError(error);
        }
    }
    target.dispatchEvent(Object.assign(new Event(type), detail));
}

// As fire(), after the running script: for failures that are known at once.
function fireLater(object, type, detail) {
    setTimeout(() => fire(object, type, detail));
}
