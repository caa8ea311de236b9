// Which objects the two ends of a session have told each other about. Guarded by the session's lock, all of it. No
// reference that is handed out may be dropped under that lock: it may be the last one.
#pragma once

#include <hwbinder/IBinder.h>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace android {
namespace hardware {
namespace host {

class BpHwBinder;
class Session;

class NodeTable {
  public:
    // ---- Objects of this process that the peer knows ----

    // The number of the stub for the peer; counts that it is sent once more. The table holds the stub until the peer
    // has given back every time it was sent. That settles a release that crosses a new sending on the way.
    uint64_t Export(const sp<BHwBinder>& stub);
    // Null when the peer does not know such a number.
    sp<BHwBinder> Exported(uint64_t number) const;
    // Takes back so many sendings; `dropped` receives the stub when none is left. False when there were never so many.
    bool Unexport(uint64_t number, uint64_t times, sp<BHwBinder>* dropped);
    std::vector<sp<BHwBinder>> TakeExports();

    // ---- Objects of the peer that this process knows ----

    // The one node for the peer's number, counting the arrival.
    sp<BpHwBinder> Import(const std::shared_ptr<Session>& session, uint64_t number);
    // A node is being destroyed. Another may have taken its place meanwhile.
    void Forget(const BpHwBinder* proxy, uint64_t number);
    std::vector<wp<BpHwBinder>> Imports() const;

  private:
    struct ExportEntry {
        sp<BHwBinder> stub;
        uint64_t timesSent;
    };
    struct ImportEntry {
        const BpHwBinder* raw;  // to compare with only
        wp<BpHwBinder> weak;
    };
    uint64_t mNextNumber = 1;
    std::unordered_map<uint64_t, ExportEntry> mExports;
    std::unordered_map<const BHwBinder*, uint64_t> mNumbers;
    std::unordered_map<uint64_t, ImportEntry> mImports;
};

}  // namespace host
}  // namespace hardware
}  // namespace android
