// Application (OIPF DAE 7.2.2): this document's own one, its children and siblings.

const identities = new WeakMap();  // application: {appId, orgId}

function identityOf(application) {
    return identities.get(application);
}

class Application extends EventTarget {
    #visible = true;
    #topmost = true;
    #privateData = null;

    static reportTopmost(application, topmost) {
        application.#topmost = topmost;
        fire(application, topmost ? 'ApplicationTopmost' : 'ApplicationNotTopmost');
    }

    static setShown(application, shown) { application.#visible = shown; }

    static reportShown(application, shown) {
        application.#visible = shown;
        fire(application, shown ? 'ApplicationShown' : 'ApplicationHidden');
    }

    get visible() { return this.#visible; }

    // The interface has no list of active applications and no permissions.
    get active() { return true; }
    get permissions() { return new StringCollection([]); }

    get isPrimaryReceiver() { return this.#topmost; }

    // The only symbol that is accessible is postMessage().
    get window() {
        if (!isOwn(this)) return undefined;
        return {postMessage: (message, targetOrigin) => window.postMessage(message, targetOrigin)};
    }

    // Only that of this document's application is accessible.
    get privateData() {
        if (!isOwn(this)) throw new DOMException('not this application', 'SecurityError');
        if (this.#privateData === null) this.#privateData = new ApplicationPrivateData(this);
        return this.#privateData;
    }

    show() {
        if (tellPlatform('IApplicationManager.Show', identityOf(this))) this.#visible = true;
    }

    hide() {
        if (tellPlatform('IApplicationManager.Hide', identityOf(this))) this.#visible = false;
    }

    activateInput(gainFocus) {
        if (isOwn(this) && gainFocus) window.focus();
    }

    deactivateInput() {}

    // Returns null if the platform does not create it.
    createApplication(uri, createChild) {
        const results = callPlatform('IApplicationManager.CreateApplication', {...identityOf(this),
            url: platformUrl(String(uri)), child: Boolean(createChild), opapp: false});
        return results === null || results.newAppId === -1 ? null : applicationOf(results.newAppId, results.newOrgId);
    }

    destroyApplication() {
        tellPlatform('IApplicationManager.DestroyApplication', identityOf(this));
    }

    startWidget() { return null; }
    stopWidget() { return null; }
}
defineHandlers(Application, ['onApplicationActivated', 'onApplicationDeactivated', 'onApplicationShown',
    'onApplicationHidden', 'onApplicationPrimaryReceiver', 'onApplicationNotPrimaryReceiver', 'onApplicationTopmost',
    'onApplicationNotTopmost', 'onApplicationDestroyRequest', 'onApplicationHibernateRequest', 'onKeyPress', 'onKeyUp',
    'onKeyDown']);
makeEnumerable(Application);

const applications = new Map();  // by identity

function applicationOf(appId, orgId) {
    const name = `${appId}.${orgId}`;
    if (!applications.has(name)) {
        const application = new Application();
        identities.set(application, {appId, orgId});
        applications.set(name, application);
    }
    return applications.get(name);
}

let own = null;

// The application of this document. The interface does not name the application of a tab, so it is the one that is
// running when the document asks first; -1 and -1, which stand for the television's own software, if none is.
function ownApplication() {
    if (own === null) {
        const results = callPlatform('IApplicationManager.GetCurrentApp', {});
        if (results === null) return applicationOf(-1, -1);
        own = applicationOf(results.appId, results.orgId);
        Application.setShown(own, tabOfDocument().shown);
    }
    return own;
}

// The television's own software is what a document stands for while no application is running.
function isOwn(application) {
    return application === ownApplication() || application === applicationOf(-1, -1);
}

onPlatform('onApplicationTopMost', ({appId, orgId}) => Application.reportTopmost(applicationOf(appId, orgId), true));
onPlatform('onApplicationNoTopMost', ({appId, orgId}) => Application.reportTopmost(applicationOf(appId, orgId), false));
onPlatform('onApplicationDestroyRequest', ({appId, orgId}) => {
    fire(applicationOf(appId, orgId), 'ApplicationDestroyRequest');
});
