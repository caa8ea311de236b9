// A client's callback that records its calls, one line each, and the death recipients that are linked to it.
#pragma once

#include <android/hidl/base/1.0/IBase.h>

#include <algorithm>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace hbbtv::test {

template <typename Callback>
class RecordingClient : public Callback {
  public:
    template <typename T>
    using Return = ::android::hardware::Return<T>;
    using Text = ::android::hardware::hidl_string;
    using Recipient = ::android::hardware::hidl_death_recipient;

    std::vector<std::string> Calls() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCalls;
    }

    // Returns the recipients that are linked now.
    std::vector<android::sp<Recipient>> Linked() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mLinked;
    }

    // Notifies the linked recipients that this client's process has died.
    void Die() {
        for (const android::sp<Recipient>& recipient : Linked()) {
            recipient->serviceDied(0, android::wp<android::hidl::base::V1_0::IBase>(this));
        }
    }

    // Calls `hook` during the next linking (or unlinking) of a recipient.
    void WhenLinked(std::function<void()> hook) {
        std::lock_guard<std::mutex> lock(mMutex);
        mWhenLinked = std::move(hook);
    }

    void WhenUnlinked(std::function<void()> hook) {
        std::lock_guard<std::mutex> lock(mMutex);
        mWhenUnlinked = std::move(hook);
    }

    Return<bool> linkToDeath(const android::sp<Recipient>& recipient, uint64_t cookie) override {
        std::unique_lock<std::mutex> lock(mMutex);
        mLinked.push_back(recipient);
        mCookie = cookie;
        const auto hook = std::exchange(mWhenLinked, nullptr);
        lock.unlock();
        if (hook) hook();
        return true;
    }

    Return<bool> unlinkToDeath(const android::sp<Recipient>& recipient) override {
        std::unique_lock<std::mutex> lock(mMutex);
        const auto linked = std::find(mLinked.begin(), mLinked.end(), recipient);
        if (linked == mLinked.end()) return false;
        mLinked.erase(linked);
        const auto hook = std::exchange(mWhenUnlinked, nullptr);
        lock.unlock();
        if (hook) hook();
        return true;
    }

    uint64_t Cookie() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCookie;
    }

  protected:
    // Records "name value value ...": numbers in decimal, strings unchanged.
    template <typename... Values>
    Return<void> Note(const char* name, const Values&... values) {
        std::ostringstream line;
        line << name;
        ((line << ' ' << values), ...);
        std::lock_guard<std::mutex> lock(mMutex);
        mCalls.push_back(line.str());
        return ::android::hardware::Void();
    }

  private:
    mutable std::mutex mMutex;
    std::vector<std::string> mCalls;              // guarded by mMutex
    std::vector<android::sp<Recipient>> mLinked;  // guarded by mMutex
    uint64_t mCookie = ~uint64_t{0};              // guarded by mMutex
    std::function<void()> mWhenLinked;            // guarded by mMutex
    std::function<void()> mWhenUnlinked;          // guarded by mMutex
};

}  // namespace hbbtv::test
