// application/oipfParentalControlManager (OIPF DAE 7.9.1). The interface has no PIN, so none is correct.

const kPinIsIncorrect = 1;
const kInvalidObject = 3;

class ParentalControlManager extends EmbeddedObject {
    #schemes = null;

    get parentalRatingSchemes() {
        // A platform that has been restarted does not know the manager, and gives no schemes.
        if (this.#schemes === null || this.#schemes.length === 0) {
            const manager = askPlatform('IParentalControlManager.Create', {}, 'manager', 0);
            if (!manager) return new ParentalRatingSchemeCollection(0);
            this.#schemes = new ParentalRatingSchemeCollection(manager);
        }
        return this.#schemes;
    }

    get isPINEntryLocked() { return false; }

    // Parental control cannot be disabled, nor does the platform report what it does with unrated content.
    getParentalControlStatus() { return true; }
    getBlockUnrated() { return false; }

    setParentalControlStatus() { return kPinIsIncorrect; }
    setParentalControlPIN() { return kPinIsIncorrect; }
    verifyParentalControlPIN() { return kPinIsIncorrect; }
    setBlockUnrated() { return kPinIsIncorrect; }

    unlockWithParentalControlPIN(pcPIN, target) {
        const isVideo = target instanceof HTMLVideoElement ||
            (target instanceof HTMLObjectElement && implementationOf(target) instanceof VideoBroadcast);
        return isVideo ? kPinIsIncorrect : kInvalidObject;
    }
}
embed('application/oipfParentalControlManager', ParentalControlManager);
