// hbbtvctl replay: a recording takes the place of the platform, or of the library.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "common/local_socket.h"
#include "ctl.h"
#include "traffic/record/recording.h"
#include "wire/connection.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kChannels = "service_plugin_to_hbbtv_vb_chn";
constexpr const char* kChannelConfig = "service_plugin_to_hbbtv_vb_chn_config";
constexpr const char* kChannelConfigEvents = "service_hbbtv_to_plugin_vb_chn_config";
constexpr const char* kCurrent = R"({"method":2,"type":19})";

std::string GetName(const std::string& handle) {
    return R"({"c_handle":")" + handle + R"(","method":13,"type":12})";
}

std::string SetName(const std::string& handle, const std::string& name) {
    return R"({"c_handle":")" + handle + R"(","method":12,"name":")" + name + R"(","type":12})";
}

class Replay : public Alone {
  protected:
    // Adds an exchange to the recording, a millisecond after the one before. An empty reply is none.
    void Recorded(const std::string& socket, const std::string& request, const std::string& reply,
                  uint64_t duration = 100, int type = kRequest) {
        traffic::Record record;
        record.number = ++mNumber;
        record.time = TimeStamp(1700000000000000 + 1000 * mNumber, 1000 * mNumber);
        record.connection = socket == kChannels ? 1 : 2;
        record.message = {type, 2, 0, {}, ""};
        SetPayload(record.message, request);
        if (!reply.empty()) {
            record.reply = traffic::Message{kReply, 2, 0, {}, ""};
            SetPayload(*record.reply, reply);
            record.duration = duration;
        }
        Identify(record, socket);
        Append(record);
    }

    void Append(const traffic::Record& record) {
        if (!mWriter) mWriter = std::make_unique<traffic::RecordingWriter>(File(), traffic::RecordingHead());
        ASSERT_EQ(mWriter->Write(record), "");
    }

    // The next record begins a new file.
    void StartFile() { mWriter.reset(); }

    std::string File() const { return mDirectory / "traffic.ndjson"; }

    std::unique_ptr<CtlProcess> Platform(std::vector<std::string> options = {}) const {
        std::vector<std::string> command{"replay", File(), "--as", "platform"};
        command.insert(command.end(), options.begin(), options.end());
        auto platform = std::make_unique<CtlProcess>(command);
        EXPECT_TRUE(platform->WaitForOutput("listening; press Ctrl-C to stop\n")) << platform->Output();
        return platform;
    }

    static std::optional<int> End(CtlProcess& platform) {
        platform.Signal(SIGINT);
        return platform.WaitForExit();
    }

    static FinishedRun Name(const std::string& handle) {
        return Ctl({"send", "channel.GetName", "c_handle=" + handle, "--json"});
    }

  private:
    uint64_t mNumber = 0;
    std::unique_ptr<traffic::RecordingWriter> mWriter;
};

TEST_F(Replay, AnswersEachRequestOnceAsRecordedInAnyOrder) {
    Recorded(kChannels, GetName("0x1"), R"({"name":"One","ret":0})");
    Recorded(kChannels, GetName("0x2"), R"({"name":"Two","ret":0})");
    Recorded(kChannels, GetName("0x1"), R"({"name":"Uno","ret":0})");
    const auto platform = Platform();
    for (const auto& [handle, name] : {std::pair{"0x2", "Two"}, {"0x1", "One"}, {"0x1", "Uno"}}) {
        EXPECT_THAT(Name(handle).output, HasSubstr(std::string(R"("name":")") + name)) << handle;
    }
    EXPECT_EQ(End(*platform), 0);
    EXPECT_THAT(platform->Output(), HasSubstr("replayed 3 of 3 requests and 0 of 0 events\n"));
    EXPECT_NE(access((mDirectory / kChannels).c_str(), F_OK), 0) << "it has removed its sockets";
}

TEST_F(Replay, NamesTheNearestRecordOnAMissAndFailsTheRequest) {
    Recorded(kChannels, SetName("0x1", "One"), R"({"ret":0})");
    const auto platform = Platform();
    const FinishedRun send = Ctl({"send", "channel.SetName", "c_handle=0x1", "name=Eins"});
    EXPECT_EQ(send.exit, 1);
    EXPECT_EQ(send.output, "ret  -1\n");
    EXPECT_EQ(End(*platform), 7);
    EXPECT_THAT(platform->Output(), HasSubstr("miss: channel.SetName c_handle=0x00000001 name=\"Eins\"\n"
                                              "    the nearest is record 1, channel.SetName: \"name\" is \"Eins\", in "
                                              "the recording \"One\"\n"
                                              "replayed 0 of 1 request and"));
}

TEST_F(Replay, ClosesTheConnectionOnAMissIfThatIsWanted) {
    Recorded(kChannels, GetName("0x1"), R"({"name":"One","ret":0})");
    const auto platform = Platform({"--on-miss", "close"});
    EXPECT_EQ(Ctl({"send", "channel.GetSid", "c_handle=0x1"}).exit, 6);
    EXPECT_EQ(End(*platform), 7);
}

TEST_F(Replay, AnswersAgainOnlyWithRepeat) {
    Recorded(kChannels, GetName("0x1"), R"({"name":"One","ret":0})");
    {
        const auto platform = Platform();
        EXPECT_EQ(Name("0x1").exit, 0);
        EXPECT_EQ(Name("0x1").exit, 1);
        EXPECT_EQ(End(*platform), 7);
    }
    const auto platform = Platform({"--repeat"});
    for (int i = 0; i < 3; ++i) EXPECT_THAT(Name("0x1").output, HasSubstr("One"));
    EXPECT_EQ(End(*platform), 0);
}

TEST_F(Replay, KeepsTheOrderIfItIsStrict) {
    Recorded(kChannelConfig, kCurrent, R"({"handle":"0x1","ret":0})");
    Recorded(kChannels, GetName("0x1"), R"({"name":"One","ret":0})");
    const auto platform = Platform({"--strict"});
    EXPECT_EQ(Name("0x1").exit, 1);
    EXPECT_EQ(Ctl({"send", "channel_config.GetCurrentChannel"}).exit, 0);
    EXPECT_EQ(Name("0x1").exit, 0);
    EXPECT_EQ(End(*platform), 7);
    EXPECT_THAT(platform->Output(), HasSubstr("expected is record 1, channel_config.GetCurrentChannel\n"));
}

TEST_F(Replay, AnswersAfterTheRecordedOrTheGivenTime) {
    Recorded(kChannels, GetName("0x1"), R"({"name":"One","ret":0})", 300000);
    Recorded(kChannels, GetName("0x2"), R"({"name":"Two","ret":0})", 3600000000);
    const auto took = [](const std::string& handle) {
        return Document(Ctl({"send", "channel.GetName", "c_handle=" + handle, "--json", "--time"}))["took_us"]
            .asUInt64();
    };
    {
        const auto platform = Platform();
        EXPECT_GE(took("0x1"), 300000u);
    }
    ASSERT_EQ(unlink((mDirectory / kChannels).c_str()), 0) << "the first platform was killed";
    const auto platform = Platform({"--delay", "100ms"});
    EXPECT_GE(took("0x2"), 100000u);
    EXPECT_EQ(End(*platform), 0);
}

TEST_F(Replay, SendsAnEventAfterTheExchangeThatTheRecordingHasBeforeIt) {
    Recorded(kChannels, SetName("0x1", "One"), R"({"ret":0})");
    Recorded(kChannelConfigEvents, R"({"event":0,"reserved":"A"})", "", 0, kOneWay);
    const auto platform = Platform({"--json"});
    const Descriptor library(ListenOn(mDirectory / kChannelConfigEvents));
    EXPECT_EQ(Ctl({"send", "channel.SetName", "c_handle=0x1", "name=One"}).exit, 0);
    ASSERT_TRUE(WaitFor([&] { return Descriptor(accept(library.Get(), nullptr, nullptr)).Get() >= 0; }));
    EXPECT_EQ(End(*platform), 0);
    EXPECT_THAT(platform->Output(), HasSubstr(R"("events":1,"events_replayed":1,)"));
}

TEST_F(Replay, AnswersOnSocketsOfUnknownFamiliesAndWithWhatIsNotJson) {
    Recorded("service_of_tomorrow", R"({"new":1})", "\x01 not JSON");
    Recorded("service_of_tomorrow", "\x02", R"({"ret":0})");
    const auto platform = Platform();
    WireConnection connection(mDirectory / "service_of_tomorrow");
    connection.Send(Encode({kRequest, 2, "\x02"}), kPatience);
    EXPECT_EQ(connection.Receive(kPatience).payload, "{\n\t\"ret\" : 0\n}\n");
    connection.Send(Encode({kRequest, 2, R"({"new": 1})"}), kPatience);
    EXPECT_EQ(connection.Receive(kPatience).payload, "\x01 not JSON");
    connection.Send("\x05", kPatience);  // a header that is cut
    EXPECT_EQ(End(*platform), 0);
}

// The other side ended before it had answered.
TEST_F(Replay, ClosesTheConnectionWhereTheRecordingDoes) {
    Recorded(kChannels, GetName("0x1"), "");
    traffic::Record closed;
    closed.kind = traffic::Record::Kind::Closed;
    closed.connection = 1;
    closed.time = TimeStamp(1700000000002000, 2000);
    Append(closed);
    const auto platform = Platform();
    EXPECT_EQ(Name("0x1").exit, 6);
    EXPECT_EQ(End(*platform), 0);
}

TEST_F(Replay, RefusesWhatIsNotARecordingAndSocketsThatAreServed) {
    EXPECT_EQ(Ctl({"replay", mDirectory / "none", "--as", "platform"}).exit, 2);
    WriteFile(File(), "{}\n");
    EXPECT_THAT(Ctl({"replay", File(), "--as", "platform"}).errors, HasSubstr("is not a recording"));
    ASSERT_EQ(unlink(File().c_str()), 0);
    Recorded(kChannels, GetName("0x1"), R"({"name":"One","ret":0})");
    EXPECT_THAT(Ctl({"replay", File(), "--as", "browser"}).errors, HasSubstr("neither platform nor library"));
    EXPECT_EQ(Ctl({"replay", File(), "--as", "library"}).exit, 3) << "there is no platform";
    const Descriptor other(ListenOn(mDirectory / kChannels));
    const FinishedRun served = Ctl({"replay", File(), "--as", "platform"});
    EXPECT_EQ(served.exit, 2);
    EXPECT_THAT(served.errors, HasSubstr("another process serves it"));
}

// Two recordings, one as each side.
TEST_F(Replay, AsTheLibraryReportsOtherTimesWithoutFailing) {
    const auto recorded = [this](const std::string& start) {
        Recorded("service_plugin_to_hbbtv_program", R"({"handle":"0x1","method":13,"type":5})",
                 R"({"out_startTime":)" + start + R"(,"ret":0})");
    };
    recorded("1000");
    const std::string before = mDirectory / "before.ndjson";
    ASSERT_EQ(Ctl({"show", File(), "--record", before}).exit, 0);
    ASSERT_EQ(unlink(File().c_str()), 0);
    StartFile();
    recorded("2000");
    const auto platform = Platform();
    const FinishedRun run = Ctl({"replay", before, "--as", "library"});
    EXPECT_EQ(run.exit, 0) << run.Text();
    EXPECT_EQ(run.output,
              "clock: record 1, programme.GetStartTime handle=0x00000001\n"
              "    \"out_startTime\" is 2000, in the recording 1000\n"
              "replayed 1 of 1 request and 0 of 0 events\n"
              "0 not in the recording, 0 replied differently, 1 with other times only, 0 did not come, "
              "0 not delivered\n");
    EXPECT_EQ(End(*platform), 0);
}

// A platform that shares no code with this project.
class ReplayAsTheLibrary : public Replay {
  protected:
    void SetUp() override {
        mPlatform = std::make_unique<ChildProcess>(
            std::vector<std::string>{"/usr/bin/python3", HBBTV_SOURCE_DIR "/examples/platform/platform.py"});
        ASSERT_TRUE(mPlatform->WaitForOutput("ready"));
        Recorded(kChannelConfig, kCurrent, R"({"handle":"0xabc","ret":0})");
        Recorded(kChannelConfig, kCurrent, R"({"handle":"0xdef","ret":0})");
        Recorded(kChannels, GetName("0xdef"), R"({"name":"First","ret":0})");
        Recorded(kChannels, SetName("0xabc", "Uno"), R"({"ret":0})");
        Recorded(kChannelConfigEvents, R"({"event":0,"reserved":"\u0001"})", "", 0, kOneWay);
        Recorded(kChannels, GetName("0xdef"), R"({"name":"Uno","ret":0})");
    }

    std::unique_ptr<ChildProcess> mPlatform;
};

TEST_F(ReplayAsTheLibrary, FindsNoDifferenceInOtherHandles) {
    const FinishedRun run = Ctl({"replay", File(), "--as", "library"});
    EXPECT_EQ(run.exit, 0) << run.Text();
    EXPECT_THAT(run.output, StartsWith("replayed 5 of 5 requests and 1 of 1 event\n"));
}

TEST_F(ReplayAsTheLibrary, ReportsOtherRepliesAndEventsThatDoNotCome) {
    Recorded(kChannels, GetName("0xabc"), R"({"name":"Due","ret":0})");
    Recorded(kChannelConfigEvents, R"({"event":0,"reserved":"B"})", "", 0, kOneWay);
    const FinishedRun run = Ctl({"replay", File(), "--as", "library", "--timeout", "200ms"});
    EXPECT_EQ(run.exit, 7);
    EXPECT_THAT(run.output, StartsWith("difference: record 7, channel.GetName c_handle=0x00000abc\n"
                                       "    \"name\" is \"Uno\", in the recording \"Due\"\n"
                                       "missing: record 8, channel_config.changed reserved=\"B\"\n"
                                       "    it did not come\n"));
}

TEST_F(ReplayAsTheLibrary, NeedsTheSocketsOfTheLibraryOnlyForRecordedEvents) {
    const Descriptor service(ListenOn(mDirectory / kChannelConfigEvents));
    const FinishedRun refused = Ctl({"replay", File(), "--as", "library"});
    EXPECT_EQ(refused.exit, 2);
    EXPECT_THAT(refused.errors, HasSubstr("another process serves it"));
    const std::string requests = mDirectory / "requests.ndjson";
    ASSERT_EQ(Ctl({"show", File(), "--filter", "!event", "--record", requests}).exit, 0);
    EXPECT_EQ(Ctl({"replay", requests, "--as", "library"}).exit, 0);
}

TEST_F(ReplayAsTheLibrary, ReportsThatThePlatformDoesNotReply) {
    mPlatform->Signal(SIGSTOP);
    const FinishedRun run = Ctl({"replay", File(), "--as", "library", "--timeout", "50ms", "--json"});
    EXPECT_EQ(run.exit, 7);
    EXPECT_THAT(run.output, HasSubstr("no reply within 50 ms"));
    mPlatform->Signal(SIGCONT);
}

}  // namespace

}  // namespace hbbtv::test
