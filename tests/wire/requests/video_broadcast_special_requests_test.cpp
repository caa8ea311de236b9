// What sets single operations of the video/broadcast adaptor apart from the rows of its table.

#include <android/log.h>
#include <gtest/gtest.h>

#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "log_capture.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using Vb = TolmVideoBroadcastAdaptorIpc;

const void* const kVb = reinterpret_cast<const void*>(0x8000a1b2);

class VideoBroadcastRequests : public ::testing::Test {
  protected:
    ~VideoBroadcastRequests() override { Vb::DeleteInstance(); }

    Vb& Adaptor() { return *Vb::GetInstance(); }

    // That the adaptor said nothing but ENTER and LEAVE, and the platform was not asked.
    void ExpectSilence(const char* operation) {
        std::vector<std::string> lines;
        for (const LogLine& line : mLog.Lines()) {
            if (line.tag != "[ipc_vb]") continue;
            EXPECT_EQ(line.priority, ANDROID_LOG_VERBOSE);
            EXPECT_EQ(line.file, "tolm_video_broadcast_adaptor_ipc.cpp");
            lines.push_back(line.function + " " + line.message);
        }
        EXPECT_EQ(lines,
                  (std::vector<std::string>{std::string(operation) + " ENTER", std::string(operation) + " LEAVE"}));
        // A request that is answered comes after anything that was sent before.
        EXPECT_EQ(Adaptor().Stop(kVb), 0);
        EXPECT_EQ(mPlatform.Frames().size(), 1u);
    }

    ScratchDirectory mDirectory;
    LogCapture mLog;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0}"};
};

}  // namespace

TEST_F(VideoBroadcastRequests, RecordNowSendsNothingAndGivesZero) {
    std::string recordingId = "before";
    EXPECT_EQ(Adaptor().RecordNow(kVb, 60, recordingId), 0);
    EXPECT_EQ(recordingId, "before");
    ExpectSilence("RecordNow");
}

TEST_F(VideoBroadcastRequests, SetChannelExtSendsNothingAndGivesZero) {
    const void* channel = reinterpret_cast<const void*>(0xcafe0001);
    EXPECT_EQ(Adaptor().SetChannel_Ext(kVb, channel, true, "dvb://1.2.3", 1), 0);
    EXPECT_EQ(channel, reinterpret_cast<const void*>(0xcafe0001));
    ExpectSilence("SetChannel_Ext");
}

TEST_F(VideoBroadcastRequests, ClearCallbackSendsNothing) {
    Adaptor().ClearCallback();
    ExpectSilence("ClearCallback");
}

TEST_F(VideoBroadcastRequests, RegisterMediaSyncCallbackSendsNothing) {
    Adaptor().RegisterMediaSyncCallback([](const TolmMediaSyncEvent&, const TolmMediaSyncEventInfo&, const void*) {},
                                        nullptr);
    EXPECT_EQ(Adaptor().Stop(kVb), 0);
    EXPECT_EQ(mPlatform.Frames().size(), 1u);
}

TEST_F(VideoBroadcastRequests, AFailureIsNotLoggedByTheAdaptor) {
    mPlatform.SetReply("nonsense");
    int state = 0;
    EXPECT_EQ(Adaptor().GetPlayState(kVb, state), -1);
    for (const LogLine& line : mLog.Lines()) {
        EXPECT_TRUE(line.tag != "[ipc_vb]" || line.priority == ANDROID_LOG_VERBOSE) << line.text;
    }
    EXPECT_EQ(mLog.Count(ANDROID_LOG_VERBOSE, "[ipc_vb]", "LEAVE"), 1);
}

TEST_F(VideoBroadcastRequests, AnExchangeIsLoggedWithBothDocuments) {
    mPlatform.SetReply("{\"state\": 2, \"ret\": 0}");
    int state = 0;
    EXPECT_EQ(Adaptor().GetPlayState(kVb, state), 0);
    EXPECT_EQ(mLog.Count(ANDROID_LOG_DEBUG, "[ipc_base]",
                         "send msg:{\n\t\"method\" : 7,\n\t\"type\" : 3,\n\t\"vb_handle\" : \"0x8000a1b2\"\n}\n"
                         ", out_msg:{\n\t\"ret\" : 0,\n\t\"state\" : 2\n}\n"),
              1)
        << mLog.Text();
}

TEST_F(VideoBroadcastRequests, OfManyThreadsEachGetTheirOwnReply) {
    // Gives back the index that it was asked for.
    mPlatform.SetAnswer([](const Frame& request) {
        const std::string key = "\"index\" : ";
        const size_t at = request.payload.find(key) + key.size();
        const std::string index = request.payload.substr(at, request.payload.find(',', at) - at);
        return "{\"ret\": 0, \"programme\": \"" + index + "\"}";
    });
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 8; ++t) {
        threads.emplace_back([&, t] {
            for (unsigned i = 10 * t; i < 10 * t + 10; ++i) {
                void* programme = nullptr;
                const int status = Adaptor().GetProgrammeByIndex(kVb, i, programme);
                // The handle is read in hexadecimal.
                const uintptr_t expected = std::stoul(std::to_string(i), nullptr, 16);
                if (status != 0 || reinterpret_cast<uintptr_t>(programme) != expected) ++wrong;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(mPlatform.Frames().size(), 80u);
    EXPECT_EQ(mPlatform.Connections(), 1);
}

}  // namespace hbbtv::test
