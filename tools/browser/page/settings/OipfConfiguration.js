// application/oipfConfiguration (OIPF DAE 7.3.1).

class OipfConfiguration extends EmbeddedObject {
    get configuration() { return configuration; }
    get localSystem() { return localSystem; }
}
defineHandlers(OipfConfiguration, ['onIpAddressChange']);
embed('application/oipfConfiguration', OipfConfiguration);
