// Calls of the platform: a synchronous request to a path of the document's own origin, which the host answers.
// One request carries a batch of calls, so that a page waits once for all that it asks for.

const kCallPath = '/.hbbtv/call';

// Pages replace globals, so what is used after their first script is kept here.
const NativeRequest = window.XMLHttpRequest;
const {open: openRequest, send: sendRequest} = NativeRequest.prototype;
const fromJson = JSON.parse;
const toJson = JSON.stringify;

// Synchronous requests are refused while a document is left. Local state answers then.
let documentIsLeft = false;
window.addEventListener('pagehide', () => { documentIsLeft = true; }, true);
window.addEventListener('pageshow', () => { documentIsLeft = false; }, true);
window.addEventListener('beforeunload', () => {
    documentIsLeft = true;
    setTimeout(() => { documentIsLeft = false; });
}, true);

// Documents of data: URLs and Chromium's own have no origin to call.
const hasOrigin = /^https?:/.test(window.origin);

// Returns the text of the answer, or '' if there is none.
function exchange(body) {
    if (documentIsLeft || !hasOrigin) return '';
    const request = new NativeRequest();
    try {
        openRequest.call(request, 'POST', kCallPath, false);
        sendRequest.call(request, body);
        return request.status === 200 ? request.responseText : '';
    } catch (refused) {
        return '';
    }
}

// Sends calls in one request. Returns the results of each, or null for one that failed.
function exchangeCalls(calls) {
    if (calls.length === 0) return [];
    const text = exchange(toJson({calls}));
    const answers = text === '' ? [] : fromJson(text).answers;
    return calls.map((call, index) => {
        const results = answers[index] && answers[index].results;
        return results && !results.status ? results : null;
    });
}

// Describes a call: 'IChannel.GetName' and its arguments by name.
function callOf(method, args) {
    return {method, arguments: args || {}};
}

// Calls a method. Returns its results by name, or null if it failed.
function callPlatform(method, args) {
    return exchangeCalls([callOf(method, args)])[0];
}

// Calls a method and returns one of its results, or `otherwise` if it failed.
function askPlatform(method, args, result, otherwise) {
    const results = callPlatform(method, args);
    return results === null ? otherwise : results[result];
}

// Returns whether a method that has no results succeeded.
function tellPlatform(method, args) {
    return callPlatform(method, args) !== null;
}

// Asks the host itself: docs/browser.md lists what it answers.
function askHost(name, args) {
    return exchangeCalls([{host: name, arguments: args || {}}])[0] || {};
}
