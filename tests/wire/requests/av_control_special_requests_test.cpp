// The one operation of the AV control adaptor: lists of components of any length and with any values.

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <thread>

#include "ipc/src/plugin/tolm_av_control_adaptor_ipc.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"
#include "wire_texts.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmAVControlAdaptorIpc;
using Components = std::vector<TolmAVCtrlComponentData>;

TolmHeapText HeapText(const char* text) {
    return TolmHeapText(strdup(text));
}

int Update(int type, Components components, int currentIndex) {
    return Adaptor::GetInstance()->ComponentUpdate(7, {type}, components, currentIndex);
}

class ComponentUpdate : public ::testing::Test {
  protected:
    ~ComponentUpdate() override { Adaptor::DeleteInstance(); }

    // The request that tells of these components.
    std::string RequestFor(int type, Components components, int currentIndex) {
        mPlatform.ForgetFrames();
        EXPECT_EQ(Update(type, std::move(components), currentIndex), 0);
        EXPECT_TRUE(mPlatform.WaitForFrames(1));
        const std::vector<Frame> frames = mPlatform.Frames();
        return frames.size() == 1 ? frames[0].payload : std::to_string(frames.size()) + " requests";
    }

    ScratchDirectory mDirectory;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0}"};
};

Components One(TolmHeapText encoding, TolmHeapText language) {
    Components components;
    components.push_back({false, 0, 0, std::move(encoding), std::move(language), 0, false, false});
    return components;
}

// The request for One(), with its texts as they stand on the wire.
std::string RequestForOne(const std::string& encoding, const std::string& language) {
    return "{\n\t\"component_count\" : 1,\n\t\"component_type\" : 0,\n\t\"components\" : \n\t[\n\t\t{\n"
           "\t\t\t\"actived\" : false,\n\t\t\t\"audio_channelNum\" : 0,\n\t\t\t\"compTag\" : 0,\n"
           "\t\t\t\"comp_type\" : 0,\n\t\t\t\"desc\" : false,\n\t\t\t\"encoding\" : " +
           encoding + ",\n\t\t\t\"impaired\" : false,\n\t\t\t\"language\" : " + language +
           "\n\t\t}\n\t],\n\t\"current_component_index\" : 0,\n\t\"method\" : 0,\n\t\"type\" : 2\n}\n";
}

}  // namespace

TEST_F(ComponentUpdate, OfTwoHasAnObjectForEachInTheirOrder) {
    Components components;
    components.push_back({true, -11, -12, HeapText("E-AC3"), HeapText("fra"), 4000000001u, true, false});
    components.push_back({false, 21, 22, HeapText("AC3"), HeapText("deu"), 2, false, true});
    EXPECT_EQ(RequestFor(-1, std::move(components), -2),
              "{\n"
              "\t\"component_count\" : 2,\n"
              "\t\"component_type\" : -1,\n"
              "\t\"components\" : \n"
              "\t[\n"
              "\t\t{\n"
              "\t\t\t\"actived\" : true,\n"
              "\t\t\t\"audio_channelNum\" : 4000000001,\n"
              "\t\t\t\"compTag\" : -11,\n"
              "\t\t\t\"comp_type\" : -12,\n"
              "\t\t\t\"desc\" : false,\n"
              "\t\t\t\"encoding\" : \"E-AC3\",\n"
              "\t\t\t\"impaired\" : true,\n"
              "\t\t\t\"language\" : \"fra\"\n"
              "\t\t},\n"
              "\t\t{\n"
              "\t\t\t\"actived\" : false,\n"
              "\t\t\t\"audio_channelNum\" : 2,\n"
              "\t\t\t\"compTag\" : 21,\n"
              "\t\t\t\"comp_type\" : 22,\n"
              "\t\t\t\"desc\" : true,\n"
              "\t\t\t\"encoding\" : \"AC3\",\n"
              "\t\t\t\"impaired\" : false,\n"
              "\t\t\t\"language\" : \"deu\"\n"
              "\t\t}\n"
              "\t],\n"
              "\t\"current_component_index\" : -2,\n"
              "\t\"method\" : 0,\n"
              "\t\"type\" : 2\n"
              "}\n");
}

TEST_F(ComponentUpdate, OfNoneHasNullInPlaceOfTheList) {
    EXPECT_EQ(RequestFor(0, {}, 0),
              "{\n\t\"component_count\" : 0,\n\t\"component_type\" : 0,\n\t\"components\" : null,\n"
              "\t\"current_component_index\" : 0,\n\t\"method\" : 0,\n\t\"type\" : 2\n}\n");
}

TEST_F(ComponentUpdate, KeepsNumbersAtTheirLimits) {
    Components components;
    components.push_back({false, INT_MIN, INT_MAX, nullptr, nullptr, UINT_MAX, false, false});
    EXPECT_EQ(RequestFor(INT_MAX, std::move(components), INT_MIN),
              "{\n\t\"component_count\" : 1,\n\t\"component_type\" : 2147483647,\n\t\"components\" : \n\t[\n\t\t{\n"
              "\t\t\t\"actived\" : false,\n\t\t\t\"audio_channelNum\" : 4294967295,\n"
              "\t\t\t\"compTag\" : -2147483648,\n\t\t\t\"comp_type\" : 2147483647,\n\t\t\t\"desc\" : false,\n"
              "\t\t\t\"encoding\" : \"\",\n\t\t\t\"impaired\" : false,\n\t\t\t\"language\" : \"\"\n\t\t}\n\t],\n"
              "\t\"current_component_index\" : -2147483648,\n\t\"method\" : 0,\n\t\"type\" : 2\n}\n");
}

TEST_F(ComponentUpdate, CarriesTextsOfEveryKind) {
    for (const WireText& text : WireTexts()) {
        if (text.text.find('\0') != std::string::npos) continue;  // a heap text ends there
        SCOPED_TRACE(text.name);
        EXPECT_EQ(RequestFor(0, One(HeapText(text.text.c_str()), nullptr), 0), RequestForOne(text.onTheWire, "\"\""));
        EXPECT_EQ(RequestFor(0, One(nullptr, HeapText(text.text.c_str())), 0), RequestForOne("\"\"", text.onTheWire));
    }
}

TEST_F(ComponentUpdate, ConsumesTheListWhetherItIsSentOrNot) {
    Components components = One(HeapText("HEAAC"), HeapText("deu"));
    EXPECT_EQ(Adaptor::GetInstance()->ComponentUpdate(0, {1}, components, 0), 0);
    EXPECT_TRUE(components.empty());
}

TEST_F(ComponentUpdate, OfManyComponentsArrivesWhole) {
    constexpr unsigned kMany = 10000;
    Components components;
    for (unsigned i = 0; i < kMany; ++i) {
        components.push_back({false, static_cast<int>(i), 1, HeapText("AC3"), HeapText("deu"), i, false, false});
    }
    Json::Value request;
    ASSERT_TRUE(Json::Reader().parse(RequestFor(1, std::move(components), 0), request));
    EXPECT_EQ(request["component_count"].asUInt(), kMany);
    ASSERT_EQ(request["components"].size(), kMany);
    for (unsigned i = 0; i < kMany; ++i) EXPECT_EQ(request["components"][i]["audio_channelNum"].asUInt(), i);
}

TEST_F(ComponentUpdate, OfManyThreadsComesWhole) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 10; ++i) EXPECT_EQ(Update(t, One(HeapText("AC3"), HeapText("deu")), i), 0);
        });
    }
    for (std::thread& thread : threads) thread.join();
    ASSERT_TRUE(mPlatform.WaitForFrames(80));
    int seen[8] = {};
    for (const Frame& frame : mPlatform.Frames()) {
        Json::Value request;
        ASSERT_TRUE(Json::Reader().parse(frame.payload, request)) << frame.payload;
        ++seen[request["component_type"].asInt()];
    }
    for (const int updates : seen) EXPECT_EQ(updates, 10);
    EXPECT_EQ(mPlatform.Connections(), 1);
}

TEST(ComponentUpdateWithoutPlatform, ConsumesTheListAnyway) {
    const ScratchDirectory directory;
    Components components = One(HeapText("HEAAC"), HeapText("deu"));
    EXPECT_EQ(Adaptor::GetInstance()->ComponentUpdate(0, {1}, components, 0), -1);
    EXPECT_TRUE(components.empty());
    Adaptor::DeleteInstance();
}

}  // namespace hbbtv::test
