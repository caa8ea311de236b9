// The tab of this document, and what its application's relation to the broadcast allows (TS 102 796 6.2.2.6).

let tabState = null;

// Returns what the host knows of the tab, see docs/browser.md. Its number is 0 if the page is not an application.
function tabOfDocument() {
    if (tabState === null) {
        const known = askHost('tab');
        if (known.tab === undefined) return {tab: 0, broadcastRelated: true, origin: '', shown: true};
        tabState = {...known, shown: known.tab === 0 || known.shown};
    }
    return tabState;
}

onPlatform('tab', (state) => {
    const {tab, shown: wasShown} = tabOfDocument();
    if (state.tab !== tab) return;
    tabState = state;
    if (state.shown !== wasShown) Application.reportShown(ownApplication(), state.shown);
});

// A page that closes its window ends its application.
window.close = () => { askHost('close'); };

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
