// The way to the platform: synchronous calls, and the receiver of events.
const listeners = [];

Object.defineProperty(globalThis, "__hbbtv", {
    value: {event: event => listeners.forEach(listener => listener(event))},
    configurable: true,
});
