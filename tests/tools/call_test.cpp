// hbbtvctl call: all forms of arguments, both forms of results, and callback objects.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

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
        EXPECT_EQ(run.output, expected) << arguments[0] << run.errors;
        EXPECT_EQ(run.errors, "");
        EXPECT_EQ(run.exit, 0);
    }
    const std::string document =
        "{\"method\":\"IChannel.GetName\",\"results\":{\"name\":\"Das Erste HD\",\"status\":0}}\n";
    EXPECT_EQ(Ctl({"call", "IChannel.GetName", "--json", object}).output, document);
    EXPECT_EQ(Ctl({"call", "IChannel.GetName", "--json=" + object}).output, document);
    EXPECT_EQ(Ctl({"call", "IChannel.GetName", "--json", "{\"channel\": " + decimal + "}"}).output, document);
    EXPECT_EQ(Ctl({"call", "IChannel.GetName", "--json", "@" + (mDirectory / "object.json")}).output, document);
    EXPECT_EQ(Ctl({"call", "IChannel.GetName", channel, "--json"}).output, document);
    EXPECT_EQ(CtlWithInput({"call", "IChannel.GetName", "--json", "-"}, object).output, document);
    EXPECT_EQ(CtlWithInput({"call", "IChannel.GetName", "-"}, channel).output, expected);
    EXPECT_EQ(CtlWithInput({"call", "IChannel.GetName", "channel=-"}, channel).output, expected);
    EXPECT_EQ(Ctl({"call", "channel.getname", channel}).output, expected) << "names in any case";
}

TEST_F(Call, TakesStringsThatLookLikeOtherValues) {
    const std::string channel = CurrentChannel();
    const auto named = [&](const std::string& word) {
        const FinishedRun run = Ctl({"call", "IChannel.SetName", "channel=" + channel, word});
        EXPECT_EQ(run.exit, 0) << run.Text();
        return Document(Ctl({"call", "IChannel.GetName", channel, "--json"}))["results"]["name"].asString();
    };
    EXPECT_EQ(named("name=@@home"), "@home");
    EXPECT_EQ(named("name=a=b"), "a=b");
    EXPECT_EQ(named("name="), "");
    EXPECT_EQ(named("name=--json"), "--json");
    EXPECT_EQ(named("name=K\xc3\xb6ln \"1\""), "K\xc3\xb6ln \"1\"");
    const FinishedRun run = Ctl({"call", "IChannel.GetName", channel});
    EXPECT_EQ(run.output, "status  0\nname    \"K\xc3\xb6ln \\\"1\\\"\"\n");
    // Control characters are escaped, so that they cannot disturb a terminal.
    EXPECT_EQ(named("name=a\033[31m\xc2\x9b\x7f"), "a\033[31m\xc2\x9b\x7f");
    EXPECT_EQ(Ctl({"call", "IChannel.GetName", channel}).output, "status  0\nname    \"a\\u001b[31m\\u009b\\u007f\"\n");
}

TEST_F(Call, TakesEachWordAsOneArgument) {
    const FinishedRun surplus = Ctl({"call", "IAVControl.ComponentUpdate", "7", "0", "[]", "0", "[1,2]"});
    EXPECT_EQ(surplus.exit, 2);
    EXPECT_THAT(surplus.errors, HasSubstr("unexpected argument \"[1,2]\""));
    EXPECT_EQ(Ctl({"call", "IAVControl.ComponentUpdate", "7", "0", "[]", "0"}).output, "status  0\n");
    EXPECT_EQ(Ctl({"call", "--", "IAVControl.ComponentUpdate", "7", "0", "[]", "0"}).output, "status  0\n");
    const std::string channel = CurrentChannel();
    for (const std::string name : {"[a,b]", "[]", "[", "\x01", "\x01[]"}) {
        EXPECT_EQ(Ctl({"call", "IChannel.SetName", channel, name}).output, "status  0\n") << name;
        const Json::Value document = Document(Ctl({"call", "IChannel.GetName", channel, "--json"}));
        EXPECT_EQ(document["results"]["name"].asString(), name);
    }
}

TEST_F(Call, CarriesLongStringsAndAnyBytes) {
    const std::string channel = CurrentChannel();
    const std::string file = mDirectory / "text";
    const auto setName = [&] { return Ctl({"call", "IChannel.SetName", "channel=" + channel, "name=@" + file}); };
    const std::string longText(64 * 1024, 'x');
    WriteFile(file, longText);
    EXPECT_EQ(setName().exit, 0);
    EXPECT_EQ(Ctl({"call", "IChannel.GetName", channel}).output, "status  0\nname    \"" + longText + "\"\n");
    // Invalid UTF-8 is printed as JSON replaces it, on one line.
    WriteFile(file, std::string("a\xff\n\0b", 5));
    EXPECT_EQ(setName().exit, 0);
    EXPECT_THAT(Ctl({"call", "IChannel.GetName", channel}).output, MatchesRegex("status  0\nname    \"a[^\n]*b\"\n"));
    WriteFile(file, std::string(1024 * 1024, 'x'));
    const FinishedRun tooLong = setName();
    EXPECT_EQ(tooLong.exit, 2);
    EXPECT_EQ(tooLong.errors,
              "hbbtvctl: IChannel.SetName: the arguments take 1048576 bytes; the limit of a call is 1040384\n");
}

TEST_F(Call, TakesAndPrintsVectorsAndStructs) {
    const std::string channel = CurrentChannel();
    const std::string vb = NewVideoBroadcast();
    const FinishedRun window =
        Ctl({"call", "IVideoBroadcast.SetWindow", vb, R"({"x": -1, "y": 2, "width": "0x280", "height": 360})"});
    EXPECT_EQ(window.output, "status  0\n") << window.errors;
    for (const std::string& list :
         {channel + "," + channel + "," + channel, "[\"" + channel + "\", \"" + channel + "\", \"" + channel + "\"]"}) {
        const Json::Value made =
            Document(Ctl({"call", "IChannelConfig.CreateChannelList", "channels=" + list, "--json"}));
        const std::string handle = made["results"]["list"].asString();
        EXPECT_EQ(Ctl({"call", "IChannelList.GetLength", handle}).output, "status  0\nlength  3\n");
    }
    const auto lengthOf = [&](const std::string& list) {
        const FinishedRun run = Ctl({"call", "IChannelConfig.CreateChannelList", list, "--json"});
        const std::string handle = Document(run)["results"]["list"].asString();
        return run.errors + Ctl({"call", "IChannelList.GetLength", handle}).output;
    };
    EXPECT_EQ(lengthOf("[\"" + channel + "\", \"" + channel + "\"]"), "status  0\nlength  2\n");
    EXPECT_EQ(lengthOf("[\"" + channel + "\"]"), "status  0\nlength  1\n");
    EXPECT_EQ(lengthOf("[]"), "status  0\nlength  0\n");
    const std::vector<std::string> getIds{"call", "IConfiguration.GetDttNetworkIds"};
    EXPECT_THAT(Ctl(getIds).output, MatchesRegex("status      0\nnetworkIds  \\[[0-9]+, [0-9]+\\]\n"));
    const Json::Value ids = Document(Ctl({getIds[0], getIds[1], "--json"}))["results"]["networkIds"];
    EXPECT_EQ(ids.size(), 2u);
    EXPECT_TRUE(ids[0].isInt() && ids[1].isInt());
    const Json::Value none = Document(Ctl({"call", "IChannelConfig.CreateChannelList", "channels=", "--json"}));
    EXPECT_EQ(Ctl({"call", "IChannelList.GetLength", none["results"]["list"].asString()}).output,
              "status  0\nlength  0\n");
}

TEST_F(Call, TakesAndPrintsEnumeratorsByNameAndByNumber) {
    const std::string vb = NewVideoBroadcast();
    EXPECT_EQ(Ctl({"call", "IVideoBroadcast.GetPlayState", vb}).output, "status  0\nstate   UNREALIZED (0)\n");
    EXPECT_EQ(Document(Ctl({"call", "IVideoBroadcast.GetPlayState", vb, "--json"}))["results"]["state"].asString(),
              "UNREALIZED");
    const Json::Value number = Document(Ctl({"call", "IVideoBroadcast.GetPlayState", vb, "--json", "--numbers"}));
    EXPECT_EQ(number["results"]["state"], Json::Value(0));
    ASSERT_EQ(Ctl({"call", "IVideoBroadcast.BindToCurrentChannel", vb}).exit, 0);
    const auto count = [&](const std::string& type) {
        return Document(Ctl({"call", "IVideoBroadcast.GetAVComponentNumByType", vb, type, "--json"}))["results"]["num"];
    };
    const Json::Value audio = count("AUDIO");
    EXPECT_LT(1, audio.asInt());
    EXPECT_EQ(count("1"), audio);
    EXPECT_EQ(count("type=AUDIO"), audio);
    EXPECT_EQ(count("type=0x1"), audio);
    EXPECT_EQ(count("VIDEO").asInt(), 1);
}

TEST_F(Call, PrintsOneResultAndNothingElse) {
    const FinishedRun handle = Ctl({"call", "IChannelConfig.GetCurrentChannel", "--get", "channel"});
    EXPECT_THAT(handle.output, MatchesRegex("0x[0-9a-f]{8}\n"));
    const std::string channel = handle.output.substr(0, handle.output.size() - 1);
    EXPECT_EQ(Ctl({"call", "IChannel.GetName", channel, "--get", "name"}).output, "Das Erste HD\n");
    EXPECT_EQ(Ctl({"call", "IChannel.GetName", channel, "--get", "name", "--json"}).output, "\"Das Erste HD\"\n");
    EXPECT_EQ(Ctl({"call", "IChannel.GetName", channel, "--get", "status"}).output, "0\n");
    const FinishedRun failed = Ctl({"call", "IChannel.GetName", "1", "--get", "status"});
    EXPECT_EQ(failed.output, "-1\n");
    EXPECT_EQ(failed.exit, 1);
    const FinishedRun unknown = Ctl({"call", "IChannel.GetName", channel, "--get", "nam"});
    EXPECT_EQ(unknown.exit, 2);
    EXPECT_EQ(unknown.errors, "hbbtvctl: IChannel.GetName: no result \"nam\"; did you mean \"name\"?\n");
}

TEST_F(Call, ShowsHowLongItTook) {
    const FinishedRun run = Ctl({"call", "IChannelConfig.GetCurrentChannel", "--time"});
    EXPECT_THAT(run.output, MatchesRegex("status   0\nchannel  0x[0-9a-f]+\ntime     [0-9]+\\.[0-9]+ ms\n"));
    const Json::Value document = Document(Ctl({"call", "IChannelConfig.GetCurrentChannel", "--time", "--json"}));
    EXPECT_LT(0, document["took_us"].asInt64());
    EXPECT_FALSE(Document(Ctl({"call", "IChannelConfig.GetCurrentChannel", "--json"})).isMember("took_us"));
}

TEST_F(Call, ShowsBytesThatAreNotTextAsCharactersInJson) {
    const std::string vb = NewVideoBroadcast();
    ASSERT_EQ(Ctl({"call", "IVideoBroadcast.BindToCurrentChannel", vb}).exit, 0);
    const auto handle = [](const FinishedRun& run) { return run.output.substr(0, run.output.find('\n')); };
    const std::string programme =
        handle(Ctl({"call", "IVideoBroadcast.GetProgrammeByIndex", vb, "0", "--get", "programme"}));
    // A descriptor with the length 0xfe, which begins no character, and one with the two bytes of an umlaut.
    ASSERT_EQ(Ctl({"call", "IProgramme.SetLongDescription", programme, std::string(258, 'x')}).exit, 0);
    ASSERT_EQ(Ctl({"call", "IProgramme.GetSIDescriptorByEventId", programme, "0x4e", "0", "0"}).exit, 0);
    const std::vector<std::string> call{"call", "IProgramme.GetSIDescriptorByIndex", programme, "0"};
    const auto with = [&call](std::vector<std::string> options) {
        options.insert(options.begin(), call.begin(), call.end());
        return Ctl(options);
    };
    EXPECT_THAT(with({"--json"}).output, HasSubstr(R"("descriptor":"N\u00fe\u0001)"));
    EXPECT_THAT(with({"--get", "descriptor", "--json"}).output, StartsWith(R"("N\u00fe\u0001)"));
    EXPECT_THAT(with({"--get", "descriptor"}).output, StartsWith(R"(N\xfe\x01)"));
    EXPECT_THAT(with({}).output, HasSubstr(R"("N\xfe\x01)"));

    ASSERT_EQ(Ctl({"call", "IProgramme.SetName", programme, "K\xc3\xb6ln"}).exit, 0);
    ASSERT_EQ(Ctl({"call", "IProgramme.GetSIDescriptorByEventId", programme, "0x4d", "0", "0"}).exit, 0);
    EXPECT_THAT(with({"--json"}).output, HasSubstr(R"(\u0015K\u00c3\u00b6ln)"));
    EXPECT_THAT(with({}).output, HasSubstr(R"(\x15K\xc3\xb6ln)"));
    EXPECT_THAT(Ctl({"call", "IProgramme.GetName", programme, "--json"}).output, HasSubstr(R"("name":"K\u00f6ln")"));
    const Json::Value results =
        Document(Ctl({"describe", "IProgramme.GetSIDescriptorByIndex", "--json"}))["method"]["results"];
    EXPECT_TRUE(results[1]["bytes"].asBool());
}

TEST_F(Call, ListensWithACallbackObjectOfItsOwn) {
    const std::string vb = NewVideoBroadcast();
    CtlProcess listener(
        {"call", "IVideoBroadcast.RegisterCallback", "vb=" + vb, "cb=@listen", "context=7", "--json", "--count", "1"});
    ASSERT_TRUE(listener.WaitForOutput("\"status\":0")) << listener.Output();
    ASSERT_EQ(Ctl({"call", "IVideoBroadcast.BindToCurrentChannel", vb}).exit, 0);
    EXPECT_EQ(listener.WaitForExit(), 0) << listener.Output();
    const std::vector<Json::Value> documents = Documents(listener.Output());
    ASSERT_EQ(documents.size(), 2u) << listener.Output();
    EXPECT_EQ(documents[0]["method"].asString(), "IVideoBroadcast.RegisterCallback");
    EXPECT_EQ(documents[1]["interface"].asString(), "IVideoBroadcastCallback");
}

TEST_F(Call, ExitsWithSixWhenTheServiceEndsWhileItListens) {
    CtlProcess listener({"call", "IChannelConfig.RegisterCallback", "@listen", "1"});
    ASSERT_TRUE(listener.WaitForOutput("status  0\n")) << listener.Output();
    mService->Kill();
    EXPECT_EQ(listener.WaitForExit(), 6);
    EXPECT_THAT(listener.Output(), HasSubstr("hbbtvctl: the service ended"));
}

TEST_F(Call, EndsOnCtrlCImmediately) {
    CtlProcess call({"call", "IChannelConfig.RegisterCallback", "@listen", "1"});
    ASSERT_TRUE(call.WaitForOutput("status  0\n")) << call.Output();
    call.Signal(SIGINT);
    EXPECT_EQ(call.WaitForExit(), 0);
    ASSERT_EQ(Ctl({"doctor"}).exit, 0);
    // Without a callback there is nothing to undo, so the signal has its default effect.
    mPlatform->Signal(SIGSTOP);
    CtlProcess waiting({"call", "IChannelConfig.GetCurrentChannel"});
    waiting.Signal(SIGINT);
    EXPECT_EQ(waiting.WaitForExit(), -SIGINT);
}

}  // namespace

}  // namespace hbbtv::test
