// What makes no sense on the command line: exit code 2, nothing on standard output, and a sentence that helps.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Bad {
    std::vector<std::string> arguments;
    std::string sentence;
};

const std::string kSeeHelp = "`hbbtvctl --help` shows what there is.";

// "%" stands for the test's directory.
const Bad kBad[] = {
    // Commands and options.
    {{}, "there is no command to run\n" + kSeeHelp},
    {{"cal"}, "there is no command \"cal\"; did you mean \"call\"?\n" + kSeeHelp},
    {{"call"}, "METHOD is required\n`hbbtvctl call --help` shows what there is."},
    {{"call", "IChannel.GetName", "--jsn"}, "there is no option \"--jsn\"; did you mean \"--json\"?"},
    {{"list", "--directory", "%"}, "the option --directory stands in front of the command"},
    {{"list", "all"}, "list has an argument too many, \"all\""},
    {{"describe", "IChannel", "IMtm"}, "describe has an argument too many, \"IMtm\""},
    {{"list", "--timeout", "soon"}, "--timeout: \"soon\" is not a duration: write 300ms or 2s, at most one day"},
    {{"list", "--timeout", "86401s"}, "--timeout: \"86401s\" is not a duration: write 300ms or 2s, at most one day"},
    {{"list", "--timeout"}, "--timeout needs a value: TIME"},
    {{"completion", "tcsh"}, "SHELL: \"tcsh\" is none of bash, zsh, fish"},
    {{"man", "cal"}, "COMMAND: there is no command \"cal\"; did you mean \"call\"?"},
    {{"--directory", "", "list"}, "--directory: an empty text is no directory"},
    {{"call", "IChannel.GetName", "1", "--for", "1s"},
     "--for and --count end the listening to a callback given as @listen; there is none"},
    {{"call", "IChannel.GetName", "1", "--count", "2"},
     "--for and --count end the listening to a callback given as @listen; there is none"},
    {{"send", "channel.GetName", "--raw", "x"},
     "--raw is all that is sent: send takes a family with it, and no operation"},
    {{"send", "channel", "1", "--raw", "x"},
     "--raw is all that is sent: send takes a family with it, and no operation"},
    {{"emit", "mtm", "Ping", "--raw", "x"}, "--raw is all that is sent: emit takes no event with it"},
    // Names.
    {{"call", "GetName"}, "\"GetName\" is no method: write INTERFACE.METHOD, as in IChannel.GetOnid"},
    {{"call", "IChanel.GetName"},
     "there is no interface \"IChanel\"; did you mean \"IChannel\"? (`hbbtvctl list` shows all)"},
    {{"call", "IChannel.GetNam"},
     "IChannel has no method \"GetNam\"; did you mean \"GetName\"? (`hbbtvctl describe IChannel` shows all)"},
    {{"call", "IChannel.zzzzzzzz"}, "IChannel has no method \"zzzzzzzz\" (`hbbtvctl describe IChannel` shows all)\n"},
    {{"describe", "zzzzzzzz"},
     "there is no interface, family or type \"zzzzzzzz\" (`hbbtvctl list` shows interfaces and families)\n"},
    {{"call", "IChannelConfigCallback.OnChannelConfigEvent"},
     "IChannelConfigCallback is implemented by clients, so it cannot be called; `hbbtvctl emit` plays the platform, "
     "whose events reach it"},
    {{"bench", "IChannelConfigCallback.OnChannelConfigEvent"},
     "IChannelConfigCallback is implemented by clients, so it cannot be called"},
    {{"describe", "TolmRec"}, "there is no interface, family or type \"TolmRec\"; did you mean \"TolmRect\"?"},
    {{"describe", "channel.GetNam"},
     "the family channel has no operation \"GetNam\"; did you mean \"GetName\"? (`hbbtvctl describe channel` shows "
     "all)"},
    {{"send", "channel"}, "\"channel\" is no operation: write FAMILY.OPERATION, as in channel.GetOnid"},
    {{"send", "chanel.GetName"},
     "there is no family \"chanel\"; did you mean \"channel\"? (`hbbtvctl list` shows all)"},
    {{"send", "channel.GetNam"},
     "the family channel has no operation \"GetNam\"; did you mean \"GetName\"? (`hbbtvctl describe channel` shows "
     "all)"},
    {{"emit", "channel_config"},
     "emit needs an event of channel_config (`hbbtvctl describe channel_config` shows all), or --raw"},
    {{"emit", "channel_config", "change"},
     "the family channel_config has no event \"change\"; did you mean \"changed\"? (`hbbtvctl describe channel_config` "
     "shows all)"},
    {{"emit", "channel", "changed"}, "the family channel has no events"},
    {{"emit", "channel_config", "changed", "--request", "--one-way"}, "--request excludes --one-way"},
    {{"listen"}, "FAMILY is required\n`hbbtvctl listen --help` shows what there is."},
    {{"listen", "chanel_config"},
     "there is no family \"chanel_config\"; did you mean \"channel_config\"? (`hbbtvctl list` shows all)"},
    {{"listen", "channel_config", "--with", "contxt=1"},
     "--with \"contxt=1\": no registration has an argument \"contxt\"; did you mean \"context\"?"},
    {{"listen", "channel_config", "--with", "context"}, "--with \"context\": write NAME=VALUE"},
    {{"listen", "channel_config", "--with", "context=x"},
     "IChannelConfig.RegisterCallback: argument \"context\": \"x\" is no whole number: int64_t is written as 4096 or "
     "0x1000"},
    {{"listen", "channel_config", "--count", "many"}, "--count: \"many\" is no whole number from 1"},
    {{"listen", "channel_config", "--count", "0"}, "--count: \"0\" is no whole number from 1"},
    {{"listen", "channel_config", "--answer", "0"}, "--answer \"0\": write METHOD=JSON"},
    {{"listen", "mtm", "--answer", "CreateAp={}"},
     "--answer \"CreateAp={}\": no method \"CreateAp\" of what is listened to needs an answer; did you mean "
     "\"CreateApp\"?"},
    {{"listen", "channel_config", "--answer", R"(CreateApp={"status": 0, "tabId": 1})"},
     R"(--answer "CreateApp={\"status\": 0, \"tabId\": 1}": no method "CreateApp" of what is listened to needs an answer)"},
    {{"listen", "mtm", "--answer", "CreateApp={"},
     "--answer IMtmCallback.CreateApp: the answer: not valid JSON: line 1, "},
    {{"listen", "mtm", "--answer", "CreateApp={}"},
     "--answer IMtmCallback.CreateApp lacks the argument \"status\"; it takes status (int32_t), tabId (int32_t)"},
    {{"listen", "mtm", "--answer", R"(CreateApp={"status": "x", "tabId": 1})"},
     "--answer IMtmCallback.CreateApp: argument \"status\": \"x\" is no whole number: int32_t is written as 4096 or "
     "0x1000"},
    {{"bench", "IChannel.GetName", "1", "--concurrency", "65"},
     "--concurrency: \"65\" is no whole number from 1 to 64"},
    {{"bench", "IChannel.GetName", "1", "--rate", "0"}, "--rate: \"0\" is no number above 0"},
    {{"bench", "IChannelConfig.RegisterCallback", "@listen", "1"},
     "bench shows no events: use call or listen with @listen"},
    // Arguments.
    {{"call", "IChannel.GetName"}, "IChannel.GetName lacks the argument \"channel\"; it takes channel (int64_t)"},
    {{"call", "IChannel.GetName", "1", "2"},
     "IChannel.GetName has an argument too many, \"2\"; it takes channel (int64_t)"},
    {{"call", "IChannelConfig.GetCurrentChannel", "1"},
     "IChannelConfig.GetCurrentChannel has an argument too many, \"1\"; it takes none"},
    {{"call", "IChannel.GetName", "chanel=1"},
     "IChannel.GetName has no argument \"chanel\"; did you mean \"channel\"?"},
    {{"call", "IChannel.GetName", "channel=1", "channel=1"}, "IChannel.GetName has the argument \"channel\" twice"},
    {{"call", "IChannel.GetName", "channel=one"},
     "IChannel.GetName: argument \"channel\": \"one\" is no whole number: int64_t is written as 4096 or 0x1000"},
    {{"call", "IChannel.GetName", "0x8000000000000000"},
     "IChannel.GetName: argument \"channel\": 0x8000000000000000 is out of range: int64_t is -9223372036854775808 to "
     "9223372036854775807"},
    {{"call", "IVideoBroadcast.SetVolume", "1", "volume=-1"},
     "IVideoBroadcast.SetVolume: argument \"volume\": -1 is out of range: uint32_t is 0 to 4294967295"},
    {{"call", "IVideoBroadcast.SetVolume", "1", "4294967296"},
     "IVideoBroadcast.SetVolume: argument \"volume\": 4294967296 is out of range: uint32_t is 0 to 4294967295"},
    {{"call", "IVideoBroadcast.SetFullScreen", "1", "yes"},
     "IVideoBroadcast.SetFullScreen: argument \"fullScreen\": \"yes\" is neither true nor false"},
    {{"call", "IVideoBroadcast.CreateVideoComponent", "1", "2", "wide", "AVC"},
     "IVideoBroadcast.CreateVideoComponent: argument \"aspectRatio\": \"wide\" is no number"},
    {{"call", "IVideoBroadcast.GetAVComponentNumByType", "1", "AUDI"},
     "IVideoBroadcast.GetAVComponentNumByType: argument \"type\": TolmHbbtvAVComponentType has no enumerator \"AUDI\"; "
     "did you mean \"AUDIO\"?"},
    {{"call", "IChannelConfig.RegisterCallback", "me", "1"},
     "IChannelConfig.RegisterCallback: argument \"cb\": \"me\" is no IChannelConfigCallback: write @listen to see what "
     "arrives, or null for none"},
    {{"call", "IChannelConfig.CreateChannelList", "1,x"},
     "IChannelConfig.CreateChannelList: argument \"channels\": \"x\" is no whole number: int64_t is written as 4096 or "
     "0x1000"},
    {{"call", "IVideoBroadcast.SetWindow", "1", "{}"},
     "IVideoBroadcast.SetWindow: argument \"rect\": TolmRect lacks its field \"x\""},
    {{"call", "IVideoBroadcast.SetWindow", "1", R"({"x": 1, "y": 1, "width": 1, "hight": 1})"},
     "IVideoBroadcast.SetWindow: argument \"rect\": TolmRect has no field \"hight\"; did you mean \"height\"?"},
    {{"call", "IVideoBroadcast.SetWindow", "1", R"({"x": 1.5, "y": 1, "width": 1, "height": 1})"},
     "IVideoBroadcast.SetWindow: argument \"rect\": 1.5 is no int32_t"},
    // JSON and files.
    {{"call", "IChannel.GetName", "--json", "{\"channel\": "},
     "IChannel.GetName: the arguments after --json: not valid JSON: line 1, column "},
    {{"call", "IChannel.GetName", "--json", "{\"channel\": true}"},
     "IChannel.GetName: argument \"channel\": true is no int64_t"},
    {{"call", "IChannel.GetName", "--json", "{\"chanel\": 1}"},
     "IChannel.GetName has no argument \"chanel\"; did you mean \"channel\"?"},
    {{"call", "IChannel.GetName", "--json=[1]"},
     "IChannel.GetName: the arguments after --json: an object is needed, as in '{\"channel\": 4096}'"},
    {{"call", "IChannel.GetName", "@"}, "@ is followed by the name of a file; a text that is @ is written as @@"},
    {{"call", "IChannel.GetName", "@%/none"}, "%/none: cannot be opened: No such file or directory"},
    {{"call", "IChannel.GetName", "@%"}, "%: cannot be read: Is a directory"},
    {{"call", "IChannel.GetName", "--json", "@%/none"}, "%/none: cannot be opened: No such file or directory"},
    {{"call", "IChannel.SetName", "-", "-"}, "standard input, -, can be one argument only"},
    {{"send", "channel.GetName", "c_handle=K\xc3\xb6ln"},
     "channel.GetName: argument \"c_handle\": \"K\xc3\xb6ln\" is no whole number: uint64_t is written as 4096 or "
     "0x1000"},
    {{"send", "channel", "--raw", "@%/none"}, "%/none: cannot be opened: No such file or directory"},
};

class BadInput : public Alone {};

std::string InDirectory(std::string text, const std::string& directory) {
    for (size_t at; (at = text.find('%')) != std::string::npos;) text.replace(at, 1, directory);
    return text;
}

TEST_F(BadInput, EndsWithTwoAndASentenceThatHelps) {
    for (const Bad& bad : kBad) {
        std::vector<std::string> arguments;
        for (const std::string& word : bad.arguments) arguments.push_back(InDirectory(word, mDirectory.Path()));
        const FinishedRun run = CtlWithInput(arguments, "1");
        const std::string sentence = "hbbtvctl: " + InDirectory(bad.sentence, mDirectory.Path());
        EXPECT_EQ(2, run.exit) << sentence << "\n" << run.Text();
        EXPECT_EQ("", run.output) << sentence;
        EXPECT_THAT(run.errors, StartsWith(sentence));
    }
}

TEST_F(BadInput, IsNoNegativeNumber) {
    // Understood, and then nobody is there.
    for (const char* value : {"-1", "-0x1", "source=-1"}) {
        EXPECT_EQ(3, Ctl({"call", "IVideoBroadcast.ChangeDisplaySource", value}).exit) << value;
    }
    EXPECT_EQ(3, Ctl({"call", "IVideoBroadcast.ChangeDisplaySource", "--", "-1"}).exit);
}

TEST_F(BadInput, NestedTooDeeplyIsRefused) {
    const FinishedRun run = Ctl({"call", "IVideoBroadcast.SetWindow", "1", std::string(100000, '[')});
    EXPECT_EQ(2, run.exit);
    EXPECT_THAT(run.errors, HasSubstr("not valid JSON: line 1, column 1: it nests deeper than 100 levels\n"));
}

}  // namespace

}  // namespace hbbtv::test
