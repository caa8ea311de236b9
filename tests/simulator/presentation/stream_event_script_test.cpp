// Stream events from a file: which ones come to which listener, their contents, and files that are refused.
#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {
namespace {

class StreamEventScripts : public VideoBroadcastFixture {
  protected:
    void Begin(const std::string& script) {
        WriteFile(mDirectory / "events.json", script);
        Start({"--stream-events", mDirectory / "events.json"});
        mVb = ObjectIn("presenting");
    }

    std::string mVb;
};

TEST_F(StreamEventScripts, ComeInTheirTimeWithDataInHexadecimalAndTextInUtf8) {
    Begin(
        "[{\"at\": \"60ms\", \"name\": \"quiz\", \"text\": \"K\xc3\xb6ln\"},"
        " {\"at\": \"0ms\", \"name\": \"quiz\", \"data\": \"4A6Fff21\"},"
        " {\"at\": \"120ms\", \"name\": \"quiz\", \"data\": \"00\", \"text\": \"zero\"},"
        " {\"at\": \"180ms\", \"name\": \"quiz\"}]");
    EXPECT_EQ(Listen("quiz"), 0);
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent quiz [4a6fff21] [Jo!] trigger") << "what is not UTF-8 is left out";
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent quiz [4bc3b66c6e] [K\xc3\xb6ln] trigger");
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent quiz [00] [zero] trigger");
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent quiz [] [] trigger");
    EXPECT_TRUE(EventsSoFar(mVb).empty()) << "each came once";
}

TEST_F(StreamEventScripts, GoToTheListenersOfTheirUrlAndName) {
    Begin(R"([{"at": "50ms", "name": "a", "text": "1"}, {"at": "100ms", "url": "dvb://x/other", "text": "2"},
              {"at": "150ms", "url": "dvb://x/other", "name": "a", "text": "3"}, {"at": "200ms", "text": "4"}])");
    EXPECT_EQ(Listen("a"), 0);
    EXPECT_EQ(Listen("b", "dvb://x/other"), 0);
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent a [31] [1] trigger");
    EXPECT_EQ(NextStreamEvent(), "dvb://x/other b [32] [2] trigger");
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent a [34] [4] trigger");
    EXPECT_EQ(NextStreamEvent(), "dvb://x/other b [34] [4] trigger");
}

TEST_F(StreamEventScripts, ThatRepeatComeAgainAndAgain) {
    Begin(R"([{"every": "20ms", "text": "tick"}])");
    EXPECT_EQ(Listen("clock"), 0);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent clock [7469636b] [tick] trigger");
    EXPECT_EQ(StopListening("clock"), 0);
    EventsSoFar(mVb);
    EXPECT_EQ(Listen("other"), 0);
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent other [7469636b] [tick] trigger") << "the script started again";
}

TEST_F(StreamEventScripts, OfStatusErrorEndTheirListeners) {
    Begin(R"([{"at": "20ms", "name": "a", "status": "error"}, {"at": "60ms", "text": "x"}])");
    EXPECT_EQ(Listen("a"), 0);
    EXPECT_EQ(Listen("b"), 0);
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent a [] [] error");
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent b [78] [x] trigger");
    EXPECT_EQ(StopListening("a"), -1);
}

TEST_F(StreamEventScripts, EndWithTheServiceAndBeginAgainWithTheNextListener) {
    Begin(R"([{"at": "0ms", "text": "first"}, {"at": "10s", "text": "late"}])");
    EXPECT_EQ(Listen("a"), 0);
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent a [6669727374] [first] trigger");
    EXPECT_EQ(SetChannel(mVb, Channel(mVb, 2)), 0);
    EXPECT_EQ(EventsUntil("PlayState 2 0"), (std::vector<std::string>{"PlayState 1 0", "StreamEvent a error",
                                                                      "ChannelChanged Two 0", "PlayState 2 0"}));
    EXPECT_EQ(Listen("a"), 0);
    EXPECT_EQ(NextStreamEvent(), "dvb://1.1.1/sevent a [6669727374] [first] trigger");
}

TEST_F(StreamEventScripts, ExitWithCode3AndTheLineIfInvalid) {
    const std::string path = mDirectory / "events.json";
    const std::map<std::string, std::string> rows{
        {"{}", ":1:1: the stream events are not a list"},
        {"", ":1:1: the file is empty"},
        {"[", ":1:2: not valid JSON"},
        {"[1]", ":1:2: a stream event is not an object"},
        {R"([{}])", ":1:2: a stream event has either \"at\" or \"every\""},
        {R"([{"at": "1s", "every": "1s"}])", "has either \"at\" or \"every\""},
        {R"([{"at": "1s", "nam": "x"}])", "has no member \"nam\"; did you mean \"name\"?"},
        {R"([{"at": 5}])", "the member \"at\" of the stream event is not a string"},
        {R"([{"at": "-1s"}])", "is \"-1s\", which is not a duration"},
        {R"([{"every": "9ms"}])", "is shorter than 10ms"},
        {R"([{"at": "1s", "data": "123"}])", "is not a string of hexadecimal bytes"},
        {R"([{"at": "1s", "data": "0g"}])", "is not a string of hexadecimal bytes"},
        {"[{\"at\": \"1s\", \"text\": \"\xff\"}]", "is not UTF-8"},
        {R"([{"at": "1s", "status": "failed"}])", "is \"failed\", which is unknown"},
        {R"([{"at": "1s", "status": "error", "text": "x"}])",
         "is allowed only in stream events with the status trigger"},
        {"[{\"at\": \"1s\", \"text\": \"" + std::string(4097, 'x') + "\"}]", "is longer than 4096 bytes"}};
    for (const auto& [text, sentence] : rows) {
        WriteFile(path, text);
        const Outcome outcome = Run({"--stream-events", path});
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_EQ(outcome.output.rfind("hbbtv-sim: cannot read " + path, 0), 0u) << outcome.output;
        EXPECT_NE(outcome.output.find(sentence), std::string::npos) << outcome.output;
    }
    EXPECT_EQ(Run({"--stream-events", mDirectory / "nowhere"}).exitCode, 3);
}

}  // namespace
}  // namespace hbbtv::test
