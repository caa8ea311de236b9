#include "television/device/remote_control.h"

namespace hbbtv::sim {

const std::map<std::string, int>& KeySetNames() {
    static const std::map<std::string, int> names{
        {"RED", 0x1},     {"GREEN", 0x2}, {"YELLOW", 0x4},    {"BLUE", 0x8},    {"NAVIGATION", 0x10}, {"VCR", 0x20},
        {"SCROLL", 0x40}, {"INFO", 0x80}, {"NUMERIC", 0x100}, {"ALPHA", 0x200}, {"OTHER", kOtherKeys}};
    return names;
}

// The codes that most televisions use; the standards leave them to the terminal.
const std::vector<RemoteKey>& RemoteKeys() {
    static const std::vector<RemoteKey> keys{{"RED", 403, 0x1, "Red"},
                                             {"GREEN", 404, 0x2, "Green"},
                                             {"YELLOW", 405, 0x4, "Yellow"},
                                             {"BLUE", 406, 0x8, "Blue"},
                                             {"LEFT", 37, 0x10, "Left"},
                                             {"UP", 38, 0x10, "Up"},
                                             {"RIGHT", 39, 0x10, "Right"},
                                             {"DOWN", 40, 0x10, "Down"},
                                             {"ENTER", 13, 0x10, "OK"},
                                             {"BACK", 461, 0x10, "Back"},
                                             {"PLAY", 415, 0x20, "Play"},
                                             {"PAUSE", 19, 0x20, "Pause"},
                                             {"PLAY_PAUSE", 402, 0x20, "Play/Pause"},
                                             {"STOP", 413, 0x20, "Stop"},
                                             {"FAST_FWD", 417, 0x20, "Fast forward"},
                                             {"REWIND", 412, 0x20, "Rewind"},
                                             {"NEXT", 425, 0x20, "Next"},
                                             {"PREVIOUS", 424, 0x20, "Previous"},
                                             {"0", 48, 0x100, "0"},
                                             {"1", 49, 0x100, "1"},
                                             {"2", 50, 0x100, "2"},
                                             {"3", 51, 0x100, "3"},
                                             {"4", 52, 0x100, "4"},
                                             {"5", 53, 0x100, "5"},
                                             {"6", 54, 0x100, "6"},
                                             {"7", 55, 0x100, "7"},
                                             {"8", 56, 0x100, "8"},
                                             {"9", 57, 0x100, "9"},
                                             {"RECORD", 416, kOtherKeys, "Record"},
                                             {"TELETEXT", 459, kOtherKeys, "Text"}};
    return keys;
}

const RemoteKey* FindKey(const std::string& name) {
    for (const RemoteKey& key : RemoteKeys()) {
        if (key.name == name) return &key;
    }
    return nullptr;
}

const RemoteKey* FindKey(int code) {
    for (const RemoteKey& key : RemoteKeys()) {
        if (key.code == code) return &key;
    }
    return nullptr;
}

int AllKeySets() {
    int sets = 0;
    for (const RemoteKey& key : RemoteKeys()) sets |= key.set;
    return sets;
}

const std::vector<int>& AllOtherKeys() {
    static const std::vector<int> keys = [] {
        std::vector<int> found;
        for (const RemoteKey& key : RemoteKeys()) {
            if (key.set == kOtherKeys) found.push_back(key.code);
        }
        return found;
    }();
    return keys;
}

}  // namespace hbbtv::sim
