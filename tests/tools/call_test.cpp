// hbbtvctl call: arguments of every form, results for people and for programs, and callback objects.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

class Call : public InFrontOfTheSystem {};

TEST_F(Call, TakesArgumentsByNameInOrderAsAnObjectFromAFileAndFromStandardInput) {
    const std::string channel = CurrentChannel();
    const std::string expected = "status  0\nname    \"Das Erste HD\"\n";
    const std::string object = "{\"channel\": \"" + channel + "\"}";
    WriteFile(mDirectory / "object.json", object);
    WriteFile(mDirectory / "channel", channel);
    const std::string decimal = std::to_string(std::stoll(channel, nullptr, 16));
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"channel=" + channel},
             {channel},
             {decimal},
             {"channel=@" + (mDirectory / "channel")},
             {"@" + (mDirectory / "channel")},
         }) {
        std::vector<std::string> words{"call", "IChannel.GetName"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        const FinishedRun run = Ctl(words);
        EXPECT_EQ(expected, run.output) << arguments[0] << run.errors;
        EXPECT_EQ("", run.errors);
        EXPECT_EQ(0, run.exit);
    }
    const std::string document =
        "{\"method\":\"IChannel.GetName\",\"results\":{\"name\":\"Das Erste HD\",\"status\":0}}\n";
    EXPECT_EQ(document, Ctl({"call", "IChannel.GetName", "--json", object}).output);
    EXPECT_EQ(document, Ctl({"call", "IChannel.GetName", "--json=" + object}).output);
    EXPECT_EQ(document, Ctl({"call", "IChannel.GetName", "--json", "{\"channel\": " + decimal + "}"}).output);
    EXPECT_EQ(document, Ctl({"call", "IChannel.GetName", "--json", "@" + (mDirectory / "object.json")}).output);
    EXPECT_EQ(document, Ctl({"call", "IChannel.GetName", channel, "--json"}).output);
    EXPECT_EQ(document, CtlWithInput({"call", "IChannel.GetName", "--json", "-"}, object).output);
    EXPECT_EQ(expected, CtlWithInput({"call", "IChannel.GetName", "-"}, channel).output);
    EXPECT_EQ(expected, CtlWithInput({"call", "IChannel.GetName", "channel=-"}, channel).output);
    EXPECT_EQ(expected, Ctl({"call", "channel.getname", channel}).output) << "names in any letter case";
}

TEST_F(Call, TakesTextsThatLookLikeSomethingElse) {
    const std::string channel = CurrentChannel();
    const auto named = [&](const std::string& word) {
        const FinishedRun run = Ctl({"call", "IChannel.SetName", "channel=" + channel, word});
        EXPECT_EQ(0, run.exit) << run.Text();
        return Document(Ctl({"call", "IChannel.GetName", channel, "--json"}))["results"]["name"].asString();
    };
    EXPECT_EQ("@home", named("name=@@home"));
    EXPECT_EQ("a=b", named("name=a=b"));
    EXPECT_EQ("", named("name="));
    EXPECT_EQ("--json", named("name=--json"));
    EXPECT_EQ("K\xc3\xb6ln \"1\"", named("name=K\xc3\xb6ln \"1\""));
    const FinishedRun run = Ctl({"call", "IChannel.GetName", channel});
    EXPECT_EQ("status  0\nname    \"K\xc3\xb6ln \\\"1\\\"\"\n", run.output);
    // What could play with a terminal is shown, not done.
    EXPECT_EQ("a\033[31m\xc2\x9b\x7f", named("name=a\033[31m\xc2\x9b\x7f"));
    EXPECT_EQ("status  0\nname    \"a\\u001b[31m\\u009b\\u007f\"\n", Ctl({"call", "IChannel.GetName", channel}).output);
}

TEST_F(Call, CarriesLongTextsAndAnyBytes) {
    const std::string channel = CurrentChannel();
    const std::string file = mDirectory / "text";
    const auto setName = [&] { return Ctl({"call", "IChannel.SetName", "channel=" + channel, "name=@" + file}); };
    const std::string longText(64 * 1024, 'x');
    WriteFile(file, longText);
    EXPECT_EQ(0, setName().exit);
    EXPECT_EQ("status  0\nname    \"" + longText + "\"\n", Ctl({"call", "IChannel.GetName", channel}).output);
    // Bytes that are no text come back as what JSON makes of them, on one line.
    WriteFile(file, std::string("a\xff\n\0b", 5));
    EXPECT_EQ(0, setName().exit);
    EXPECT_THAT(Ctl({"call", "IChannel.GetName", channel}).output, MatchesRegex("status  0\nname    \"a[^\n]*b\"\n"));
    WriteFile(file, std::string(1024 * 1024, 'x'));
    const FinishedRun tooLong = setName();
    EXPECT_EQ(2, tooLong.exit);
    EXPECT_EQ("hbbtvctl: IChannel.SetName: the arguments have 1048576 bytes; a call carries 1040384 at most\n",
              tooLong.errors);
}

TEST_F(Call, TakesAndGivesVectorsAndStructs) {
    const std::string channel = CurrentChannel();
    const std::string vb = NewVideoBroadcast();
    const FinishedRun window =
        Ctl({"call", "IVideoBroadcast.SetWindow", vb, R"({"x": -1, "y": 2, "width": "0x280", "height": 360})"});
    EXPECT_EQ("status  0\n", window.output) << window.errors;
    for (const std::string& list :
         {channel + "," + channel + "," + channel, "[\"" + channel + "\", \"" + channel + "\", \"" + channel + "\"]"}) {
        const Json::Value made =
            Document(Ctl({"call", "IChannelConfig.CreateChannelList", "channels=" + list, "--json"}));
        const std::string handle = made["results"]["list"].asString();
        EXPECT_EQ("status  0\nlength  3\n", Ctl({"call", "IChannelList.GetLength", handle}).output);
    }
    const std::vector<std::string> getIds{"call", "IConfiguration.GetDttNetworkIds"};
    EXPECT_THAT(Ctl(getIds).output, MatchesRegex("status      0\nnetworkIds  \\[[0-9]+, [0-9]+\\]\n"));
    const Json::Value ids = Document(Ctl({getIds[0], getIds[1], "--json"}))["results"]["networkIds"];
    EXPECT_EQ(2u, ids.size());
    EXPECT_TRUE(ids[0].isInt() && ids[1].isInt());
    const Json::Value none = Document(Ctl({"call", "IChannelConfig.CreateChannelList", "channels=", "--json"}));
    EXPECT_EQ("status  0\nlength  0\n",
              Ctl({"call", "IChannelList.GetLength", none["results"]["list"].asString()}).output);
}

TEST_F(Call, TakesAndGivesEnumeratorsByNameAndByNumber) {
    const std::string vb = NewVideoBroadcast();
    EXPECT_EQ("status  0\nstate   UNREALIZED (0)\n", Ctl({"call", "IVideoBroadcast.GetPlayState", vb}).output);
    EXPECT_EQ("UNREALIZED",
              Document(Ctl({"call", "IVideoBroadcast.GetPlayState", vb, "--json"}))["results"]["state"].asString());
    const Json::Value number = Document(Ctl({"call", "IVideoBroadcast.GetPlayState", vb, "--json", "--numbers"}));
    EXPECT_EQ(Json::Value(0), number["results"]["state"]);
    ASSERT_EQ(0, Ctl({"call", "IVideoBroadcast.BindToCurrentChannel", vb}).exit);
    const auto count = [&](const std::string& type) {
        return Document(Ctl({"call", "IVideoBroadcast.GetAVComponentNumByType", vb, type, "--json"}))["results"]["num"];
    };
    const Json::Value audio = count("AUDIO");
    EXPECT_LT(1, audio.asInt());
    EXPECT_EQ(audio, count("1"));
    EXPECT_EQ(audio, count("type=AUDIO"));
    EXPECT_EQ(audio, count("type=0x1"));
    EXPECT_EQ(1, count("VIDEO").asInt());
}

TEST_F(Call, TellsHowLongItTook) {
    const FinishedRun run = Ctl({"call", "IChannelConfig.GetCurrentChannel", "--time"});
    EXPECT_THAT(run.output, MatchesRegex("status   0\nchannel  0x[0-9a-f]+\ntime     [0-9]+\\.[0-9]+ ms\n"));
    const Json::Value document = Document(Ctl({"call", "IChannelConfig.GetCurrentChannel", "--time", "--json"}));
    EXPECT_LT(0, document["took_us"].asInt64());
    EXPECT_FALSE(Document(Ctl({"call", "IChannelConfig.GetCurrentChannel", "--json"})).isMember("took_us"));
}

TEST_F(Call, ListensWithACallbackObjectOfItsOwn) {
    const std::string vb = NewVideoBroadcast();
    CtlProcess listener(
        {"call", "IVideoBroadcast.RegisterCallback", "vb=" + vb, "cb=@listen", "context=7", "--json", "--count", "1"});
    ASSERT_TRUE(listener.WaitForOutput("\"status\":0")) << listener.Output();
    ASSERT_EQ(0, Ctl({"call", "IVideoBroadcast.BindToCurrentChannel", vb}).exit);
    EXPECT_EQ(0, listener.WaitForExit()) << listener.Output();
    const std::vector<Json::Value> documents = Documents(listener.Output());
    ASSERT_EQ(2u, documents.size()) << listener.Output();
    EXPECT_EQ("IVideoBroadcast.RegisterCallback", documents[0]["method"].asString());
    EXPECT_EQ("IVideoBroadcastCallback", documents[1]["interface"].asString());
}

TEST_F(Call, EndsWithSixWhenTheServiceGoesWhileItListens) {
    CtlProcess listener({"call", "IChannelConfig.RegisterCallback", "@listen", "1"});
    ASSERT_TRUE(listener.WaitForOutput("status  0\n")) << listener.Output();
    mService->Kill();
    EXPECT_EQ(6, listener.WaitForExit());
    EXPECT_THAT(listener.Output(), HasSubstr("hbbtvctl: the service that was listened to went away"));
}

TEST_F(Call, EndsByCtrlCAtOnce) {
    CtlProcess call({"call", "IChannelConfig.RegisterCallback", "@listen", "1"});
    ASSERT_TRUE(call.WaitForOutput("status  0\n")) << call.Output();
    call.Signal(SIGINT);
    EXPECT_EQ(0, call.WaitForExit());
    ASSERT_EQ(0, Ctl({"doctor"}).exit);
    // Without a callback there is nothing to undo, and the signal does what it does to any program.
    mPlatform->Signal(SIGSTOP);
    CtlProcess waiting({"call", "IChannelConfig.GetCurrentChannel"});
    waiting.Signal(SIGINT);
    EXPECT_EQ(-SIGINT, waiting.WaitForExit());
}

}  // namespace

}  // namespace hbbtv::test
