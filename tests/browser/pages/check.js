// What the test pages share. A page registers its checks with check(); they run in order when it has loaded.
//
// The page reports through its console: "@tell COMMAND" asks for a command to the simulated platform, "@emit WORDS" for
// an event of a platform by `hbbtvctl emit`. At its end
// window.__result has the result: {"passed": [names], "failed": [{"check", "reason"}]}.
'use strict';

const checks = [];

function check(name, run) {
    checks.push({name, run});
}

function text(value) {
    if (value === undefined) return 'undefined';
    const isObject = typeof value === 'object' && value !== null;
    return isObject && value.constructor !== Object && !Array.isArray(value) ? String(value) : JSON.stringify(value);
}

function expectEqual(actual, expected, what) {
    if (text(actual) !== text(expected)) {
        throw new Error(`${what || 'value'} is ${text(actual)}, expected ${text(expected)}`);
    }
}

function expectTrue(condition, what) {
    if (!condition) throw new Error(`not so: ${what}`);
}

// Waits until a condition holds; it is tried again after each task. A page that waits for long has failed.
async function until(condition, what) {
    const end = performance.now() + 20000;
    while (!condition()) {
        if (performance.now() > end) throw new Error(`waited in vain for ${what}`);
        await new Promise((resolve) => setTimeout(resolve));
    }
}

// Sends a command to the platform, such as "zap next".
function tell(command) {
    console.info(`@tell ${command}`);
}

// Sends an event to the library as a platform does: family, event and NAME=VALUE.
function emit(words) {
    console.info(`@emit ${words}`);
}

// Returns an array that collects the DOM events of these types as [type, property, ...].
function collect(target, types) {
    const events = [];
    for (const [type, ...properties] of types) {
        target.addEventListener(type, (event) => events.push([type, ...properties.map((name) => event[name])]));
    }
    return events;
}

function addObject(type, parent) {
    const element = document.createElement('object');
    element.type = type;
    (parent || document.body).append(element);
    return element;
}

window.addEventListener('load', async () => {
    const result = {passed: [], failed: []};
    for (const {name, run} of checks) {
        try {
            await run();
            result.passed.push(name);
        } catch (error) {
            result.failed.push({check: name, reason: error.message});
        }
    }
    window.__result = result;
});
