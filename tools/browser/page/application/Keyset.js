// Keyset: the keys that an application asks for (OIPF DAE 7.2.5).

class Keyset {
    #application;
    #supportsPointer = false;

    constructor(application) {
        this.#application = application;
    }

    #ask(method, result, otherwise) {
        return askPlatform(method, identityOf(this.#application), result, otherwise);
    }

    get value() { return this.#ask('IApplicationManager.GetValue', 'value', 0); }
    get otherKeys() { return this.#ask('IApplicationManager.GetOtherKeys', 'keys', []); }
    get maximumValue() { return this.#ask('IApplicationManager.GetMaxiMumValue', 'value', 0); }
    get maximumOtherKeys() { return this.#ask('IApplicationManager.GetMaxiMumOtherKeys', 'keys', []); }

    // Kept for the page only.
    get supportsPointer() { return this.#supportsPointer; }
    set supportsPointer(supports) { this.#supportsPointer = Boolean(supports); }

    // Returns the keys that the application gets.
    setValue(value, otherKeys) {
        const application = identityOf(this.#application);
        const [, now] = exchangeCalls([
            callOf('IApplicationManager.SetValue', {...application, value: value | 0,
                otherKeys: Array.from(otherKeys || [], Number).slice(0, kMostOtherKeys)}),
            callOf('IApplicationManager.GetValue', application)]);
        return now === null ? 0 : now.value;
    }

    getKeyIcon(code) {
        const args = {...identityOf(this.#application), code: code | 0};
        return askPlatform('IApplicationManager.GetKeyIcon', args, 'icon', null) || null;
    }

    getKeyLabel(code) {
        const args = {...identityOf(this.#application), code: code | 0};
        return askPlatform('IApplicationManager.GetKeyLabel', args, 'label', null) || null;
    }
}

const kMostOtherKeys = 100;

makeEnumerable(Keyset);
defineConstants(Keyset, {
    RED: 0x1, GREEN: 0x2, YELLOW: 0x4, BLUE: 0x8, NAVIGATION: 0x10, VCR: 0x20, SCROLL: 0x40, INFO: 0x80,
    NUMERIC: 0x100, ALPHA: 0x200, OTHER: 0x400,
});
