// A client's callback that records its calls, one line each, and the death recipients that are linked to it.
#pragma once

#include <android/hidl/base/1.0/IBase.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "package/bindings.h"

namespace hbbtv::test {

// Returns "method value value ...": numbers in decimal, strings as they are, but in quotes within a struct; the fields
// of a struct one after the other, a list of strings in brackets, and a list of bytes as a string.
std::string CallLine(const char* interface, const char* method, const Json::Value& arguments);

// Thread-safe.
class Recorder : public EventSink {
  public:
    using Recipient = android::hardware::hidl_death_recipient;

    // Keeps the call and returns no results.
    Json::Value Take(const char* interface, const char* method, Json::Value arguments) override;

    std::vector<std::string> Calls() const;

    // Returns the recipients that are linked now.
    std::vector<android::sp<Recipient>> Linked() const;

    // Calls `hook` during the next linking (or unlinking) of a recipient.
    void WhenLinked(std::function<void()> hook);
    void WhenUnlinked(std::function<void()> hook);

    uint64_t Cookie() const;

  protected:
    void Note(const std::string& line);
    bool Link(const android::sp<Recipient>& recipient, uint64_t cookie);
    bool Unlink(const android::sp<Recipient>& recipient);

  private:
    mutable std::mutex mMutex;
    std::vector<std::string> mCalls;              // guarded by mMutex
    std::vector<android::sp<Recipient>> mLinked;  // guarded by mMutex
    uint64_t mCookie = ~uint64_t{0};              // guarded by mMutex
    std::function<void()> mWhenLinked;            // guarded by mMutex
    std::function<void()> mWhenUnlinked;          // guarded by mMutex
};

// The generated listener of a callback interface (include I...Listener.h), with a recorder of its own.
template <typename Callback, typename Base = Recorder>
class RecordingClient : public Base, public ListenerClass<Callback>::Type {
  public:
    using Recipient = Recorder::Recipient;

    RecordingClient() : ListenerClass<Callback>::Type(static_cast<EventSink&>(*this)) {}

    // Notifies the linked recipients that this client's process has ended.
    void Die() {
        for (const android::sp<Recipient>& recipient : this->Linked()) {
            recipient->serviceDied(0, android::wp<android::hidl::base::V1_0::IBase>(this));
        }
    }

    Return<bool> linkToDeath(const android::sp<Recipient>& recipient, uint64_t cookie) override {
        return this->Link(recipient, cookie);
    }
    Return<bool> unlinkToDeath(const android::sp<Recipient>& recipient) override { return this->Unlink(recipient); }
};

}  // namespace hbbtv::test
