#include "television/applications/tabs.h"

#include "core/error.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kMost = 256;

}  // namespace

Tab& Tabs::Add(int id) {
    if (id < 0) throw Refused("invalid tab number " + std::to_string(id));
    const Tab* known = Find(id);
    if (known != nullptr && known->Going()) Remove(id);
    if (mTabs.size() >= kMost && mTabs.count(id) == 0) throw Refused("the browser has too many tabs");
    Tab& tab = mTabs[id];
    tab.id = id;
    return tab;
}

Tab* Tabs::Find(int id) {
    const auto found = mTabs.find(id);
    return found == mTabs.end() ? nullptr : &found->second;
}

Tab* Tabs::Of(const ApplicationPointer& application) {
    for (auto& entry : mTabs) {
        const bool its = application && entry.second.application.lock() == application;
        if (its && !entry.second.Going()) return &entry.second;
    }
    return nullptr;
}

Tab& Tabs::Named(int id) {
    Tab* tab = Find(id);
    if (tab == nullptr) throw Refused("there is no tab " + std::to_string(id));
    return *tab;
}

void Tabs::Focus(int id) {
    Named(id);
    for (auto& entry : mTabs) entry.second.focused = entry.first == id;
}

void Tabs::CloseAll() {
    for (auto& entry : mTabs) entry.second.state = TabState::Closing;
}

}  // namespace hbbtv::sim
