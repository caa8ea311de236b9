// What is on now and next on the service that a video/broadcast object presents.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>

#include "caller.h"

namespace hbbtv::demo {

// Whether everything went as it should.
bool ShowNowAndNext(Transcript& transcript, Caller& caller,
                    const android::sp<vantorel::hardware::hbbtv::V1_0::IVideoBroadcast>& service, int64_t vb);

}  // namespace hbbtv::demo
