#include "application_log.h"

namespace hbbtv::demo {

bool ApplicationLog::WaitForEvent(std::chrono::milliseconds patience) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mCame.wait_for(lock, patience, [&] { return mSeen; });
}

ApplicationLog::None ApplicationLog::onApplicationEvent(Event event, const Info& info, int64_t) {
    mTranscript.Event("onApplicationEvent", "event " + std::to_string(static_cast<int32_t>(event)) + ", application " +
                                                std::to_string(info.appId) + " of organisation " +
                                                std::to_string(info.orgId));
    std::lock_guard<std::mutex> lock(mMutex);
    mSeen = true;
    mCame.notify_all();
    return {};
}

}  // namespace hbbtv::demo
