// The keys of the remote control, and the key sets by which applications ask for them (values of OIPF DAE volume 5).
#pragma once

#include <map>
#include <string>
#include <vector>

namespace hbbtv::sim {

// The colours and navigation: what an application gets that asks for nothing else.
constexpr int kUsualKeySets = 0x1f;

constexpr int kOtherKeys = 0x400;  // the set of the keys that are named one by one

struct RemoteKey {
    std::string name;
    int code;
    int set;  // the one that it belongs to
    std::string label;
};

const std::vector<RemoteKey>& RemoteKeys();

// Null when the remote control has no such key.
const RemoteKey* FindKey(const std::string& name);
const RemoteKey* FindKey(int code);

// All sets by name, those too of which this remote control has no key.
const std::map<std::string, int>& KeySetNames();

// What an application can get at most: the sets, and the keys of the set kOtherKeys.
int AllKeySets();
const std::vector<int>& AllOtherKeys();

}  // namespace hbbtv::sim
