// What the video/broadcast adaptor's users see when there is no memory for it.

#include <gtest/gtest.h>

#include <atomic>
#include <new>

#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "raw_socket.h"
#include "scratch_directory.h"

namespace {

std::atomic<bool> gNoMemory{false};

}  // namespace

// Of all allocations of this program, those that can be refused without an exception.
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return gNoMemory ? nullptr : ::operator new(size);
}

namespace hbbtv::test {

TEST(VideoBroadcastInstance, IsNullWhenThereIsNoMemoryForIt) {
    ScratchDirectory directory;
    FakePlatform platform("service_plugin_to_hbbtv_vb", "{\"ret\": 0}");
    gNoMemory = true;
    EXPECT_EQ(TolmVideoBroadcastAdaptorIpc::GetInstance(), nullptr);
    EXPECT_EQ(TolmVideoBroadcastAdaptorIpc::GetInstance(), nullptr);
    TolmVideoBroadcastAdaptorIpc::DeleteInstance();
    gNoMemory = false;
    ASSERT_NE(TolmVideoBroadcastAdaptorIpc::GetInstance(), nullptr);
    EXPECT_EQ(TolmVideoBroadcastAdaptorIpc::GetInstance()->Stop(nullptr), 0);
    TolmVideoBroadcastAdaptorIpc::DeleteInstance();
}

}  // namespace hbbtv::test
