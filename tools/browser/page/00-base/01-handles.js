// Handles of the platform's objects. The page's objects do not show them.

const handles = new WeakMap();

function setHandle(object, handle) {
    handles.set(object, handle);
    return object;
}

// Returns 0 for what is not an object of the platform.
function handleOf(object) {
    return (object instanceof Object && handles.get(object)) || 0;
}

// Makes one object of the page for each handle, so that the same channel is the same object.
class ObjectsByHandle {
    constructor(Class) {
        this.Class = Class;
        this.objects = new Map();
    }

    // Returns null for the handle 0.
    get(handle) {
        if (!handle) return null;
        if (!this.objects.has(handle)) this.objects.set(handle, setHandle(new this.Class(), handle));
        return this.objects.get(handle);
    }
}
