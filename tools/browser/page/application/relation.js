// Whether this document's application is broadcast-related, and what that allows (TS 102 796 6.2.2.6).

// Returns the tab of this document, 0 if the page was opened without the platform, and its relation to the broadcast.
function tabOfDocument() {
    return {tab: 0, broadcastRelated: true, ...askHost('tab')};
}

function isBroadcastRelated() {
    return tabOfDocument().broadcastRelated;
}

// A broadcast-independent application needs the platform's leave to use the broadcast.
function broadcastIsAllowed() {
    const {tab, broadcastRelated} = tabOfDocument();
    return tab === 0 || broadcastRelated ||
        askPlatform('IApplicationManager.GetVBResouceAllowed', {tabId: tab}, 'allowed', false);
}

// An application becomes broadcast-related when it selects a channel, and independent when it selects null.
function changeRelation(relation) {
    const {tab, broadcastRelated} = tabOfDocument();
    if (tab === 0 || broadcastRelated === (relation === 'related')) return;
    tellPlatform(`IApplicationManager.${relation === 'related' ? 'SetBIAppToBR' : 'SetBRAppToBI'}`, {tabId: tab});
}

// Returns what a URL of a page stands for in the broadcast: for a document of the carousel, the host knows where it is.
function broadcastUrl(url) {
    if (/^dvb:/i.test(url)) return url;
    const {carousel} = tabOfDocument();
    const absolute = new URL(url, document.baseURI);
    return carousel && absolute.origin === location.origin ? carousel + absolute.pathname : absolute.href;
}
