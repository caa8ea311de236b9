// A client's callback for searches that keeps what it is told.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/ISearchManagerCallback.h>

#include "recording_client.h"

namespace hbbtv::test {

class RecordingSearchManagerCallback : public RecordingClient<vantorel::hardware::hbbtv::V1_0::ISearchManagerCallback> {
  public:
    using Info = vantorel::hardware::hbbtv::V1_0::TolmSearchManagerEventInfo;

    Return<void> OnSearchManagerEvent(int32_t event, const Info& info, int64_t context) override {
        return Note("OnSearchManagerEvent", event, info.state, info.searchHandle, context);
    }
};

}  // namespace hbbtv::test
