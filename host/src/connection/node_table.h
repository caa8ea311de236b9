// The objects that the two ends of a session have sent to each other. Guarded by the session's lock. References that it
// returns must not be released under that lock: one may be the last.
#pragma once

#include <hwbinder/IBinder.h>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace android::hardware::host {

class BpHwBinder;
class Session;

class NodeTable {
  public:
    // ---- Objects of this process that the peer has received ----

    // Returns the stub's number for the peer, and counts that it is sent. The table holds the stub until the peer has
    // released it as often as it was sent, in case a release and a new sending cross on the way.
    uint64_t Export(const sp<BHwBinder>& stub);
    // Returns the stub with a number, or null if the peer has not received it.
    sp<BHwBinder> Exported(uint64_t number) const;
    // Releases the stub `times` times; sets `dropped` to the stub if that was the last time. Returns false if it was
    // not sent so often.
    bool Unexport(uint64_t number, uint64_t times, sp<BHwBinder>* dropped);
    std::vector<sp<BHwBinder>> TakeExports();

    // ---- Objects of the peer that this process has received ----

    // Returns the node for the peer's number, and counts that it was received.
    sp<BpHwBinder> Import(const std::shared_ptr<Session>& session, uint64_t number);
    // Removes a node that is being destroyed, unless another one has replaced it.
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

}  // namespace android::hardware::host
