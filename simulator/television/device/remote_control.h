// The keys of the remote control, and the key sets by which applications ask for them (values of OIPF DAE volume 5).
#pragma once

#include <map>
#include <string>
#include <vector>

namespace hbbtv::sim {

// Colours and navigation: the default of an application.
constexpr int kUsualKeySets = 0x1f;

constexpr int kOtherKeys = 0x400;  // the set of keys that are requested one by one

struct RemoteKey {
    std::string name;
    int code;
    int set;  // the set that it belongs to
    std::string label;
};

const std::vector<RemoteKey>& RemoteKeys();

// Returns null if the remote control does not have the key.
const RemoteKey* FindKey(const std::string& name);
const RemoteKey* FindKey(int code);

// All sets by name, including those that this remote control lacks.
const std::map<std::string, int>& KeySetNames();

// The most that an application can get: the sets, and the keys of the set kOtherKeys.
int AllKeySets();
const std::vector<int>& AllOtherKeys();

}  // namespace hbbtv::sim
