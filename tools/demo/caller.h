// How the demo calls the service: each call with its answer goes into the transcript.
#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>

#include <cstdint>
#include <functional>
#include <string>

#include "transcript.h"

namespace hbbtv::demo {

constexpr std::chrono::seconds kPatience{10};

class Caller {
  public:
    explicit Caller(Transcript& transcript) : mTranscript(transcript) {}

    // A call without results.
    bool Call(const std::string& what, const std::function<android::hardware::Return<int32_t>()>& call) {
        mTranscript.Ask(what);
        const auto status = call();
        const bool ok = status.isOk() && static_cast<int32_t>(status) == 0;
        mTranscript.Answer(!status.isOk() ? "the service is gone" : ok ? "done" : "status " + std::to_string(status));
        return ok;
    }

    // One without even a status.
    bool CallVoid(const std::string& what, const std::function<android::hardware::Return<void>()>& call) {
        mTranscript.Ask(what);
        const bool ok = call().isOk();
        mTranscript.Answer(ok ? "done" : "the service is gone");
        return ok;
    }

    // A call with results: `call` is given the callback for them; `show` makes words of them.
    template <typename CallIt, typename Show, typename... Results>
    bool Get(const std::string& what, CallIt call, Show show, Results&... results) {
        int32_t status = -1;
        mTranscript.Ask(what);
        const std::function<void(int32_t, Results...)> take = [&](int32_t theStatus, Results... theResults) {
            status = theStatus;
            ((results = theResults), ...);
        };
        const auto returned = call(take);
        const bool ok = returned.isOk() && status == 0;
        mTranscript.Answer(ok ? show(results...) : "status " + std::to_string(status));
        return ok;
    }

    bool Expect(bool came, const std::string& what) {
        if (!came) mTranscript.Event("(nothing)", "expected " + what + ", and it did not come");
        return came;
    }

  private:
    Transcript& mTranscript;
};

}  // namespace hbbtv::demo
