// Messages between a client's process and the service that HIDL does not carry or that contain any bytes.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IAVControl.h>
#include <vantorel/hardware/hbbtv/1.0/IChannel.h>
#include <vantorel/hardware/hbbtv/1.0/IDsmcc.h>

#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using namespace vantorel::hardware::hbbtv::V1_0;
using android::sp;
using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using android::hardware::Return;

constexpr size_t kMaxMessage = (1u << 20) - (8u << 10);

// The longest string that is passed on in a reply or an event.
constexpr size_t kMaxText = kMaxMessage - 256;

struct Named {
    int32_t status;
    std::string name;
};

class ReplyOfMoreThanHidlCarries : public testing::Test {
  protected:
    ReplyOfMoreThanHidlCarries() : mChannels(Find<IChannel>()) {}

    Named GetName() {
        Named named{};
        const Return<void> returned = mChannels->GetName(0x4f10, [&](int32_t status, const hidl_string& name) {
            named = {status, name};
        });
        EXPECT_TRUE(returned.isOk()) << returned.description();
        return named;
    }

    void SetName(const std::string& name) { mPlatform.SetReply(R"({"ret": 0, "name": ")" + name + "\"}"); }

    const ScratchDirectory mDirectory;
    FakePlatform mPlatform{"service_plugin_to_hbbtv_vb_chn", R"({"ret": 0, "name": "ONE"})"};
    ServiceProcess mService;
    sp<IChannel> mChannels;
};

TEST_F(ReplyOfMoreThanHidlCarries, IsAFailureWithoutResults) {
    ASSERT_NE(mChannels, nullptr);
    EXPECT_EQ(GetName().name, "ONE");
    for (const size_t size : {kMaxText + 1, kMaxMessage, kMaxMessage + 1, size_t{8} << 20}) {
        SetName(std::string(size, 'x'));
        const Named named = GetName();
        EXPECT_EQ(named.status, -1) << size;
        EXPECT_EQ(named.name, "") << size;
    }
    EXPECT_TRUE(mService.WaitForOutput("GetName: results of " + std::to_string(kMaxText + 129) +
                                       " bytes are too large for HIDL, which takes " + std::to_string(kMaxText + 128)))
        << mService.Output();
    SetName("TWO");
    EXPECT_EQ(GetName().name, "TWO");
    EXPECT_EQ(mPlatform.Connections(), 1);
}

TEST_F(ReplyOfMoreThanHidlCarries, DiffersByOneByteFromOneThatArrives) {
    ASSERT_NE(mChannels, nullptr);
    SetName(std::string(kMaxText, 'x'));
    const Named named = GetName();
    EXPECT_EQ(named.status, 0);
    EXPECT_EQ(named.name, std::string(kMaxText, 'x'));
    EXPECT_EQ(mService.Output().find("too large for HIDL"), std::string::npos);
}

// Counts the paths of its events by their length.
class Files : public IDsmccCallback {
  public:
    Return<void> OnDsmccFileEvent(int32_t, const hidl_string&, const hidl_string& path, int64_t) override {
        std::lock_guard<std::mutex> lock(mMutex);
        ++mPaths[path.size()];
        return android::hardware::Void();
    }

    int Count(size_t length) const {
        std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mPaths.find(length);
        return found == mPaths.end() ? 0 : found->second;
    }

  private:
    mutable std::mutex mMutex;
    std::map<size_t, int> mPaths;  // guarded by mMutex
};

TEST(EventOfMoreThanHidlCarries, IsLoggedAndTheNextOneArrives) {
    const ScratchDirectory directory;
    const FakePlatform platform("service_dsmcc_to_hbbtv", R"({"ret": 0})");
    const ServiceProcess service;
    const sp<IDsmcc> dsmcc = Find<IDsmcc>();
    ASSERT_NE(dsmcc, nullptr);
    const sp<Files> files = new Files;
    ASSERT_TRUE(dsmcc->RegisterCallback(files).isOk());
    RawConnection connection = RawConnection::To(directory / "service_hbbtv_to_dsmcc");
    const auto send = [&](size_t length) {
        const std::string event =
            R"({"method": 4, "event": 0, "context": "0x1", "filePath": ")" + std::string(length, 'p') + "\"}";
        EXPECT_TRUE(connection.Write(FrameBytes(kOneWay, 2, event)));
    };
    send(kMaxText);
    send(kMaxMessage);
    send(8u << 20);
    send(7);
    EXPECT_TRUE(WaitFor([&] { return files->Count(7) == 1; })) << service.Output();
    EXPECT_EQ(files->Count(kMaxText), 1);
    EXPECT_EQ(files->Count(kMaxMessage), 0);
    EXPECT_EQ(files->Count(8u << 20), 0);
    const std::string line =
        "TolmBacBrowserDSMCCFileCallback: the client has not received the event: "
        "Status(EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION";
    EXPECT_TRUE(WaitFor([&] {
        const std::string output = service.Output();
        const size_t first = output.find(line);
        return first != std::string::npos && output.find(line, first + 1) != std::string::npos;
    })) << service.Output();
    EXPECT_TRUE(dsmcc->OnReleaseFile("dvb://1.2.3", 1).isOk());
    EXPECT_TRUE(dsmcc->UnregisterCallback().isOk());
}

// A struct's memory arrives as the client has written it.
TEST(BoolOfAClient, IsTrueWhateverItsByteIsUnlessItIs0) {
    const ScratchDirectory directory;
    const FakePlatform platform("service_plugin_to_hbbtv_av_ctrl", R"({"ret": 0})");
    const ServiceProcess service;
    const sp<IAVControl> control = Find<IAVControl>();
    ASSERT_NE(control, nullptr);
    hidl_vec<TolmAvComponentData> components;
    components.resize(2);
    for (bool TolmAvComponentData::*flag : {&TolmAvComponentData::actived, &TolmAvComponentData::hearingImpaired,
                                            &TolmAvComponentData::audioDescription}) {
        memset(&(components[0].*flag), 255, 1);
        memset(&(components[1].*flag), 2, 1);
    }
    ASSERT_TRUE(
        control->ComponentUpdate(TolmHbbtvAVCtrlEvent{}, TolmHbbtvAVComponentType::AUDIO, components, 0).isOk());
    ASSERT_TRUE(platform.WaitForFrames(1)) << service.Output();
    const std::string message = platform.Frames().front().payload;
    for (const char* key : {"actived", "impaired", "desc"}) {
        const std::string member = std::string("\"") + key + "\" : true";
        const size_t first = message.find(member);
        ASSERT_NE(first, std::string::npos) << message;
        EXPECT_NE(message.find(member, first + 1), std::string::npos) << message;
    }
}

}  // namespace

}  // namespace hbbtv::test
