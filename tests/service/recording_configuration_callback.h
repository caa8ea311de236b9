// A client's callback for the configuration that keeps what it is told.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IConfigurationCallback.h>

#include <string>

#include "recording_client.h"

namespace hbbtv::test {

class RecordingConfigurationCallback : public RecordingClient<vantorel::hardware::hbbtv::V1_0::IConfigurationCallback> {
  public:
    using Info = vantorel::hardware::hbbtv::V1_0::TolmConfigurationEventInfo;

    // All members of the record, the texts in quotes.
    Return<void> onConfigurationEvent(int32_t event, const Info& info) override {
        return Note("onConfigurationEvent", event, info.width, info.height, Quoted(info.uiLanguage),
                    Quoted(info.audioLanguage), Quoted(info.subtitleLanguage), info.subtitlesEnabled,
                    info.audioDescriptionEnabled, info.hearingImpaired, Quoted(info.region), info.ratingAge,
                    info.doNotTrackPolicy, info.cookiePolicy, info.persistentStorage, info.blockTrackingSites,
                    info.deviceId, info.deviceIdTimestamp);
    }

  private:
    static std::string Quoted(const Text& text) { return "'" + std::string(text) + "'"; }
};

}  // namespace hbbtv::test
