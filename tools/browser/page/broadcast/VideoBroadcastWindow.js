// Where video/broadcast shows its picture (OIPF DAE 7.13.1), and the end of its file chain: the object is complete.

extendClass(VideoBroadcast, {
    get fullScreen() { return sessionOf(this).fullScreen; },

    setFullScreen(fullScreen) {
        const session = sessionOf(this);
        if (!session.create()) return;
        const vb = session.handle;
        const [, now] = exchangeCalls([callOf('IVideoBroadcast.SetFullScreen', {vb, fullScreen: Boolean(fullScreen)}),
            callOf('IVideoBroadcast.GetFullScreen', {vb})]);
        if (now !== null) showFullScreen(session, now.fullScreen);
    },
});
defineHandlers(VideoBroadcast, ['onFullScreenChange']);
embed('video/broadcast', VideoBroadcast);

const fullScreenLooks = new CSSStyleSheet();
fullScreenLooks.replaceSync(`
object[data-hbbtv-full-screen] {
    position: fixed !important; inset: 0 !important; width: 100vw !important; height: 100vh !important;
}
`);
document.adoptedStyleSheets = [...document.adoptedStyleSheets, fullScreenLooks];

function showFullScreen(session, fullScreen) {
    session.fullScreen = fullScreen;
    const element = elements.get(session.object);
    if (element) element.toggleAttribute('data-hbbtv-full-screen', fullScreen);
}

onBroadcast('onFullScreenChange', (session, {fullScreen}) => {
    showFullScreen(session, fullScreen !== 0);
    fire(session.object, 'FullScreenChange');
});

// Reports the place of the element to the platform: at once, and before each frame in which it has moved.
function followWindow(session) {
    const vb = session.handle;
    let sent = '';
    const report = () => {
        const element = elements.get(session.object);
        const rect = element && element.isConnected ? element.getBoundingClientRect() : null;
        if (rect !== null && !session.fullScreen && rect.width > 0 && rect.height > 0) {
            const [x, y, width, height] = [rect.x, rect.y, rect.width, rect.height].map(Math.round);
            const place = `${x} ${y} ${width} ${height}`;
            if (place !== sent) tellPlatform('IVideoBroadcast.SetWindow', {vb, rect: {x, y, width, height}});
            sent = place;
        }
        if (session.handle === vb) requestAnimationFrame(report);
    };
    report();
}
