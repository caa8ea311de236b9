// Lists made of channels by the channel configuration adaptor: their members on the wire, however many.

#include <gtest/gtest.h>

#include <cstdio>

#include "ipc/src/plugin/tolm_channel_config_adaptor_ipc.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"
#include "written_json.h"

namespace hbbtv::test {

namespace {

using Config = TolmChannelConfigAdaptorIpc;

void* Channel(uintptr_t bits) {
    return reinterpret_cast<void*>(bits);
}

class CreatedChannelList : public ::testing::Test {
  protected:
    ~CreatedChannelList() override { Config::DeleteInstance(); }

    // The request for a list of these channels, which the platform makes as list 0x5a20.
    std::string RequestFor(const std::vector<void*>& channels) {
        mPlatform.ForgetFrames();
        void* list = nullptr;
        EXPECT_EQ(Config::GetInstance()->CreateChannelList(channels, list), 0);
        EXPECT_EQ(list, Channel(0x5a20));
        const std::vector<Frame> frames = mPlatform.Frames();
        return frames.size() == 1 ? frames[0].payload : std::to_string(frames.size()) + " requests";
    }

    ScratchDirectory mDirectory;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0, \"list\": \"0x5a20\"}"};
};

}  // namespace

TEST_F(CreatedChannelList, OfNoneHasASizeAlone) {
    EXPECT_EQ(RequestFor({}), "{\n\t\"method\" : 8,\n\t\"size\" : 0,\n\t\"type\" : 19\n}\n");
}

TEST_F(CreatedChannelList, OfOneHasOneMember) {
    EXPECT_EQ(RequestFor({Channel(0x4f10)}),
              "{\n\t\"channel0\" : \"0x4f10\",\n\t\"method\" : 8,\n\t\"size\" : 1,\n\t\"type\" : 19\n}\n");
}

TEST_F(CreatedChannelList, OfThreeHasNoFourth) {
    EXPECT_EQ(RequestFor({Channel(0x4f10), Channel(0xffffffff), Channel(0x4f10)}),
              "{\n\t\"channel0\" : \"0x4f10\",\n\t\"channel1\" : \"0xffffffff\",\n\t\"channel2\" : \"0x4f10\",\n"
              "\t\"method\" : 8,\n\t\"size\" : 3,\n\t\"type\" : 19\n}\n");
}

TEST_F(CreatedChannelList, KeepsTheirPositionsWhenOneIsNull) {
    EXPECT_EQ(RequestFor({Channel(1), nullptr, Channel(2)}),
              "{\n\t\"channel0\" : \"0x1\",\n\t\"channel1\" : \"\",\n\t\"channel2\" : \"0x2\",\n"
              "\t\"method\" : 8,\n\t\"size\" : 3,\n\t\"type\" : 19\n}\n");
}

TEST_F(CreatedChannelList, OfElevenNumbersTheLastWithTwoDigits) {
    std::vector<void*> channels;
    for (uintptr_t i = 0; i < 11; ++i) channels.push_back(Channel(0x100 + i));
    EXPECT_EQ(RequestFor(channels),
              "{\n\t\"channel0\" : \"0x100\",\n\t\"channel1\" : \"0x101\",\n\t\"channel10\" : \"0x10a\",\n"
              "\t\"channel2\" : \"0x102\",\n\t\"channel3\" : \"0x103\",\n\t\"channel4\" : \"0x104\",\n"
              "\t\"channel5\" : \"0x105\",\n\t\"channel6\" : \"0x106\",\n\t\"channel7\" : \"0x107\",\n"
              "\t\"channel8\" : \"0x108\",\n\t\"channel9\" : \"0x109\",\n\t\"method\" : 8,\n\t\"size\" : 11,\n"
              "\t\"type\" : 19\n}\n");
}

TEST_F(CreatedChannelList, OfTenThousandHasThemAll) {
    std::vector<void*> channels;
    WrittenMembers members{{"type", "19"}, {"method", "8"}, {"size", "10000"}};
    for (int i = 0; i < 10000; ++i) {
        channels.push_back(Channel(0x80000000 + i));
        char text[32];
        snprintf(text, sizeof(text), "\"0x%x\"", 0x80000000u + i);
        members.emplace_back("channel" + std::to_string(i), text);
    }
    EXPECT_EQ(RequestFor(channels), Styled(ObjectOf(members)));
}

TEST_F(CreatedChannelList, IsReadFromListAndNotFromHandle) {
    mPlatform.SetReply("{\"ret\": 0, \"handle\": \"0x5a20\"}");
    void* list = Channel(0xbef0);
    EXPECT_EQ(Config::GetInstance()->CreateChannelList({Channel(1)}, list), -1);
    EXPECT_EQ(list, Channel(0xbef0));
}

TEST_F(CreatedChannelList, IsReadFromHandleWhenItIsFiltered) {
    void* list = Channel(0xbef0);
    EXPECT_EQ(Config::GetInstance()->CreateFilteredList(false, true, false, "fav:1", list), -1);
    EXPECT_EQ(list, Channel(0xbef0));
    mPlatform.SetReply("{\"ret\": 0, \"handle\": \"0x5a30\"}");
    EXPECT_EQ(Config::GetInstance()->CreateFilteredList(false, true, false, "fav:1", list), 0);
    EXPECT_EQ(list, Channel(0x5a30));
    ASSERT_EQ(mPlatform.Frames().size(), 2u);
    EXPECT_EQ(mPlatform.Frames()[1].payload,
              "{\n\t\"blocked\" : false,\n\t\"favourite\" : true,\n\t\"favouriteListID\" : \"fav:1\",\n"
              "\t\"hidden\" : false,\n\t\"method\" : 9,\n\t\"type\" : 19\n}\n");
}

TEST_F(CreatedChannelList, AndTheCurrentChannelFailWhenTheHandleIsANumber) {
    mPlatform.SetReply("{\"ret\": 0, \"handle\": 20240, \"list\": 20240}");
    void* channel = Channel(0xbef0);
    EXPECT_EQ(Config::GetInstance()->GetCurrentChannel(channel), -1);
    EXPECT_EQ(Config::GetInstance()->CreateChannelList({}, channel), -1);
    EXPECT_EQ(channel, Channel(0xbef0));
}

}  // namespace hbbtv::test
