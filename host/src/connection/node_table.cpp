#include "connection/node_table.h"

#include "connection/node.h"

namespace android::hardware::host {

uint64_t NodeTable::Export(const sp<BHwBinder>& stub) {
    const auto known = mNumbers.find(stub.get());
    if (known != mNumbers.end()) {
        ++mExports.at(known->second).timesSent;
        return known->second;
    }
    const uint64_t number = mNextNumber++;
    mNumbers.emplace(stub.get(), number);
    mExports.emplace(number, ExportEntry{stub, 1});
    return number;
}

sp<BHwBinder> NodeTable::Exported(uint64_t number) const {
    const auto found = mExports.find(number);
    return found == mExports.end() ? nullptr : found->second.stub;
}

bool NodeTable::Unexport(uint64_t number, uint64_t times, sp<BHwBinder>* dropped) {
    const auto found = mExports.find(number);
    if (found == mExports.end() || times > found->second.timesSent) return false;
    found->second.timesSent -= times;
    if (found->second.timesSent > 0) return true;
    *dropped = std::move(found->second.stub);
    mNumbers.erase(dropped->get());
    mExports.erase(found);
    return true;
}

std::vector<sp<BHwBinder>> NodeTable::TakeExports() {
    std::vector<sp<BHwBinder>> stubs;
    for (auto& entry : mExports) stubs.push_back(std::move(entry.second.stub));
    mExports.clear();
    mNumbers.clear();
    return stubs;
}

sp<BpHwBinder> NodeTable::Import(const std::shared_ptr<Session>& session, uint64_t number) {
    const auto found = mImports.find(number);
    sp<BpHwBinder> proxy = found == mImports.end() ? nullptr : found->second.weak.promote();
    if (proxy == nullptr) {
        proxy = new BpHwBinder(session, number);
        mImports[number] = {proxy.get(), proxy};
    }
    proxy->ReceivedLocked();
    return proxy;
}

void NodeTable::Forget(const BpHwBinder* proxy, uint64_t number) {
    const auto found = mImports.find(number);
    if (found != mImports.end() && found->second.raw == proxy) mImports.erase(found);
}

std::vector<wp<BpHwBinder>> NodeTable::Imports() const {
    std::vector<wp<BpHwBinder>> proxies;
    for (const auto& entry : mImports) proxies.push_back(entry.second.weak);
    return proxies;
}

}  // namespace android::hardware::host
