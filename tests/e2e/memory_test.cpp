// A service whose memory is limited: no message ends it, whatever the message would become when it is parsed, and none
// of its memory stays.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <climits>
#include <list>
#include <string>
#include <thread>
#include <vector>

#include "build_kind.h"
#include "process_usage.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;

constexpr int64_t kVb = 0x1000;
constexpr size_t kMaxBytes = 16u << 20;
constexpr size_t kMaxValues = 100000;
constexpr size_t kMaxNumberBytes = 64u << 10;

struct Family {
    const char* name;
    const char* requests;
    const char* events;
    int port;
};

const std::vector<Family> kFamilies = {
    {"video_broadcast", "service_plugin_to_hbbtv_vb", "service_hbbtv_to_plugin_vb", 7},
    {"av_control", "service_plugin_to_hbbtv_av_ctrl", "service_hbbtv_to_plugin_av_ctrl", 19},
    {"channel_config", "service_plugin_to_hbbtv_vb_chn_config", "service_hbbtv_to_plugin_vb_chn_config", 3},
    {"configuration", "service_plugin_to_hbbtv_conf", "service_hbbtv_to_plugin_conf", 12},
    {"dsmcc", "service_dsmcc_to_hbbtv", "service_hbbtv_to_dsmcc", 2},
    {"mtm", "service_mtm_to_hbbtv", "service_hbbtv_to_mtm", 1},
    {"search_manager", "service_plugin_to_hbbtv_sm", "service_hbbtv_to_plugin_sm", 8},
    {"application_manager", "service_plugin_to_hbbtv_apm", "service_hbbtv_to_plugin_apm", 1},
};

std::string Times(size_t count, const std::string& text) {
    std::string all;
    all.reserve(count * text.size());
    for (size_t i = 0; i < count; ++i) all += text;
    return all;
}

// As many as fit into the text.
std::string Filled(const std::string& begin, const std::string& piece, const std::string& end) {
    return begin + Times((kMaxBytes - begin.size() - end.size()) / piece.size(), piece) + end;
}

// An event and a reply: with each shape, the largest that is accepted and the largest that can be sent.
const std::vector<std::string>& Shapes() {
    static const std::vector<std::string> shapes = [] {
        const std::string begin =
            R"({"ret": 0, "type": "videobroadcast", "event": 14, "code": 2, "method": 0, "contentID": ")";
        const std::string list = begin + R"(", "list": [)";
        const std::string members = begin + "\"";
        std::vector<std::string> all;
        for (const char* element : {"[],", "{},", "1,", "\"\\u00e9\",", "/**/[]/**/,"}) {
            all.push_back(list + Times(kMaxValues - 20, element) + "1]}");
            all.push_back(list + Times(kMaxValues / 2 - 20, element) + "1]}");
            all.push_back(Filled(list, element, "1]}"));
        }
        for (const char* value : {":{}", ":1", ":[]"}) {
            for (const size_t count : {kMaxValues - 20, size_t{1000000}}) {
                all.push_back(members);
                for (size_t i = 0; i < count; ++i) all.back() += ",\"" + std::to_string(i) + "\"" + value;
                all.back() += "}";
            }
        }
        for (const char* piece : {"x", "\\n", "\\u00e9", "\\\""}) all.push_back(Filled(begin, piece, "\"}"));
        for (const char* piece : {"/**/", "//\n", " "}) all.push_back(Filled(members, piece, "}"));
        all.push_back(Filled(list + "1.", "0", "]}"));
        all.push_back(Filled(list + "1", "1", "]}"));
        all.push_back(std::string(60 << 20, '['));
        all.push_back(list + Times(20 << 20, "[],") + "1]}");
        return all;
    }();
    return shapes;
}

class LimitedService : public testing::Test {
  protected:
    LimitedService() {
        for (const Family& family : kFamilies) mPlatforms.emplace_back(family.requests, R"({"ret": 0})");
        EXPECT_NE(FindVideoBroadcast(), nullptr);
        for (const Family& family : kFamilies) {
            mClients.emplace_back(family.name);
            EXPECT_TRUE(mClients.back().Registered()) << mClients.back().Output();
        }
        for (const Family& family : kFamilies) EXPECT_TRUE(Send(family, "{}"));
        mIdle = UsageOf(mService.Pid());
    }

    // Sends an event. Returns whether the service handled or refused it, but did not end.
    bool Send(const Family& family, const std::string& event) const {
        RawConnection connection = RawConnection::To(mDirectory / family.events);
        // A connection whose message cannot be stored is closed.
        const bool written = connection.Write(FrameBytes(kOneWay, family.port, event)) &&
                             connection.Write(FrameBytes(kRequest, family.port, "{}"));
        return !written || connection.ReadFrame().has_value() || connection.PeerCloses();
    }

    void Limit(size_t mebibytes) const {
        if (kSanitized) return;  // a sanitizer needs terabytes of address space
        const rlim_t most = static_cast<rlim_t>(mIdle.addressSpaceKiB) * 1024 + (mebibytes << 20);
        const rlimit limit{most, RLIM_INFINITY};
        ASSERT_EQ(prlimit(mService.Pid(), RLIMIT_AS, &limit, nullptr), 0);
    }

    void ExpectServed() {
        mPlatforms.front().SetReply(R"({"ret": 0, "volume": 20})");
        const android::sp<IVideoBroadcast> service = FindVideoBroadcast();
        ASSERT_NE(service, nullptr);
        EXPECT_TRUE(service->SetVolume(kVb, 20).isOk());
        ASSERT_EQ(mService.WaitForExit(std::chrono::milliseconds(0)), std::nullopt) << mService.Output();
    }

    // Sends a message by `send`. Returns by how much the memory of the service grows meanwhile, at most.
    template <typename Function>
    long Peak(const Function& send) {
        const long before = UsageOf(mService.Pid()).residentKiB;
        ForgetPeak(mService.Pid());
        send();
        return PeakResidentKiB(mService.Pid()) - before;
    }

    // Allows for what the log, the heap's metadata and the stacks of threads keep.
    void ExpectNothingStays() const {
        if (kSanitized) return;
        EXPECT_TRUE(WaitFor([&] { return UsageOf(mService.Pid()).residentKiB < mIdle.residentKiB + (4 << 10); },
                            std::chrono::seconds(5)))
            << ToText(mIdle) << "\n"
            << ToText(UsageOf(mService.Pid()));
    }

    const ScratchDirectory mDirectory;
    std::list<FakePlatform> mPlatforms;
    ServiceProcess mService;
    std::list<RegisteredClient> mClients;
    ProcessUsage mIdle{};
};

TEST_F(LimitedService, SurvivesEveryEventWith128MiB) {
    ASSERT_NO_FATAL_FAILURE(Limit(128));
    for (const std::string& shape : Shapes()) {
        for (const Family& family : {kFamilies[0], kFamilies[4]}) {
            EXPECT_TRUE(Send(family, shape)) << shape.substr(0, 200);
        }
        ASSERT_NO_FATAL_FAILURE(ExpectServed()) << shape.substr(0, 200);
    }
    ExpectNothingStays();
}

TEST_F(LimitedService, SurvivesEveryReplyWith128MiB) {
    const android::sp<IVideoBroadcast> service = FindVideoBroadcast();
    ASSERT_NO_FATAL_FAILURE(Limit(128));
    for (const std::string& shape : Shapes()) {
        mPlatforms.front().SetReply(shape);
        EXPECT_TRUE(service->SetVolume(kVb, 20).isOk()) << shape.substr(0, 200);
        ASSERT_NO_FATAL_FAILURE(ExpectServed()) << shape.substr(0, 200);
    }
    ExpectNothingStays();
}

// Too many values, too long a number, too deep, closed in the wrong order, unfinished: found at the end of the text.
std::vector<std::string> RefusedTexts() {
    const std::string text(15u << 20, ' ');
    return {Filled("{\"list\": [", "[],", "1]}"), text + "{\"n\": " + std::string(kMaxNumberBytes + 1, '1') + "}",
            text + std::string(1100, '['), text + "{]", text + "{\"name\": \"x"};
}

TEST_F(LimitedService, TakesAtMostTwiceTheTextOfAMessageThatItRefuses) {
    const android::sp<IVideoBroadcast> service = FindVideoBroadcast();
    for (const std::string& text : RefusedTexts()) {
        const long twice = static_cast<long>(2 * text.size() / 1024);
        const std::string end = text.substr(text.size() - 20);
        const long event = Peak([&] { EXPECT_TRUE(Send(kFamilies[0], text)); });
        EXPECT_LT(event, kSanitized ? LONG_MAX : twice) << end;
        mPlatforms.front().SetReply(text);
        const long reply = Peak([&] { EXPECT_EQ(service->SetVolume(kVb, 20).withDefault(0), -1); });
        EXPECT_LT(reply, kSanitized ? LONG_MAX : twice) << end;
    }
    // A text over the limit is not stored.
    constexpr long kWithoutText = 2 << 10;
    const std::string tooLong(kMaxBytes + 1, ' ');
    EXPECT_LT(Peak([&] { EXPECT_TRUE(Send(kFamilies[0], tooLong)); }), kSanitized ? LONG_MAX : kWithoutText);
    mPlatforms.front().SetReply(tooLong);
    EXPECT_LT(Peak([&] { EXPECT_EQ(service->SetVolume(kVb, 20).withDefault(0), -1); }),
              kSanitized ? LONG_MAX : kWithoutText);
    ExpectServed();
    ExpectNothingStays();
}

TEST_F(LimitedService, SurvivesEightEventsAtOnceWith512MiB) {
    ASSERT_NO_FATAL_FAILURE(Limit(512));
    for (const std::string& shape : Shapes()) {
        std::vector<std::thread> senders;
        for (const Family& family : kFamilies) {
            senders.emplace_back([this, &family, &shape] { EXPECT_TRUE(Send(family, shape)); });
        }
        for (std::thread& sender : senders) sender.join();
        ASSERT_NO_FATAL_FAILURE(ExpectServed()) << shape.substr(0, 200);
    }
    ExpectNothingStays();
}

}  // namespace

}  // namespace hbbtv::test
