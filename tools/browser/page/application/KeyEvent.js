// The codes of keys: VK_RED and KeyEvent.VK_RED (TS 102 796 10.2.2). They are those of the events that the host sends.

const kKeys = {
    VK_CANCEL: 3, VK_BACK_SPACE: 8, VK_TAB: 9, VK_ENTER: 13, VK_SHIFT: 16, VK_CONTROL: 17, VK_ALT: 18, VK_PAUSE: 19,
    VK_CAPS_LOCK: 20, VK_ESCAPE: 27, VK_SPACE: 32, VK_PAGE_UP: 33, VK_PAGE_DOWN: 34, VK_END: 35, VK_HOME: 36,
    VK_LEFT: 37, VK_UP: 38, VK_RIGHT: 39, VK_DOWN: 40,
    VK_0: 48, VK_1: 49, VK_2: 50, VK_3: 51, VK_4: 52, VK_5: 53, VK_6: 54, VK_7: 55, VK_8: 56, VK_9: 57,
    VK_PLAY_PAUSE: 402, VK_RED: 403, VK_GREEN: 404, VK_YELLOW: 405, VK_BLUE: 406,
    VK_REWIND: 412, VK_STOP: 413, VK_PLAY: 415, VK_RECORD: 416, VK_FAST_FWD: 417, VK_PREV: 424, VK_NEXT: 425,
    VK_INFO: 457, VK_TELETEXT: 459, VK_BACK: 461,
};
for (let letter = 65; letter <= 90; ++letter) kKeys[`VK_${String.fromCharCode(letter)}`] = letter;

class KeyEvent {}

defineConstants(KeyEvent, kKeys);
// Pages define their own constants of these names, so these can be replaced.
for (const [name, value] of [['KeyEvent', KeyEvent], ...Object.entries(kKeys)]) {
    Object.defineProperty(window, name, {value, writable: true, configurable: true});
}
