#include "chromium/keys.h"

#include <set>

#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/quote.h"

namespace hbbtv::browser {

namespace {

struct Key {
    const char* name;
    int code;
    const char* key;   // "key" of the DOM's event
    const char* text;  // of keys that enter text
};

const std::vector<Key>& Keys() {
    static const std::vector<Key> keys{
        {"RED", 403, "ColorF0Red", ""},
        {"GREEN", 404, "ColorF1Green", ""},
        {"YELLOW", 405, "ColorF2Yellow", ""},
        {"BLUE", 406, "ColorF3Blue", ""},
        {"LEFT", 37, "ArrowLeft", ""},
        {"UP", 38, "ArrowUp", ""},
        {"RIGHT", 39, "ArrowRight", ""},
        {"DOWN", 40, "ArrowDown", ""},
        {"OK", 13, "Enter", "\r"},
        {"ENTER", 13, "Enter", "\r"},
        {"BACK", 461, "GoBack", ""},
        {"PLAY", 415, "MediaPlay", ""},
        {"PAUSE", 19, "Pause", ""},
        {"PLAY_PAUSE", 402, "MediaPlayPause", ""},
        {"STOP", 413, "MediaStop", ""},
        {"FAST_FWD", 417, "MediaFastForward", ""},
        {"REWIND", 412, "MediaRewind", ""},
        {"RECORD", 416, "MediaRecord", ""},
        {"TELETEXT", 459, "Teletext", ""},
        {"INFO", 457, "Info", ""},
        {"PAGE_UP", 33, "PageUp", ""},
        {"PAGE_DOWN", 34, "PageDown", ""},
        {"0", 48, "0", "0"},
        {"1", 49, "1", "1"},
        {"2", 50, "2", "2"},
        {"3", 51, "3", "3"},
        {"4", 52, "4", "4"},
        {"5", 53, "5", "5"},
        {"6", 54, "6", "6"},
        {"7", 55, "7", "7"},
        {"8", 56, "8", "8"},
        {"9", 57, "9", "9"},
    };
    return keys;
}

Json::Value Event(const char* type, int code) {
    Json::Value params;
    params["type"] = type;
    params["windowsVirtualKeyCode"] = code;
    params["nativeVirtualKeyCode"] = code;
    params["key"] = "Unidentified";
    for (const Key& key : Keys()) {
        if (key.code == code) params["key"] = key.key;
    }
    return params;
}

}  // namespace

int KeyCode(const std::string& name) {
    std::set<std::string> known;
    for (const Key& key : Keys()) {
        if (name == key.name) return key.code;
        known.insert(key.name);
    }
    throw Failure(kUsage, "unknown key " + Quoted(name) + DidYouMean(name, known));
}

const std::vector<std::string>& KeyNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const Key& key : Keys()) all.emplace_back(key.name);
        return all;
    }();
    return names;
}

Json::Value KeyDown(int code) {
    Json::Value params = Event("rawKeyDown", code);
    for (const Key& key : Keys()) {
        if (key.code != code || *key.text == '\0') continue;
        params["type"] = "keyDown";
        params["text"] = key.text;
    }
    return params;
}

Json::Value KeyUp(int code) {
    return Event("keyUp", code);
}

}  // namespace hbbtv::browser
