// Captures for Wireshark, read by tshark with the dissector.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "ctl.h"
#include "traffic/record/recording.h"
#include "wire/endpoint.h"
#include "wire/message.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;

const std::string kRecording = HBBTV_SOURCE_DIR "/examples/traffic/slow_channel_change.ndjson";
constexpr const char* kExtcap = HBBTV_SOURCE_DIR "/traffic/export/wireshark/hbbtv-extcap";

class Pcapng : public Alone {
  protected:
    std::string Capture() const { return mDirectory / "capture.pcapng"; }

    void Write(const std::string& recording) const {
        const FinishedRun run = Ctl({"show", recording, "--pcapng", Capture()});
        ASSERT_EQ(run.exit, 0) << run.Text();
    }

    // Returns the fields of the packets that the filter selects, a line each, separated by "|".
    std::string Fields(const std::string& filter, const std::vector<std::string>& fields) const {
        std::vector<std::string> command{
            "tshark", "-X",         "lua_script:" HBBTV_DISSECTOR, "-r", Capture(), "-Y", filter, "-T", "fields",
            "-E",     "separator=|"};
        for (const std::string& field : fields) command.insert(command.end(), {"-e", field});
        const FinishedRun run = RunToEnd(command, "", {"HOME=" + mDirectory.Path()});
        EXPECT_EQ(run.exit, 0) << run.Text();
        EXPECT_THAT(run.Text(), testing::Not(HasSubstr("Lua")));
        return run.output;
    }

    // A recording of these records.
    std::string Recorded(std::vector<traffic::Record> records) const {
        const std::string path = mDirectory / "records.ndjson";
        traffic::RecordingWriter writer(path, {});
        uint64_t number = 0;
        for (traffic::Record& record : records) {
            record.number = ++number;
            record.time = TimeStamp(1795348045000000 + 1000 * number, 1000 * number);
            EXPECT_EQ(writer.Write(record), "");
        }
        return path;
    }

    static traffic::Record Message(const std::string& socket, const std::string& payload, int32_t type = kRequest) {
        traffic::Record record;
        record.message = {type, 2, static_cast<uint32_t>(payload.size()), {}, ""};
        SetPayload(record.message, payload);
        Identify(record, socket);
        return record;
    }
};

TEST_F(Pcapng, HasTheMembersOfMessagesAsFields) {
    Write(kRecording);
    EXPECT_EQ(Fields(R"(hbbtv.op == "SetChannel")", {"hbbtv.type", "hbbtv.video_broadcast.channel", "hbbtv.ret",
                                                     "hbbtv.time_us", "hbbtv.video_broadcast.trickPlay"}),
              "2|0x5a10c3e8|||0\n"
              "3||0|5201333|\n");
    EXPECT_EQ(Fields("hbbtv.channel.c_handle == 0x5a10c3d4 || hbbtv.channel.name contains \"Erste\"",
                     {"frame.time_epoch", "hbbtv.op", "hbbtv.record"}),
              "1795348045.461229000|GetName|4\n"
              "1795348045.461416000|GetName|4\n");
    EXPECT_EQ(Fields("hbbtv.event == 1", {"hbbtv.op", "hbbtv.direction", "frame.p2p_dir"}),
              "TOLM_VB_EVENT_PLAY_STATE|2|1\nTOLM_VB_EVENT_PLAY_STATE|2|1\n");
    EXPECT_EQ(Fields("hbbtv.ret != 0", {"hbbtv.op"}), "GetPlayState\nGetPlayState\n");
    EXPECT_EQ(Fields("hbbtv.handle == 0x5a10c3e8 && hbbtv.op == \"GetName\"", {"hbbtv.socket"}),
              "service_plugin_to_hbbtv_vb_chn\n");
}

TEST_F(Pcapng, HasThePacketsInTheOrderOfTheirTimes) {
    Write(kRecording);
    EXPECT_EQ(Fields("frame.time_delta < 0", {"hbbtv.op"}), "");
    EXPECT_EQ(Fields("hbbtv.record == 13 || hbbtv.op == \"GetSerialNumber\"", {"hbbtv.op", "hbbtv.type"}),
              "SetChannel|2\nGetSerialNumber|2\nGetSerialNumber|3\nSetChannel|3\n");
}

TEST_F(Pcapng, NamesEveryOperationAndEvent) {
    std::vector<traffic::Record> records;
    std::string expected;
    for (const WireFamily& family : WireFamilies()) {
        const auto add = [&](const std::string& socket, const Json::Value& entry, const Json::Value& message) {
            records.push_back(Message(socket, WireText(message)));
            expected += family.name + "|" + entry["name"].asString() + "|" + entry["code"].asString() + "\n";
        };
        for (const Json::Value& operation : family.protocol["operations"]) {
            Json::Value values(Json::objectValue);  // two operations of one code have other members
            for (const Json::Value& member : operation["request"]) {
                if (!member.isMember("repeat")) values[member["key"].asString()] = 1;
            }
            add(RequestsOf(family).socket, operation, MakeRequest(family, operation, values));
        }
        for (const Json::Value& event : family.protocol["events"]) {
            add(EventsOf(family).socket, event, MakeEvent(family, event, Json::objectValue));
        }
    }
    Write(Recorded(records));
    EXPECT_EQ(Fields("hbbtv", {"hbbtv.family", "hbbtv.op", "hbbtv.code"}), expected);
    EXPECT_LT(300u, records.size());
}

TEST_F(Pcapng, HasWhatIsNotAMessageOfTheProtocol) {
    traffic::Record damaged;
    damaged.kind = traffic::Record::Kind::Damaged;
    damaged.message.raw = "\xff\xfe";
    Identify(damaged, "service_plugin_to_hbbtv_vb_chn");
    Write(
        Recorded({Message("service_plugin_to_hbbtv_vb_chn", "not JSON"), Message("service_plugin_to_hbbtv_vb_chn", "{"),
                  Message("unknown_socket", R"({"a":[{"b":"}\""}],"c":1})"), damaged,
                  Message("service_plugin_to_hbbtv_vb_chn",
                          R"({"method":12,"type":12,"name":"K\u00f6ln \ud83d\ude00 \"1\"\n","c_handle":5,"x":{}})")}));
    EXPECT_EQ(Fields("hbbtv.not_json", {"hbbtv.json"}), "not JSON\n{\n");
    EXPECT_EQ(Fields("hbbtv.socket == \"unknown_socket\"", {"hbbtv.type", "hbbtv.op"}), "2|\n");
    EXPECT_EQ(Fields("hbbtv.damaged == 1", {"hbbtv.socket", "hbbtv.type"}), "service_plugin_to_hbbtv_vb_chn|\n");
    EXPECT_EQ(Fields("hbbtv.op == \"SetName\"", {"hbbtv.channel.name"}), "K\xc3\xb6ln \xf0\x9f\x98\x80 \"1\"\\n\n");
}

TEST_F(Pcapng, GoesToStandardOutputAndReportsAFileThatCannotBeWritten) {
    EXPECT_THAT(Ctl({"show", kRecording, "--pcapng", "-"}).output, testing::StartsWith("\n\r\r\n"));
    const FinishedRun run = Ctl({"show", kRecording, "--pcapng", mDirectory / "none/file"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.errors, HasSubstr("cannot write " + mDirectory.Path() + "/none/file: No such file"));
}

class Extcap : public Pcapng {
  protected:
    // Wireshark runs programs of users only without privileges.
    static std::vector<std::string> Unprivileged(std::vector<std::string> command) {
        if (geteuid() == 0) {
            command.insert(command.begin(), {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"});
        }
        return command;
    }

    void SetUp() override {
        const std::string programs = mDirectory / "extcap";
        ASSERT_EQ(mkdir(programs.c_str(), 0755), 0);
        ASSERT_EQ(symlink(kExtcap, (programs + "/hbbtv-extcap").c_str()), 0);
        ASSERT_EQ(chmod(mDirectory.Path().c_str(), 0777), 0);
        mEnvironment = {"WIRESHARK_EXTCAP_DIR=" + programs, "HOME=" + mDirectory.Path(),
                        std::string("HBBTVCTL=") + HBBTVCTL_PROGRAM};
    }

    std::vector<std::string> mEnvironment;
};

TEST_F(Extcap, MakesTheServiceAnInterface) {
    const FinishedRun interfaces = RunToEnd(Unprivileged({"tshark", "-D"}), "", mEnvironment);
    EXPECT_THAT(interfaces.output, HasSubstr(". hbbtv (HbbTV service and platform)\n")) << interfaces.Text();
    const FinishedRun types = RunToEnd(Unprivileged({"tshark", "-i", "hbbtv", "-L"}), "", mEnvironment);
    EXPECT_THAT(types.Text(), HasSubstr("  USER0 (HbbTV service)\n"));
    EXPECT_EQ(RunToEnd({kExtcap}).exit, 2);
}

TEST_F(Extcap, CapturesLiveAndLeavesTheSocketsAsTheyWere) {
    SimulatedPlatform platform;
    ASSERT_TRUE(platform.Ready()) << platform.Output();
    ChildProcess capture(Unprivileged({"tshark", "-X", "lua_script:" HBBTV_DISSECTOR, "-i", "hbbtv", "-o",
                                       "extcap.hbbtv.directory:" + mDirectory.Path(), "-o",
                                       "extcap.hbbtv.families:channel_config local_system", "-l", "-T", "fields", "-e",
                                       "hbbtv.family", "-e", "hbbtv.op", "-e", "hbbtv.ret"}),
                         mEnvironment);
    // The first request may come before the capture has begun.
    EXPECT_TRUE(WaitFor([&capture] {
        EXPECT_EQ(Ctl({"send", "local_system.GetDeviceID"}).exit, 0);
        return capture.WaitForOutput("local_system\tGetDeviceID\t0\n", std::chrono::milliseconds(100));
    })) << capture.Output();
    EXPECT_EQ(Ctl({"send", "channel_config.GetCurrentChannel"}).exit, 0);
    EXPECT_TRUE(capture.WaitForOutput("channel_config\tGetCurrentChannel\t\nchannel_config\tGetCurrentChannel\t0\n"))
        << capture.Output();
    capture.Signal(SIGINT);
    EXPECT_EQ(capture.WaitForExit(), 0) << capture.Output();
    EXPECT_THAT(capture.Output(), testing::Not(HasSubstr("Error")));
    EXPECT_TRUE(WaitFor(
        [this] { return LookAt(mDirectory / "service_plugin_to_hbbtv_local_system").peer.find("hbbtv-sim") == 0; }));
}

}  // namespace

}  // namespace hbbtv::test
