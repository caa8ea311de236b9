// A client's callback for the application manager that keeps what it is told.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IAIPEventCallback.h>

#include <string>

#include "recording_client.h"

namespace hbbtv::test {

class RecordingAIPEventCallback : public RecordingClient<vantorel::hardware::hbbtv::V1_0::IAIPEventCallback> {
  public:
    using Event = vantorel::hardware::hbbtv::V1_0::TolmAIPEvent;
    using Info = vantorel::hardware::hbbtv::V1_0::TolmAIPEventInfo;

    Return<void> onApplicationEvent(Event event, const Info& info, int64_t context) override {
        return Note("onApplicationEvent", static_cast<int>(event), info.appId, info.orgId, context);
    }

    Return<void> onApplicationTopMost(int32_t appId, int32_t orgId, int64_t context) override {
        return Note("onApplicationTopMost", appId, orgId, context);
    }

    Return<void> onApplicationNoTopMost(int32_t appId, int32_t orgId, int64_t context) override {
        return Note("onApplicationNoTopMost", appId, orgId, context);
    }

    Return<void> onApplicationDestroyRequest(int32_t appId, int32_t orgId, int64_t context) override {
        return Note("onApplicationDestroyRequest", appId, orgId, context);
    }

    Return<void> onKeyPress(int32_t first, int32_t second, int64_t context) override {
        return Note("onKeyPress", first, second, context);
    }

    Return<void> onKeyUp(int32_t first, int32_t second, int64_t context) override {
        return Note("onKeyUp", first, second, context);
    }

    Return<void> onKeyDown(int32_t first, int32_t second, int64_t context) override {
        return Note("onKeyDown", first, second, context);
    }

    Return<void> onIsParentalratingBlocked(int32_t first, int32_t second, bool blocked) override {
        return Note("onIsParentalratingBlocked", first, second, blocked);
    }

    Return<void> onRequestDsmccFile(const Text& fileName, int64_t context) override {
        return Note("onRequestDsmccFile", std::string(fileName), context);
    }

    Return<void> onReleaseDsmccFile(const Text& fileName, int64_t context) override {
        return Note("onReleaseDsmccFile", std::string(fileName), context);
    }

    Return<void> onIsObjectSupported(const Text& objectType, bool supported) override {
        return Note("onIsObjectSupported", std::string(objectType), supported);
    }

    Return<void> onGetConfiguration() override { return Note("onGetConfiguration"); }

    Return<void> onPlatformInitialize() override { return Note("onPlatformInitialize"); }

    Return<void> onPlatformFinalize() override { return Note("onPlatformFinalize"); }

    Return<void> onHandleBroadcastService(bool enabled) override { return Note("onHandleBroadcastService", enabled); }

    Return<void> onSetBroadcastFullScreen(bool fullScreen) override {
        return Note("onSetBroadcastFullScreen", fullScreen);
    }

    Return<void> onOpappStateChange(int32_t first, int32_t second, const Text& text1, const Text& text2,
                                    const Text& text3) override {
        return Note("onOpappStateChange", first, second, std::string(text1), std::string(text2), std::string(text3));
    }

    Return<void> onOpappContextChange(int32_t first, int32_t second, const Text& text1, const Text& text2,
                                      const Text& text3) override {
        return Note("onOpappContextChange", first, second, std::string(text1), std::string(text2), std::string(text3));
    }

    Return<void> onOpappUpdate(int32_t first, int32_t second, const Text& text) override {
        return Note("onOpappUpdate", first, second, std::string(text));
    }

    Return<void> onGetLocalParantalRating(const Text& countryCode, int32_t rating) override {
        return Note("onGetLocalParantalRating", std::string(countryCode), rating);
    }
};

}  // namespace hbbtv::test
