// application/oipfApplicationManager (OIPF DAE 7.2.1).

const managers = new Set();

class ApplicationManager extends EmbeddedObject {
    constructor() {
        super();
        managers.add(this);
    }

    // Several applications may be visible, and each has its own size and position.
    getApplicationVisualizationMode() { return 1; }

    // null for a document that is not one of this application.
    getOwnerApplication(ofDocument) {
        return ofDocument === undefined || ofDocument === document ? ownApplication() : null;
    }

    getChildApplications(application) {
        return new ApplicationCollection(childrenOf(application));
    }

    gc() {}

    // The interface has no widgets.
    get widgets() { return new Collection(fixed([])); }
    installWidget() {}
    uninstallWidget() {}
}
defineConstants(ApplicationManager, {
    WIDGET_INSTALLATION_STARTED: 0, WIDGET_INSTALLATION_COMPLETED: 1, WIDGET_INSTALLATION_FAILED: 2,
    WIDGET_UNINSTALLATION_STARTED: 3, WIDGET_UNINSTALLATION_COMPLETED: 4, WIDGET_UNINSTALLATION_FAILED: 5,
    WIDGET_ERROR_STORAGE_AREA_FULL: 10, WIDGET_ERROR_DOWNLOAD: 11, WIDGET_ERROR_INVALID_ZIP_ARCHIVE: 12,
    WIDGET_ERROR_INVALID_SIGNATURE: 13, WIDGET_ERROR_GENERIC: 14, WIDGET_ERROR_SIZE_EXCEEDED: 15,
    WIDGET_ERROR_PERMISSION_DENIED: 16,
});
defineHandlers(ApplicationManager, ['onLowMemory', 'onApplicationLoaded', 'onApplicationUnloaded',
    'onApplicationLoadError', 'onWidgetInstallation', 'onWidgetUninstallation']);
embed('application/oipfApplicationManager', ApplicationManager);

class ApplicationCollection extends Collection {
    constructor(applications) {
        super(fixed(applications));
    }
}

function childrenOf(application) {
    const results = application instanceof Application ?
        callPlatform('IApplicationManager.GetChildApps', identityOf(application)) : null;
    return results === null ? [] : results.appIds.map((appId, index) => applicationOf(appId, results.orgIds[index]));
}

// The program sends this to a page that uses more memory than a tab should.
onPlatform('lowMemory', () => {
    for (const manager of managers) fire(manager, 'LowMemory');
});

// Event 1 reports an application whose page has been loaded.
const kApplicationLoaded = 1;

onPlatform('onApplicationEvent', ({event, info}) => {
    if (event !== kApplicationLoaded) return;
    const appl = applicationOf(info.appId, info.orgId);
    for (const manager of managers) fire(manager, 'ApplicationLoaded', {appl});
});
