// A client's callback for AV control that keeps what it is told.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IAVControlCallback.h>

#include "recording_client.h"

namespace hbbtv::test {

class RecordingAVControlCallback : public RecordingClient<vantorel::hardware::hbbtv::V1_0::IAVControlCallback> {
  public:
    using Type = vantorel::hardware::hbbtv::V1_0::TolmHbbtvAVComponentType;

    Return<void> onComponentSelect(int32_t event, Type type, int32_t index) override {
        return Note("onComponentSelect", event, static_cast<int32_t>(type), index);
    }
};

}  // namespace hbbtv::test
