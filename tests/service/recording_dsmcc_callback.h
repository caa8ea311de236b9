// A client's callback for broadcast files that keeps what it is told.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IDsmccCallback.h>

#include <string>

#include "recording_client.h"

namespace hbbtv::test {

class RecordingDsmccCallback : public RecordingClient<vantorel::hardware::hbbtv::V1_0::IDsmccCallback> {
  public:
    Return<void> OnDsmccFileEvent(int32_t type, const Text& url, const Text& filePath, int64_t context) override {
        return Note("OnDsmccFileEvent", type, "'" + std::string(url) + "'", std::string(filePath), context);
    }
};

}  // namespace hbbtv::test
