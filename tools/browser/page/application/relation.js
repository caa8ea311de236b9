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
    const changed = tabState === null ? state.shownChanged : state.shown !== tabState.shown;
    tabState = state;
    if (!changed) return;
    document.dispatchEvent(new Event('visibilitychange', {bubbles: true}));
    Application.reportShown(ownApplication(), state.shown);
});

// Chromium takes every page for a visible one.
const visibility = {
    hidden: () => !tabOfDocument().shown,
    visibilityState: () => tabOfDocument().shown ? 'visible' : 'hidden',
};
for (const [name, ownValueOf] of Object.entries(visibility)) {
    const native = Object.getOwnPropertyDescriptor(Document.prototype, name);
    Object.defineProperty(Document.prototype, name,
        {...native, get() { return this === document ? ownValueOf() : native.get.call(this); }});
}

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

// A document of the carousel has an origin of the host, such as http://1.3fb.283d.17.dvb.localhost for
// dvb://1.3fb.283d.17.
const kCarouselSuffix = '.dvb.localhost';

// Returns what a URL of a page stands for on the platform, which resolves those of the broadcast and CRIDs itself.
function platformUrl(url) {
    if (/^(dvb|crid):/i.test(url)) return url;
    const {hostname, pathname, search, href} = new URL(url, document.baseURI);
    return hostname.endsWith(kCarouselSuffix) ?
        `dvb://${hostname.slice(0, -kCarouselSuffix.length)}${pathname}${search}` : href;
}
