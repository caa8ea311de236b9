// docs/hbbtvctl.schema.json describes the real output of every command with --json.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ctl.h"

namespace hbbtv::test {

namespace {

// python3-jsonschema of Debian is installed for this Python. Each line is one document.
const char* const kValidator = R"(
import json, sys
from jsonschema import Draft202012Validator
schema = json.load(open(sys.argv[1]))
Draft202012Validator.check_schema(schema)
validator = Draft202012Validator(schema)
for line in sys.stdin:
    errors = [e.message for e in validator.iter_errors(json.loads(line))]
    print("valid" if not errors else "INVALID: %s: %s" % (line.strip(), errors[0]))
)";

std::string Validate(const std::string& lines) {
    const FinishedRun run =
        RunToEnd({"/usr/bin/python3", "-c", kValidator, HBBTV_SOURCE_DIR "/docs/hbbtvctl.schema.json"}, lines);
    EXPECT_EQ(run.exit, 0) << run.Text();
    return run.output;
}

// A step of each kind, the last of which does not hold.
const char* const kPlay = R"(until IVideoBroadcast
step "Steps"
print "a line"
IChannelConfig.RegisterCallback(@listen, 5)
send channel_config.GetCurrentChannel -> {ret: 0, handle: $channel}
emit channel_config changed {reserved: "A"}
event channel_config 0: IChannelConfigCallback.OnChannelConfigEvent(0, _, 5)
emit channel_config changed {reserved: "A"}
await IChannelConfigCallback.OnChannelConfigEvent(0, _, 5)
emit channel_config changed {reserved: "A"} -> _
next IChannelConfigCallback.OnChannelConfigEvent(0, _, 5)
no event
ignore IMtmCallback.Ping
answer IMtmCallback.CreateApp -> 0, 7
until tell zap 2 -> ok ZDF HD
until IChannelConfig.GetCurrentChannel() -> 0, $zdf
show IChannel.GetName "{$name}"
name $zdf as "ZDF"
let $twice = 2
wait 1ms
for $i from 0 below $twice
    IChannel.GetName($channel) -> 0, "ZDF HD"
end
)";

const char* const kRecording = HBBTV_SOURCE_DIR "/examples/traffic/slow_channel_change.ndjson";
// The platform replies otherwise.
const char* const kReplayed =
    R"({"recording":1}
{"number":1,"kind":"exchange","wall_us":1795276045000000,"monotonic_us":6031000000,"connection":1,)"
    R"("socket":"service_plugin_to_hbbtv_vb_chn","family":"channel","operation":"GetName","code":13,)"
    R"("message":{"type":2,"port":2,"size":54,"json":{"c_handle":"","method":13,"type":12}},)"
    R"("reply":{"type":3,"port":2,"size":11,"json":{"ret":-2}},"duration_us":312,"status":-2}
)";

class Schema : public InFrontOfTheSystem {};

TEST_F(Schema, DescribesTheOutputOfEveryCommandWithJson) {
    const std::string channel = CurrentChannel();
    const std::string vb = NewVideoBroadcast();
    const std::string play = mDirectory / "all.play";
    WriteFile(play, kPlay);
    const std::string recording = mDirectory / "traffic.ndjson";
    WriteFile(recording, kReplayed);
    const std::vector<std::vector<std::string>> commands{
        {"list"},
        {"describe", "IChannel"},
        {"describe", "IMtmCallback.CreateApp"},
        {"describe", "IChannel.GetOnid"},
        {"describe", "IProgramme.GetSIDescriptorByIndex"},
        {"describe", "TolmRect"},
        {"describe", "TolmVBPlayState"},
        {"describe", "channel"},
        {"describe", "channel.GetOnid"},
        {"doctor"},
        {"check", "platform"},
        {"status"},
        {"status", "channel_config"},
        {"call", "IChannel.GetName", channel},
        {"call", "IChannel.GetName", "0"},
        {"call", "IVideoBroadcast.GetPlayState", vb, "--time"},
        {"call", "IVideoBroadcast.GetPlayState", vb, "--numbers"},
        {"bench", "IChannel.GetName", channel, "--duration", "20ms"},
        {"send", "channel.GetName", channel},
        {"send", "channel.GetName", channel, "--time"},
        {"send", "dsmcc.RequestFile", "dvb://1.2.3", "1"},
        {"send", "channel", "--raw", "x", "--timeout", "50ms"},
        {"play", play, "--coverage"},
        {"monitor", "--for", "100ms", "--stats"},
        {"show", kRecording},
        {"show", kRecording, "--stats"},
        {"show", kRecording, "--diff", kRecording},
        {"replay", recording, "--as", "library"},
    };
    std::string lines;
    const auto run = [&lines](std::vector<std::string> words) {
        words.push_back("--json");
        const std::string output = Ctl(words).output;
        EXPECT_NE(output, "") << words[0];
        lines += output;
    };
    for (const auto& command : commands) run(command);
    Listener listener({"video_broadcast", "channel_config", "--with", "vb=" + vb});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    run({"emit", "channel_config", "changed", "reserved=1"});
    run({"emit", "video_broadcast", "--raw", "x", "--timeout", "50ms"});
    CtlProcess monitor({"monitor", "channel", "--count", "2", "--json"});
    ASSERT_TRUE(monitor.WaitForOutput("listening; press Ctrl-C to stop\n")) << monitor.Output();
    run({"send", "channel.GetName", channel});
    EXPECT_EQ(monitor.WaitForExit(), 0);
    lines += monitor.Output().substr(monitor.Output().find('{'));
    Listener passive({"--passive", "--count", "1"});
    ASSERT_TRUE(passive.Listens()) << passive.Output();
    run({"emit", "channel_config", "changed", "reserved=1"});
    ASSERT_TRUE(passive.WaitForEvents(1)) << passive.Output();
    lines += passive.Output().substr(passive.Output().find('{'));
    ASSERT_EQ(Ctl({"call", "IVideoBroadcast.BindToCurrentChannel", vb}).exit, 0);
    ASSERT_TRUE(listener.WaitForEvents(2)) << listener.Output();
    const std::string events = listener.Output();
    lines += events.substr(events.find('{'), events.rfind('\n') + 1 - events.find('{'));
    EXPECT_THAT(Validate(lines), testing::MatchesRegex("(valid\n)+"));

    // Every command with --json is in the list above.
    for (const char* command : {"list", "describe", "call", "listen", "send", "emit", "play", "bench", "status",
                                "check", "doctor", "monitor", "show", "replay", "completion", "man"}) {
        const bool tried =
            std::string(command) == "listen" || std::string(command) == "emit" ||
            std::any_of(commands.begin(), commands.end(), [&](const auto& words) { return words[0] == command; });
        EXPECT_EQ(Ctl({command, "--help"}).output.find("  --json ") != std::string::npos, tried) << command;
    }
}

TEST(SchemaOfJson, DescribesEachLineOfARecording) {
    ScratchDirectory directory;
    EXPECT_THAT(Validate(ReadFile(kRecording)), testing::MatchesRegex("(valid\n)+"));
}

TEST(SchemaOfJson, RejectsOtherDocuments) {
    ScratchDirectory directory;
    EXPECT_THAT(Validate("{}\n"
                         "[]\n"
                         R"({"method": "IChannel.GetName"})"
                         "\n"
                         R"({"method": "IChannel.GetName", "results": {}, "more": 1})"
                         "\n"
                         R"({"checks": [{"check": "directory", "level": "fine", "finding": "", "advice": ""}]})"
                         "\n"),
                testing::Not(testing::HasSubstr("valid\nvalid")));
    EXPECT_THAT(Validate("{}\n[]\n"), testing::Not(testing::StartsWith("valid")));
}

}  // namespace

}  // namespace hbbtv::test
