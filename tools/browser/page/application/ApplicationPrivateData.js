// ApplicationPrivateData (OIPF DAE 7.2.4).

class ApplicationPrivateData {
    #keyset;

    constructor(application) {
        this.#keyset = new Keyset(application);
    }

    get keyset() { return this.#keyset; }

    // null for an application that is not broadcast-related.
    get currentChannel() {
        if (!isBroadcastRelated()) return null;
        return channels.get(askPlatform('IApplicationPrivatedata.GetCurrentChannel', {}, 'channel', 0));
    }

    getFreeMem() {
        return askPlatform('IApplicationPrivatedata.GetFreeMem', {}, 'size', -1);
    }

    // The interface cannot wake the television.
    get wakeupApplication() { return false; }
    get wakeupOITF() { return false; }
    prepareWakeupApplication() { return false; }
    prepareWakeupOITF() { return false; }
    clearWakeupToken() { return null; }
}
makeEnumerable(ApplicationPrivateData);
