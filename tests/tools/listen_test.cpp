// hbbtvctl listen: events as they come, until an interruption, a count, a time, or the end of the service.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <time.h>

#include <filesystem>
#include <set>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

int64_t Microseconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return int64_t{now.tv_sec} * 1000000 + now.tv_nsec / 1000;
}

std::string Request(int type, int method, const std::string& members = "") {
    return "{\n" + members + "\t\"method\" : " + std::to_string(method) + ",\n\t\"type\" : " + std::to_string(type) +
           "\n}\n";
}

std::set<std::string> FilesBelow(const std::string& directory) {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) files.insert(entry.path());
    return files;
}

// The platform is played by the test, so that its requests are seen.
class Listen : public Alone {
  protected:
    void SetUp() override { ASSERT_NE(nullptr, FindVideoBroadcast()); }

    void Emit() {
        const FinishedRun run = Ctl({"emit", "channel_config", "changed", "reserved=A"});
        ASSERT_EQ(0, run.exit) << run.Text();
    }

    FakePlatform mPlatform{"service_plugin_to_hbbtv_vb_chn_config", R"({"ret": 0})"};
    FakePlatform mVideoBroadcast{"service_plugin_to_hbbtv_vb", R"({"ret": 0, "vb_handle": "0xbeef"})"};
    ServiceProcess mService;
};

TEST_F(Listen, PrintsEachEventAsALineOfJsonWithBothClocks) {
    Listener listener({"channel_config"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    const int64_t wall = Microseconds(CLOCK_REALTIME);
    const int64_t monotonic = Microseconds(CLOCK_MONOTONIC);
    Emit();
    ASSERT_TRUE(listener.WaitForEvents(1)) << listener.Output();
    const Json::Value event = listener.Events()[0];
    EXPECT_EQ("IChannelConfigCallback", event["interface"].asString());
    EXPECT_EQ("OnChannelConfigEvent", event["method"].asString());
    EXPECT_EQ(65, event["arguments"]["info"]["reserved"].asInt());
    EXPECT_LE(wall, event["wall_us"].asInt64());
    EXPECT_GE(Microseconds(CLOCK_REALTIME), event["wall_us"].asInt64());
    EXPECT_LE(monotonic, event["monotonic_us"].asInt64());
    EXPECT_GE(Microseconds(CLOCK_MONOTONIC), event["monotonic_us"].asInt64());
}

TEST_F(Listen, PrintsEventsForPeopleAndEndsAfterSoMany) {
    CtlProcess listener({"listen", "IChannelConfig", "--with", "context=0x2a", "--count", "2"});
    ASSERT_TRUE(listener.WaitForOutput("listening, Ctrl-C ends\n")) << listener.Output();
    Emit();
    Emit();
    EXPECT_EQ(0, listener.WaitForExit());
    const std::string line =
        "[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+\\.[0-9]+Z  [0-9]+\\.[0-9]+  "
        "IChannelConfigCallback\\.OnChannelConfigEvent event=0 info=.reserved 65. context=0x2a\n";
    EXPECT_THAT(listener.Output(), MatchesRegex("hbbtvctl: listening, Ctrl-C ends\n" + line + line));
}

TEST_F(Listen, UnregistersByCtrlCAndBySigtermAndEndsWell) {
    for (const int signal : {SIGINT, SIGTERM}) {
        mPlatform.ForgetFrames();
        Listener listener({"channel_config"});
        ASSERT_TRUE(listener.Listens()) << listener.Output();
        ASSERT_EQ(1u, mPlatform.Frames().size());
        EXPECT_EQ(Request(19, 0, "\t\"context\" : \"\",\n"), mPlatform.Frames()[0].payload);
        listener.Signal(signal);
        EXPECT_EQ(0, listener.WaitForExit());
        EXPECT_EQ("hbbtvctl: listening, Ctrl-C ends\n", listener.Output());
        ASSERT_LE(2u, mPlatform.Frames().size());
        EXPECT_EQ(Request(19, 1), mPlatform.Frames()[1].payload);
    }
}

TEST_F(Listen, EndsAfterItsTimeAndLeavesNothingBehind) {
    Ctl({"listen", "channel_config", "--for", "1ms"});  // makes the library's socket
    const std::set<std::string> before = FilesBelow(mDirectory.Path());
    mPlatform.ForgetFrames();
    const FinishedRun run = Ctl({"listen", "channel_config", "--for", "50ms"});
    EXPECT_EQ(0, run.exit) << run.Text();
    EXPECT_EQ("", run.output);
    ASSERT_LE(2u, mPlatform.Frames().size());
    EXPECT_EQ(Request(19, 1), mPlatform.Frames()[1].payload);
    EXPECT_EQ(before, FilesBelow(mDirectory.Path()));
}

TEST_F(Listen, MakesTheObjectThatTheRegistrationNeedsAndEndsIt) {
    Listener listener({"video_broadcast"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    listener.Signal(SIGINT);
    EXPECT_EQ(0, listener.WaitForExit());
    const std::vector<Frame> frames = mVideoBroadcast.Frames();
    ASSERT_EQ(4u, frames.size());
    EXPECT_EQ(Request(3, 0, "\t\"context\" : \"\",\n"), frames[0].payload);
    const auto ofObject = [](int method, const std::string& context = "") {
        return "{\n" + context + "\t\"method\" : " + std::to_string(method) +
               ",\n\t\"type\" : 3,\n\t\"vb_handle\" : \"0xbeef\"\n}\n";
    };
    EXPECT_EQ(ofObject(3, "\t\"context\" : \"\",\n"), frames[1].payload);
    EXPECT_EQ(ofObject(4), frames[2].payload);
    EXPECT_EQ(ofObject(2), frames[3].payload);
}

TEST_F(Listen, TakesArgumentsOfTheRegistrationForTheFamiliesThatHaveThem) {
    Listener listener({"video_broadcast", "channel_config", "--with", "vb=0x77", "--with", "context=0x9"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    EXPECT_EQ(Request(19, 0, "\t\"context\" : \"0x9\",\n"), mPlatform.Frames()[0].payload);
    for (const Frame& frame : mVideoBroadcast.Frames()) {
        EXPECT_THAT(frame.payload, HasSubstr("\"vb_handle\" : \"0x77\"")) << "no object is made";
    }
    // Events of both families, each over a socket of its own, so that only waiting keeps them in order.
    Emit();
    ASSERT_TRUE(listener.WaitForEvents(1)) << listener.Output();
    ASSERT_EQ(0, Ctl({"emit", "video_broadcast", "onPlayPositionChanged", "position=1234", "--one-way"}).exit);
    ASSERT_TRUE(listener.WaitForEvents(2)) << listener.Output();
    EXPECT_EQ("onPlayPositionChanged", listener.Events()[1]["method"].asString());
    EXPECT_EQ(1234, listener.Events()[1]["arguments"]["position"].asInt());
}

TEST_F(Listen, PrintsEventsThatComeFasterThanClocksTick) {
    constexpr size_t kEvents = 2000;
    Listener listener({"channel_config", "--count", std::to_string(kEvents)});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    std::string frames;
    for (size_t i = 0; i < kEvents; ++i) {
        const char letter = static_cast<char>('A' + i % 26);
        frames += FrameBytes(kOneWay, 3, std::string(R"({"event": 0, "reserved": ")") + letter + "\"}");
    }
    WriteFile(mDirectory / "events", frames);
    ASSERT_EQ(0, Ctl({"emit", "channel_config", "--raw", "@" + (mDirectory / "events"), "--timeout", "1ms"}).exit);
    EXPECT_EQ(0, listener.WaitForExit());
    const std::vector<Json::Value> events = listener.Events();
    ASSERT_EQ(kEvents, events.size());
    for (size_t i = 0; i < kEvents; ++i) {
        ASSERT_EQ(static_cast<int>('A' + i % 26), events[i]["arguments"]["info"]["reserved"].asInt()) << i;
        if (i > 0) {
            ASSERT_LE(events[i - 1]["monotonic_us"].asInt64(), events[i]["monotonic_us"].asInt64());
        }
    }
}

TEST_F(Listen, NeedsTheObjectThatItRegistersFor) {
    mVideoBroadcast.SetReply(R"({"ret": -1})");
    const FinishedRun run = Ctl({"listen", "video_broadcast"});
    EXPECT_EQ(1, run.exit);
    EXPECT_EQ(
        "hbbtvctl: IVideoBroadcast.Create: status -1; the registration needs this object: give one as --with "
        "vb=HANDLE, or ask `hbbtvctl doctor` whether the platform is there\n",
        run.errors);
}

TEST_F(Listen, GoesOnWhenTheRegistrationIsRefused) {
    mPlatform.SetReply(R"({"ret": -1})");
    Listener listener({"channel_config"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    EXPECT_THAT(listener.Output(), HasSubstr("hbbtvctl: IChannelConfig.RegisterCallback: status -1; listening all the "
                                             "same, since what the platform refuses to a second client the service may "
                                             "hand on to it\n"));
    Emit();
    EXPECT_TRUE(listener.WaitForEvents(1)) << listener.Output();
}

TEST_F(Listen, EndsWithSixWhenTheServiceIsKilled) {
    Listener listener({"channel_config", "video_broadcast"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    mService.Kill();
    EXPECT_EQ(6, listener.WaitForExit());
    EXPECT_EQ(
        "hbbtvctl: listening, Ctrl-C ends\nhbbtvctl: the service that was listened to went away; look at its log, "
        "start it, and listen again\n",
        listener.Output());
}

TEST_F(Listen, EndsByCtrlCWhileThePlatformKeepsTheRegistrationWaiting) {
    mPlatform.SetAnswer([](const Frame&) { return std::nullopt; });
    CtlProcess listener({"listen", "channel_config", "--timeout", "1000s"});
    ASSERT_TRUE(mPlatform.WaitForFrames(1));
    listener.Signal(SIGINT);
    EXPECT_EQ(0, listener.WaitForExit()) << listener.Output();
    EXPECT_EQ("", listener.Output());
}

TEST_F(Listen, EndsQuietlyAndUnregistersWhenItsReaderGoes) {
    const std::string program = HBBTVCTL_PROGRAM;
    ChildProcess pipe({"sh", "-c", program + " listen channel_config | head -1"});
    ASSERT_TRUE(pipe.WaitForOutput("listening, Ctrl-C ends\n"));
    Emit();
    EXPECT_EQ(0, pipe.WaitForExit());
    EXPECT_THAT(pipe.Output(), MatchesRegex("hbbtvctl: listening, Ctrl-C ends\n[^\n]* context=0x0\n"));
    EXPECT_TRUE(WaitFor([&] { return mPlatform.Frames().back().payload == Request(19, 1); })) << "no event is needed";
}

TEST_F(Listen, AnswersAMethodThatNeedsAnAnswer) {
    FakePlatform browser("service_mtm_to_hbbtv", R"({"ret": 0})");
    {
        Listener listener({"mtm", "--answer", R"(CreateApp={"status": 0, "tabId": 23})"});
        ASSERT_TRUE(listener.Listens()) << listener.Output();
        const FinishedRun made = Ctl({"emit", "mtm", "CreateApp", "url=http://a"});
        EXPECT_EQ("ret    0\ntabid  23\n", made.output) << made.errors;
        // Nobody said what the others answer.
        const FinishedRun ping = Ctl({"emit", "mtm", "Ping"});
        EXPECT_EQ("ret     0\nstatus  0\n", ping.output) << ping.errors;
        ASSERT_TRUE(listener.WaitForEvents(2)) << listener.Output();
        EXPECT_EQ("CreateApp", listener.Events()[0]["method"].asString());
        EXPECT_EQ("http://a", listener.Events()[0]["arguments"]["url"].asString());
    }
    Listener refusing({"mtm", "--answer", R"(IMtmCallback.CreateApp={"status": -7, "tabId": 0})"});
    ASSERT_TRUE(refusing.Listens()) << refusing.Output();
    const FinishedRun refused = Ctl({"emit", "mtm", "CreateApp", "url=http://a"});
    EXPECT_EQ(1, refused.exit);
    EXPECT_EQ("ret  -1\n", refused.output.substr(0, 8)) << "as the library tells of any browser that fails";
}

TEST_F(Listen, TakesTheSameObjectAwayThatItHasRegistered) {
    FakePlatform configuration("service_plugin_to_hbbtv_conf", R"({"ret": 0})");
    Listener listener({"configuration"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    listener.Signal(SIGINT);
    EXPECT_EQ(0, listener.WaitForExit());
    EXPECT_EQ("hbbtvctl: listening, Ctrl-C ends\n", listener.Output());
    // The service has forgotten the client already: removing it is a status of 0 only once.
    Listener next({"configuration", "--count", "1"});
    ASSERT_TRUE(next.Listens()) << next.Output();
    ASSERT_EQ(0, Ctl({"emit", "configuration", "8", "--one-way"}).exit);
    EXPECT_EQ(0, next.WaitForExit());
    EXPECT_EQ(1u, next.Events().size());
}

TEST_F(Listen, RegistersForEveryKindOfEventOrForTheOneThatWasAskedFor) {
    FakePlatform manager("service_plugin_to_hbbtv_apm", R"({"ret": 0})");
    Listener all({"application_manager", "--count", "1"});
    ASSERT_TRUE(all.Listens()) << all.Output();
    const FinishedRun rating = Ctl({"emit", "application_manager", "271", "countryCode=deu", "--json"});
    EXPECT_EQ(0, rating.exit) << rating.Text();
    EXPECT_EQ(0, all.WaitForExit());
    EXPECT_EQ("onGetLocalParantalRating", all.Events()[0]["method"].asString());
    EXPECT_EQ("deu", all.Events()[0]["arguments"]["countryCode"].asString());
    // Now nobody is registered for it.
    EXPECT_EQ(1, Ctl({"emit", "application_manager", "271", "countryCode=deu"}).exit);
    Listener keys({"application_manager", "--with", "event=KEY_PRESS"});
    ASSERT_TRUE(keys.Listens()) << keys.Output();
    EXPECT_EQ(1, Ctl({"emit", "application_manager", "271", "countryCode=deu"}).exit);
}

TEST_F(Listen, ShowsAnEventOnceWhenAFamilyIsNamedTwice) {
    Listener listener({"channel_config", "IChannelConfig"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    EXPECT_EQ(1u, mPlatform.Frames().size());
}

}  // namespace

}  // namespace hbbtv::test
