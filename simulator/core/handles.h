// Handles of platform objects: 32-bit numbers that nobody can guess or confuse. All tables draw from one source, so a
// handle names at most one object of one kind, and a table of another kind simply does not know it.
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

    // A number that is in no table and was not given out in a long while. About half have the top bit set.
    Handle New();

  private:
    std::mt19937 mRandom;
    std::unordered_set<Handle> mKnown;
    std::deque<Handle> mOrder;
};

// The objects of one kind that have a handle. An object has one handle for as long as it has any: whoever asks for it
// again gets the same one, until it is removed.
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

    // Null for a handle that is unknown, of another kind, or removed.
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
    static constexpr size_t kMost = 20000;  // a client that never releases anything finds an end here

    HandleSource& mSource;
    std::unordered_map<const T*, Handle> mHandles;
    std::map<Handle, std::shared_ptr<T>> mObjects;
};

}  // namespace hbbtv::sim
