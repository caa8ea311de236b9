// hbbtvctl listen: events, and its end by a signal, a count, a time, or the death of the service.

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

// The test is the platform, to see the requests.
class Listen : public Alone {
  protected:
    void SetUp() override { ASSERT_NE(FindVideoBroadcast(), nullptr); }

    void Emit() {
        const FinishedRun run = Ctl({"emit", "channel_config", "changed", "reserved=A"});
        ASSERT_EQ(run.exit, 0) << run.Text();
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
    EXPECT_EQ(event["interface"].asString(), "IChannelConfigCallback");
    EXPECT_EQ(event["method"].asString(), "OnChannelConfigEvent");
    EXPECT_EQ(event["arguments"]["info"]["reserved"].asInt(), 65);
    EXPECT_LE(wall, event["wall_us"].asInt64());
    EXPECT_GE(Microseconds(CLOCK_REALTIME), event["wall_us"].asInt64());
    EXPECT_LE(monotonic, event["monotonic_us"].asInt64());
    EXPECT_GE(Microseconds(CLOCK_MONOTONIC), event["monotonic_us"].asInt64());
}

TEST_F(Listen, PrintsEventsForPeopleAndEndsAfterACount) {
    CtlProcess listener({"listen", "IChannelConfig", "--with", "context=0x2a", "--count", "2"});
    ASSERT_TRUE(listener.WaitForOutput("listening; press Ctrl-C to stop\n")) << listener.Output();
    Emit();
    Emit();
    EXPECT_EQ(listener.WaitForExit(), 0);
    const std::string line =
        "[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+\\.[0-9]+Z  [0-9]+\\.[0-9]+  "
        "IChannelConfigCallback\\.OnChannelConfigEvent event=0 info=.reserved 65. context=0x0000002a\n";
    EXPECT_THAT(listener.Output(), MatchesRegex("hbbtvctl: listening; press Ctrl-C to stop\n" + line + line));
}

TEST_F(Listen, UnregistersOnCtrlCAndSigtermAndExitsWithZero) {
    for (const int signal : {SIGINT, SIGTERM}) {
        mPlatform.ForgetFrames();
        Listener listener({"channel_config"});
        ASSERT_TRUE(listener.Listens()) << listener.Output();
        ASSERT_EQ(mPlatform.Frames().size(), 1u);
        EXPECT_EQ(mPlatform.Frames()[0].payload, Request(19, 0, "\t\"context\" : \"\",\n"));
        listener.Signal(signal);
        EXPECT_EQ(listener.WaitForExit(), 0);
        EXPECT_EQ(listener.Output(), "hbbtvctl: listening; press Ctrl-C to stop\n");
        ASSERT_LE(2u, mPlatform.Frames().size());
        EXPECT_EQ(mPlatform.Frames()[1].payload, Request(19, 1));
    }
}

TEST_F(Listen, EndsAfterATimeAndLeavesNoFiles) {
    Ctl({"listen", "channel_config", "--for", "1ms"});  // creates the socket of the library
    const std::set<std::string> before = FilesBelow(mDirectory.Path());
    mPlatform.ForgetFrames();
    const FinishedRun run = Ctl({"listen", "channel_config", "--for", "50ms"});
    EXPECT_EQ(run.exit, 0) << run.Text();
    EXPECT_EQ(run.output, "");
    ASSERT_LE(2u, mPlatform.Frames().size());
    EXPECT_EQ(mPlatform.Frames()[1].payload, Request(19, 1));
    EXPECT_EQ(FilesBelow(mDirectory.Path()), before);
}

TEST_F(Listen, CreatesTheObjectThatTheRegistrationRequiresAndDestroysIt) {
    Listener listener({"video_broadcast"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    listener.Signal(SIGINT);
    EXPECT_EQ(listener.WaitForExit(), 0);
    const std::vector<Frame> frames = mVideoBroadcast.Frames();
    ASSERT_EQ(frames.size(), 4u);
    EXPECT_EQ(frames[0].payload, Request(3, 0, "\t\"context\" : \"\",\n"));
    const auto ofObject = [](int method, const std::string& context = "") {
        return "{\n" + context + "\t\"method\" : " + std::to_string(method) +
               ",\n\t\"type\" : 3,\n\t\"vb_handle\" : \"0xbeef\"\n}\n";
    };
    EXPECT_EQ(frames[1].payload, ofObject(3, "\t\"context\" : \"\",\n"));
    EXPECT_EQ(frames[2].payload, ofObject(4));
    EXPECT_EQ(frames[3].payload, ofObject(2));
}

TEST_F(Listen, TakesArgumentsOfTheRegistrationForTheFamiliesThatHaveThem) {
    Listener listener({"video_broadcast", "channel_config", "--with", "vb=0x77", "--with", "context=0x9"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    EXPECT_EQ(mPlatform.Frames()[0].payload, Request(19, 0, "\t\"context\" : \"0x9\",\n"));
    for (const Frame& frame : mVideoBroadcast.Frames()) {
        EXPECT_THAT(frame.payload, HasSubstr("\"vb_handle\" : \"0x77\"")) << "no object is created";
    }
    // Each family has its own socket, so only waiting keeps the order of the events.
    Emit();
    ASSERT_TRUE(listener.WaitForEvents(1)) << listener.Output();
    ASSERT_EQ(Ctl({"emit", "video_broadcast", "onPlayPositionChanged", "position=1234", "--one-way"}).exit, 0);
    ASSERT_TRUE(listener.WaitForEvents(2)) << listener.Output();
    EXPECT_EQ(listener.Events()[1]["method"].asString(), "onPlayPositionChanged");
    EXPECT_EQ(listener.Events()[1]["arguments"]["position"].asInt(), 1234);
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
    ASSERT_EQ(Ctl({"emit", "channel_config", "--raw", "@" + (mDirectory / "events"), "--timeout", "1ms"}).exit, 0);
    EXPECT_EQ(listener.WaitForExit(), 0);
    const std::vector<Json::Value> events = listener.Events();
    ASSERT_EQ(events.size(), kEvents);
    for (size_t i = 0; i < kEvents; ++i) {
        ASSERT_EQ(events[i]["arguments"]["info"]["reserved"].asInt(), static_cast<int>('A' + i % 26)) << i;
        if (i > 0) {
            ASSERT_LE(events[i - 1]["monotonic_us"].asInt64(), events[i]["monotonic_us"].asInt64());
        }
    }
}

TEST_F(Listen, NeedsTheObjectThatItRegistersFor) {
    mVideoBroadcast.SetReply(R"({"ret": -1})");
    const FinishedRun run = Ctl({"listen", "video_broadcast"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_EQ(run.errors,
              "hbbtvctl: IVideoBroadcast.Create: status -1; the registration requires this object: pass one as --with "
              "vb=HANDLE, or check the platform with `hbbtvctl doctor`\n");
}

TEST_F(Listen, GoesOnWhenTheRegistrationIsRefused) {
    mPlatform.SetReply(R"({"ret": -1})");
    Listener listener({"channel_config"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    EXPECT_THAT(listener.Output(), HasSubstr("hbbtvctl: IChannelConfig.RegisterCallback: status -1; listening anyway, "
                                             "because the service may still deliver events\n"));
    Emit();
    EXPECT_TRUE(listener.WaitForEvents(1)) << listener.Output();
}

TEST_F(Listen, EndsWithSixWhenTheServiceIsKilled) {
    Listener listener({"channel_config", "video_broadcast"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    mService.Kill();
    EXPECT_EQ(listener.WaitForExit(), 6);
    EXPECT_EQ(listener.Output(),
              "hbbtvctl: listening; press Ctrl-C to stop\nhbbtvctl: the service ended; check its log, restart it, and "
              "listen again\n");
}

TEST_F(Listen, EndsByCtrlCWhileThePlatformKeepsTheRegistrationWaiting) {
    mPlatform.SetAnswer([](const Frame&) { return std::nullopt; });
    CtlProcess listener({"listen", "channel_config", "--timeout", "1000s"});
    ASSERT_TRUE(mPlatform.WaitForFrames(1));
    listener.Signal(SIGINT);
    EXPECT_EQ(listener.WaitForExit(), 0) << listener.Output();
    EXPECT_EQ(listener.Output(), "");
}

TEST_F(Listen, EndsQuietlyAndUnregistersWhenItsReaderGoes) {
    const std::string program = HBBTVCTL_PROGRAM;
    ChildProcess pipe({"sh", "-c", program + " listen channel_config | head -1"});
    ASSERT_TRUE(pipe.WaitForOutput("listening; press Ctrl-C to stop\n"));
    Emit();
    EXPECT_EQ(pipe.WaitForExit(), 0);
    EXPECT_THAT(pipe.Output(), MatchesRegex("hbbtvctl: listening; press Ctrl-C to stop\n[^\n]* context=0x00000000\n"));
    EXPECT_TRUE(WaitFor([&] { return mPlatform.Frames().back().payload == Request(19, 1); })) << "no event is needed";
}

TEST_F(Listen, AnswersAMethodThatReturnsAValue) {
    FakePlatform browser("service_mtm_to_hbbtv", R"({"ret": 0})");
    {
        Listener listener({"mtm", "--answer", R"(CreateApp={"status": 0, "tabId": 23})"});
        ASSERT_TRUE(listener.Listens()) << listener.Output();
        const FinishedRun made =
            Ctl({"emit", "mtm", "CreateApp", "url=http://a", "auto_show=true", "isBr=true", "appMode="});
        EXPECT_EQ(made.output, "ret    0\ntabid  23\n") << made.errors;
        // No answer is given for the other methods.
        const FinishedRun ping = Ctl({"emit", "mtm", "Ping"});
        EXPECT_EQ(ping.output, "ret     0\nstatus  0\n") << ping.errors;
        ASSERT_TRUE(listener.WaitForEvents(2)) << listener.Output();
        EXPECT_EQ(listener.Events()[0]["method"].asString(), "CreateApp");
        EXPECT_EQ(listener.Events()[0]["arguments"]["url"].asString(), "http://a");
    }
    Listener refusing({"mtm", "--answer", R"(IMtmCallback.CreateApp={"status": -7, "tabId": 0})"});
    ASSERT_TRUE(refusing.Listens()) << refusing.Output();
    const FinishedRun refused =
        Ctl({"emit", "mtm", "CreateApp", "url=http://a", "auto_show=true", "isBr=true", "appMode="});
    EXPECT_EQ(refused.exit, 1);
    EXPECT_EQ(refused.output.substr(0, 8), "ret  -1\n") << "as for any browser that fails";
}

TEST_F(Listen, UnregistersTheObjectThatItHasRegistered) {
    FakePlatform configuration("service_plugin_to_hbbtv_conf", R"({"ret": 0})");
    Listener listener({"configuration"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    listener.Signal(SIGINT);
    EXPECT_EQ(listener.WaitForExit(), 0);
    EXPECT_EQ(listener.Output(), "hbbtvctl: listening; press Ctrl-C to stop\n");
    // The service has removed the client already: unregistering returns 0 only once.
    Listener next({"configuration", "--count", "1"});
    ASSERT_TRUE(next.Listens()) << next.Output();
    ASSERT_EQ(Ctl({"emit", "configuration", "8", "age=12", "--one-way"}).exit, 0);
    EXPECT_EQ(next.WaitForExit(), 0);
    EXPECT_EQ(next.Events().size(), 1u);
}

TEST_F(Listen, RegistersForEveryKindOfEventOrForTheGivenOne) {
    FakePlatform manager("service_plugin_to_hbbtv_apm", R"({"ret": 0})");
    Listener all({"application_manager", "--count", "1"});
    ASSERT_TRUE(all.Listens()) << all.Output();
    const FinishedRun rating = Ctl({"emit", "application_manager", "271", "countryCode=deu", "--json"});
    EXPECT_EQ(rating.exit, 0) << rating.Text();
    EXPECT_EQ(all.WaitForExit(), 0);
    EXPECT_EQ(all.Events()[0]["method"].asString(), "onGetLocalParantalRating");
    EXPECT_EQ(all.Events()[0]["arguments"]["countryCode"].asString(), "deu");
    // Now no client is registered for it.
    EXPECT_EQ(Ctl({"emit", "application_manager", "271", "countryCode=deu"}).exit, 1);
    Listener keys({"application_manager", "--with", "event=KEY_PRESS"});
    ASSERT_TRUE(keys.Listens()) << keys.Output();
    EXPECT_EQ(Ctl({"emit", "application_manager", "271", "countryCode=deu"}).exit, 1);
}

TEST_F(Listen, ShowsAnEventOnceWhenAFamilyIsNamedTwice) {
    Listener listener({"channel_config", "IChannelConfig"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    EXPECT_EQ(mPlatform.Frames().size(), 1u);
}

}  // namespace

}  // namespace hbbtv::test
