// Stream events of the current service (TS 102 796 8.2.1).

// An event for a listener, with the properties name, data, text and status.
class StreamEvent extends Event {}

const streamListeners = new Map();  // URL and name of the event: set of listeners

const streamKey = (url, name) => `${url} ${name}`;

extendClass(VideoBroadcast, {
    addStreamEventListener(targetURL, eventName, listener) {
        const url = String(targetURL);
        const key = streamKey(url, eventName);
        if (!streamListeners.has(key)) {
            if (!requestStreamEvent('IVideoBroadcast.AddStreamEventListener', url, eventName)) {
                const failure = {name: eventName, data: '', text: '', status: 'error'};
                setTimeout(() => callStreamListener(listener, failure));
                return;
            }
            streamListeners.set(key, new Set());
        }
        streamListeners.get(key).add(listener);
    },

    removeStreamEventListener(targetURL, eventName, listener) {
        const url = String(targetURL);
        const key = streamKey(url, eventName);
        const listeners = streamListeners.get(key);
        if (!listeners || !listeners.delete(listener) || listeners.size > 0) return;
        streamListeners.delete(key);
        requestStreamEvent('IVideoBroadcast.RemoveStreamEventListener', url, eventName);
    },
});

// The platform gets the URL as the page wrote it, and what it stands for in this document.
function requestStreamEvent(method, url, eventName) {
    return tellPlatform(method, {strurl: url, dvburl: platformUrl(url), eventName: String(eventName)});
}

// `values` are the name, data, text and status of the event.
function callStreamListener(listener, values) {
    const event = Object.assign(new StreamEvent('StreamEvent'), values);
    try {
        if (typeof listener === 'function') listener.call(window, event);
        else listener.handleEvent(event);
    } catch (error) {
        reportError(error);
    }
}

onPlatform('onStreamEvent', ({url, eventName, data, text, status}) => {
    const key = streamKey(url, eventName);
    const listeners = Array.from(streamListeners.get(key) || []);
    // After an error no further event comes.
    if (status === 'error') streamListeners.delete(key);
    const values = {name: eventName, data, text: new TextDecoder().decode(Uint8Array.from(text || [])), status};
    for (const listener of listeners) callStreamListener(listener, values);
});
