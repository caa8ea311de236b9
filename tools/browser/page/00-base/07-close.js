// A page that closes its window asks the platform, which then destroys the tab.

if (window === window.top) window.close = () => { askHost('close'); };
