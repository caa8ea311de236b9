// A client's callback for the channel configuration that keeps what it is told.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IChannelConfigCallback.h>

#include "recording_client.h"

namespace hbbtv::test {

class RecordingChannelConfigCallback : public RecordingClient<vantorel::hardware::hbbtv::V1_0::IChannelConfigCallback> {
  public:
    using Info = vantorel::hardware::hbbtv::V1_0::TolmChannelConfigEventInfo;

    Return<void> OnChannelConfigEvent(int32_t event, const Info& info, int64_t context) override {
        return Note("OnChannelConfigEvent", event, static_cast<int>(info.reserved), context);
    }
};

}  // namespace hbbtv::test
