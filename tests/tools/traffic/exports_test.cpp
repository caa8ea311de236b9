// Traces for Perfetto, and plays.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ctl.h"
#include "traffic/record/recording.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;

const std::string kRecording = HBBTV_SOURCE_DIR "/examples/traffic/slow_channel_change.ndjson";

// What the description of the format demands, and that slices of a track do not overlap.
const char* const kCheckTrace = R"(
import json, sys
trace = json.load(sys.stdin)
tracks, named, flows, slices = {}, set(), {}, set()
for event in trace["traceEvents"]:
    track = (event["pid"], event["tid"])
    assert isinstance(event["ts"], int) and all(isinstance(number, int) and 0 <= number < 2**32 for number in track), event
    if event["ph"] == "M":
        assert event["name"] in ("process_name", "thread_name") and event["args"]["name"], event
        named.add(track if event["name"] == "thread_name" else event["pid"])
        continue
    assert event["name"] and event["cat"] and track in named and event["pid"] in named, event
    if event["ph"] == "X":
        assert isinstance(event["dur"], int) and event["dur"] >= 0, event
        tracks.setdefault(track, []).append((event["ts"], event["ts"] + event["dur"]))
        slices.add(track + (event["ts"],))
    elif event["ph"] == "i":
        assert event["s"] in "tp", event
    else:
        assert event["ph"] in "sf" and track + (event["ts"],) in slices, event
        assert (event["ph"] == "f") == (event.get("bp") == "e"), event
        flows.setdefault(event["id"], []).append(event["ph"])
for times in tracks.values():
    times.sort()
    assert all(first[1] <= second[0] for first, second in zip(times, times[1:])), times
assert all(ends == ["s", "f"] for ends in flows.values()), flows
print(len(slices), "slices,", len(flows), "arrows")
)";

class Exports : public Alone {};

TEST_F(Exports, ToPerfettoFollowTheFormatOfTraces) {
    const FinishedRun trace = Ctl({"show", kRecording, "--perfetto", "-"});
    EXPECT_EQ(trace.exit, 0) << trace.Text();
    const FinishedRun check = RunToEnd({"python3", "-c", kCheckTrace}, trace.output);
    EXPECT_EQ(check.output, "24 slices, 12 arrows\n") << check.Text();
}

// Requests that do not wait for each other, messages without a connection, and the library's notes about clients.
TEST_F(Exports, ToPerfettoHaveSlicesThatDoNotOverlap) {
    const std::string recording = mDirectory / "pipelined.ndjson";
    traffic::RecordingWriter writer(recording, {});
    traffic::Record record;
    for (const uint64_t connection : {1, 1, 1, 0, 0}) {
        ++record.number;
        record.time = TimeStamp(1700000000000000 + 10 * record.number, 10 * record.number);
        record.connection = connection;
        record.message.type = kRequest;
        SetPayload(record.message, R"({"method":13,"type":12})");
        Identify(record, "service_plugin_to_hbbtv_vb_chn");
        record.duration = record.number == 3 ? 5 : 15;  // the second one begins before the first one has ended
        ASSERT_EQ(writer.Write(record), "");
    }
    const FinishedRun check =
        RunToEnd({"python3", "-c", kCheckTrace}, Ctl({"show", recording, "--perfetto", "-"}).output);
    EXPECT_EQ(check.output, "10 slices, 5 arrows\n") << check.Text();
    const FinishedRun import = Ctl(
        {"record", "import", HBBTV_SOURCE_DIR "/examples/traffic/logcat.txt", "--record", mDirectory / "log.ndjson"});
    ASSERT_EQ(import.exit, 0) << import.Text();
    const FinishedRun trace = Ctl({"show", mDirectory / "log.ndjson", "--perfetto", "-"});
    EXPECT_THAT(trace.output,
                HasSubstr(R"("name":"LogRequest: request 11 (IVideoBroadcast.SetChannel) of process 5120 )"));
    EXPECT_EQ(RunToEnd({"python3", "-c", kCheckTrace}, trace.output).output, "0 slices, 0 arrows\n");
}

TEST_F(Exports, ToPerfettoHaveAProcessForEachSideAndTheFactsOfTheExchange) {
    const std::string trace = Ctl({"show", kRecording, "--perfetto", "-", "--filter", "op:SetChannel"}).output;
    EXPECT_THAT(trace, HasSubstr(R"({"args":{"name":"platform, platform"},"name":"process_name","ph":"M","pid":900,)"));
    EXPECT_THAT(trace, HasSubstr(R"("dur":5201333,"name":"video_broadcast.SetChannel","ph":"X","pid":4711,)"));
    EXPECT_THAT(trace, HasSubstr(R"("dur":5201333,"name":"video_broadcast.SetChannel","ph":"X","pid":900,)"));
    EXPECT_THAT(trace, HasSubstr(R"("status":0})"));
}

TEST_F(Exports, ToAPlayExpectTheRecordedResultsWithNamesForHandles) {
    EXPECT_EQ(Ctl({"show", kRecording, "--walk", "-"}).output,
              R"(# What was recorded in /dev/socket/hbbtv. Run it with hbbtvctl play.

IChannelConfig.GetCurrentChannel() -> 0, $channel1
IChannel.GetName($channel1) -> 0, "Das Erste HD"
IVideoBroadcast.Create(0x7b20) -> 0, $video_broadcast1
IVideoBroadcast.RegisterCallback($video_broadcast1, @listen, 0x7b20) -> 0
IVideoBroadcast.BindToCurrentChannel($video_broadcast1) -> 0, $channel1
await IVideoBroadcastCallback.onPlayStateChange(2, 0)
IVideoBroadcast.CreateChannel_2($video_broadcast1, 11, 1, 1019, 10302, 0, "") -> 0, $channel2
IChannel.GetName($channel2) -> 0, "arte HD"
IVideoBroadcast.SetChannel($video_broadcast1, $channel2, false, "http://hbbtv.example/start?id=4f8c&user=anna") -> 0
ILocalSystem.GetSerialNumber() -> 0, "DE-2204-118842"
await IVideoBroadcastCallback.onPlayStateChange(1, 0) within 10s
IVideoBroadcast.GetPlayState($video_broadcast1) -> -1, _
IVideoBroadcast.Release($video_broadcast1) -> 0
IVideoBroadcast.GetPlayState($video_broadcast1) -> -1, _
IChannelConfig.GetChannelList() -> _, _
)");
}

// The recorded requests and what is in them, as the service sends them again: lists, structs, and what no method sends.
TEST_F(Exports, ToAPlayCauseTheSameRequests) {
    const std::vector<std::pair<std::string, std::string>> requests{
        {"channel_config", R"({"channel0":"0x5","channel1":"0x6","method":8,"size":2,"type":19})"},
        {"video_broadcast", R"({"method":5,"rect_h":4,"rect_w":3,"rect_x":1,"rect_y":2,"type":3,"vb_handle":"0x1"})"},
        {"configuration", R"({"method":10,"type":9})"}};
    traffic::RecordingWriter writer(mDirectory / "requests.ndjson", {});
    for (const auto& [family, request] : requests) {
        traffic::Record record;
        record.message.type = kRequest;
        SetPayload(record.message, request);
        Identify(record, RequestsOf(FindFamily(family)).socket);
        EXPECT_EQ(writer.Write(record), "");
    }
    EXPECT_THAT(Ctl({"show", mDirectory / "requests.ndjson", "--walk", "-"}).output,
                testing::EndsWith("\n\nIChannelConfig.CreateChannelList([0x5, 0x6]) -> _, _\n"
                                  "IVideoBroadcast.SetWindow(0x1, {x: 1, y: 2, width: 3, height: 4}) -> _\n"
                                  "send configuration.GetPvrPolicy {} -> _\n"));
}

}  // namespace

}  // namespace hbbtv::test
