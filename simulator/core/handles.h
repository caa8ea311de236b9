// Handles of platform objects: unpredictable 32-bit numbers. All tables draw from one source, so a handle names at most
// one object of one type, and is unknown to the tables of other types.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "core/error.h"

namespace hbbtv::sim {

using Handle = uint32_t;  // 0 is the null handle

class HandleSource {
  public:
    explicit HandleSource(std::optional<uint32_t> seed);

    // Returns a number that is not in any table and has not been returned recently. About half have the top bit set.
    Handle New();

  private:
    std::mt19937 mRandom;
    std::unordered_set<Handle> mKnown;
    std::deque<Handle> mOrder;
};

// The objects of one type that have a handle. An object has at most one handle: asking again returns the same one until
// it is removed.
template <typename T>
class HandleTable {
  public:
    explicit HandleTable(HandleSource& source) : mSource(source) {}

    Handle HandleOf(const std::shared_ptr<T>& object) {
        if (!object) return 0;
        const auto known = mHandles.find(object.get());
        if (known != mHandles.end()) return known->second;
        if (mObjects.size() >= kMost) throw Refused("too many handles of one kind; release some");
        Handle handle = mSource.New();
        while (mObjects.count(handle) != 0) handle = mSource.New();
        mHandles[object.get()] = handle;
        mObjects[handle] = object;
        return handle;
    }

    // Returns null for a handle that is unknown, of another type, or removed.
    std::shared_ptr<T> Find(uint64_t handle) const {
        const auto found = handle > UINT32_MAX ? mObjects.end() : mObjects.find(static_cast<Handle>(handle));
        return found == mObjects.end() ? nullptr : found->second;
    }

    bool Remove(uint64_t handle) {
        const std::shared_ptr<T> object = Find(handle);
        if (!object) return false;
        mHandles.erase(object.get());
        mObjects.erase(static_cast<Handle>(handle));
        return true;
    }

    const std::map<Handle, std::shared_ptr<T>>& All() const { return mObjects; }

  private:
    static constexpr size_t kMost = 20000;  // the limit for a client that never releases anything

    HandleSource& mSource;
    std::unordered_map<const T*, Handle> mHandles;
    std::map<Handle, std::shared_ptr<T>> mObjects;
};

}  // namespace hbbtv::sim
