// Arguments and results of the video/broadcast adaptor at their limits, as they stand on the wire.

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using Vb = TolmVideoBroadcastAdaptorIpc;

const void* Handle(uintptr_t bits) {
    return reinterpret_cast<const void*>(bits);
}

class VideoBroadcastValues : public ::testing::Test {
  protected:
    ~VideoBroadcastValues() override { Vb::DeleteInstance(); }

    Vb& Adaptor() { return *Vb::GetInstance(); }

    // The text of the last request.
    std::string Sent() const {
        const std::vector<Frame> frames = mPlatform.Frames();
        return frames.empty() ? "nothing" : frames.back().payload;
    }

    ScratchDirectory mDirectory;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0}"};
};

}  // namespace

TEST_F(VideoBroadcastValues, HandlesStandOnTheWireInHexadecimal) {
    const std::pair<uintptr_t, const char*> handles[] = {
        {0, "\"\""},
        {1, "\"0x1\""},
        {0x7fffffff, "\"0x7fffffff\""},
        {0x80000000, "\"0x80000000\""},
        {0xffffffff, "\"0xffffffff\""},
    };
    for (const auto& [bits, wire] : handles) {
        EXPECT_EQ(Adaptor().SelectComponent(Handle(bits), Handle(bits)), 0);
        EXPECT_EQ(Sent(), std::string("{\n\t\"component\" : ") + wire + ",\n\t\"method\" : 43,\n\t\"type\" : 3,\n" +
                              "\t\"vb_handle\" : " + wire + "\n}\n");
    }
}

TEST_F(VideoBroadcastValues, ANullContextIsTheEmptyText) {
    void* vb = nullptr;
    Adaptor().Create(nullptr, vb);
    EXPECT_EQ(Sent(), "{\n\t\"context\" : \"\",\n\t\"method\" : 0,\n\t\"type\" : 3\n}\n");
    Adaptor().RegisterCallback(nullptr, nullptr, nullptr);
    EXPECT_EQ(Sent(), "{\n\t\"context\" : \"\",\n\t\"method\" : 3,\n\t\"type\" : 3,\n\t\"vb_handle\" : \"\"\n}\n");
}

TEST_F(VideoBroadcastValues, HandlesOfRepliesAreReadInFull) {
    const std::pair<const char*, uintptr_t> handles[] = {
        {"0x1", 0x1},
        {"0x80000000", 0x80000000},
        {"0xffffffff", 0xffffffff},
        {"0xFFFF0000", 0xffff0000},
        {"80000000", 0x80000000},
        {" 0x7", 0x7},
        {"0x7 and more", 0x7},
    };
    for (const auto& [text, bits] : handles) {
        mPlatform.SetReply(std::string("{\"ret\": 0, \"channel\": \"") + text + "\"}");
        void* channel = nullptr;
        EXPECT_EQ(Adaptor().GetCurrentChannel(Handle(1), channel), 0) << text;
        EXPECT_EQ(channel, Handle(bits)) << text;
    }
}

TEST_F(VideoBroadcastValues, AnEmptyHandleOfAReplyLeavesTheResultAsItWas) {
    mPlatform.SetReply("{\"ret\": 0, \"channel\": \"\"}");
    void* channel = const_cast<void*>(Handle(0xabc));
    EXPECT_EQ(Adaptor().GetCurrentChannel(Handle(1), channel), 0);
    EXPECT_EQ(channel, Handle(0xabc));
}

TEST_F(VideoBroadcastValues, IntegersKeepTheirSign) {
    EXPECT_EQ(Adaptor().SetWindow(Handle(1), INT_MIN, INT_MAX, -1, 0), 0);
    EXPECT_EQ(Sent(),
              "{\n\t\"method\" : 5,\n\t\"rect_h\" : 0,\n\t\"rect_w\" : -1,\n\t\"rect_x\" : -2147483648,\n"
              "\t\"rect_y\" : 2147483647,\n\t\"type\" : 3,\n\t\"vb_handle\" : \"0x1\"\n}\n");
    EXPECT_EQ(Adaptor().SetVolume(Handle(1), UINT_MAX), 0);
    EXPECT_EQ(Sent(),
              "{\n\t\"method\" : 15,\n\t\"type\" : 3,\n\t\"vb_handle\" : \"0x1\",\n\t\"volume\" : 4294967295\n}\n");
    EXPECT_EQ(Adaptor().SetVolume(Handle(1), 0), 0);
    EXPECT_EQ(Sent(), "{\n\t\"method\" : 15,\n\t\"type\" : 3,\n\t\"vb_handle\" : \"0x1\",\n\t\"volume\" : 0\n}\n");
}

TEST_F(VideoBroadcastValues, BoolsStandAsWords) {
    EXPECT_EQ(Adaptor().SetFullScreen(Handle(1), false), 0);
    EXPECT_EQ(Sent(),
              "{\n\t\"fullscreen\" : false,\n\t\"method\" : 14,\n\t\"type\" : 3,\n\t\"vb_handle\" : \"0x1\"\n}\n");
    EXPECT_EQ(Adaptor().SetFullScreen(Handle(1), true), 0);
    EXPECT_EQ(Sent(),
              "{\n\t\"fullscreen\" : true,\n\t\"method\" : 14,\n\t\"type\" : 3,\n\t\"vb_handle\" : \"0x1\"\n}\n");
}

TEST_F(VideoBroadcastValues, DoublesStandWithAllTheirDigits) {
    const std::pair<double, const char*> speeds[] = {
        {0.0, "0.0"},
        {1.0, "1.0"},
        {-0.5, "-0.5"},
        {0.1, "0.10000000000000001"},
        {1.0 / 3, "0.33333333333333331"},
        {5e-324, "4.9406564584124654e-324"},
        {1e22, "1e+22"},
        {std::numeric_limits<double>::max(), "1.7976931348623157e+308"},
        // JSON has no words for these.
        {std::numeric_limits<double>::infinity(), "1e+9999"},
        {-std::numeric_limits<double>::infinity(), "-1e+9999"},
        {std::nan(""), "null"},
    };
    for (const auto& [speed, wire] : speeds) {
        EXPECT_EQ(Adaptor().SetSpeed(Handle(1), speed), 0);
        EXPECT_EQ(Sent(), std::string("{\n\t\"method\" : 31,\n\t\"speed\" : ") + wire +
                              ",\n\t\"type\" : 3,\n\t\"vb_handle\" : \"0x1\"\n}\n");
    }
}

TEST_F(VideoBroadcastValues, AWholeRealNumberIsAnInteger) {
    mPlatform.SetReply("{\"ret\": 0.0, \"state\": 2.0}");
    int state = -1;
    EXPECT_EQ(Adaptor().GetPlayState(Handle(1), state), 0);
    EXPECT_EQ(state, 2);
    mPlatform.SetReply("{\"ret\": 3.0}");
    EXPECT_EQ(Adaptor().GetPlayState(Handle(1), state), 3);
}

TEST_F(VideoBroadcastValues, TheLastOfTwoMembersOfOneNameCounts) {
    mPlatform.SetReply("{\"ret\": 1, \"state\": 1, \"ret\": 0, \"state\": 2}");
    int state = -1;
    EXPECT_EQ(Adaptor().GetPlayState(Handle(1), state), 0);
    EXPECT_EQ(state, 2);
}

TEST_F(VideoBroadcastValues, RepliesMayHoldComments) {
    mPlatform.SetReply("// from the platform\n{\"ret\": /* fine */ 0, \"state\": 2}\n");
    int state = -1;
    EXPECT_EQ(Adaptor().GetPlayState(Handle(1), state), 0);
    EXPECT_EQ(state, 2);
}

}  // namespace hbbtv::test
