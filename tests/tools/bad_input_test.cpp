// Invalid command lines: exit code 2, nothing on standard output, and a message that helps.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Bad {
    std::vector<std::string> arguments;
    std::string message;
};

const std::string kSeeHelp = "See `hbbtvctl --help`.";

// "%" is replaced by the directory of the test.
const Bad kBad[] = {
    // Commands and options.
    {{}, "no command given\n" + kSeeHelp},
    {{"cal"}, "unknown command \"cal\"; did you mean \"call\"?\n" + kSeeHelp},
    {{"call"}, "METHOD is required\nSee `hbbtvctl call --help`."},
    {{"call", "IChannel.GetName", "--jsn"}, "unknown option \"--jsn\"; did you mean \"--json\"?"},
    {{"list", "--directory", "%"}, "option --directory must precede the command"},
    {{"list", "all"}, "list: unexpected argument \"all\""},
    {{"describe", "IChannel", "IMtm"}, "describe: unexpected argument \"IMtm\""},
    {{"list", "--timeout", "soon"}, "--timeout: \"soon\" is not a duration: write 300ms or 2s, at most one day"},
    {{"list", "--timeout", "86401s"}, "--timeout: \"86401s\" is not a duration: write 300ms or 2s, at most one day"},
    {{"list", "--timeout"}, "option --timeout requires a value: TIME"},
    {{"completion", "tcsh"}, "SHELL: unknown shell \"tcsh\": expected bash, zsh or fish"},
    {{"man", "cal"}, "COMMAND: unknown command \"cal\"; did you mean \"call\"?"},
    {{"--directory", "", "list"}, "--directory: the name is empty"},
    {{"call", "IChannel.GetName", "1", "--for", "1s"}, "--for, --count and --take-over require an argument @listen"},
    {{"call", "IChannel.GetName", "1", "--take-over"}, "--for, --count and --take-over require an argument @listen"},
    {{"call", "IChannel.GetName", "1", "--count", "2"}, "--for, --count and --take-over require an argument @listen"},
    {{"send", "channel.GetName", "--raw", "x"}, "with --raw, send takes only a family"},
    {{"send", "channel", "1", "--raw", "x"}, "with --raw, send takes only a family"},
    {{"emit", "mtm", "Ping", "--raw", "x"}, "with --raw, emit takes only a family"},
    // Names.
    {{"call", "GetName"}, "\"GetName\" is not a method: write INTERFACE.METHOD, for example IChannel.GetOnid"},
    {{"call", "IChanel.GetName"}, "unknown interface \"IChanel\"; did you mean \"IChannel\"? (see `hbbtvctl list`)"},
    {{"call", "IChannel.GetNam"},
     "IChannel has no method \"GetNam\"; did you mean \"GetName\"? (see `hbbtvctl describe IChannel`)"},
    {{"call", "IChannel.zzzzzzzz"}, "IChannel has no method \"zzzzzzzz\" (see `hbbtvctl describe IChannel`)\n"},
    {{"describe", "zzzzzzzz"}, "unknown interface, family or type \"zzzzzzzz\" (see `hbbtvctl list`)\n"},
    {{"call", "IChannelConfigCallback.OnChannelConfigEvent"},
     "cannot call IChannelConfigCallback: clients implement it; `hbbtvctl emit` sends the events that reach it"},
    {{"bench", "IChannelConfigCallback.OnChannelConfigEvent"},
     "cannot call IChannelConfigCallback: clients implement it"},
    {{"describe", "TolmRec"}, "unknown interface, family or type \"TolmRec\"; did you mean \"TolmRect\"?"},
    {{"describe", "channel.GetNam"},
     "family channel has no operation \"GetNam\"; did you mean \"GetName\"? (see `hbbtvctl describe channel`)"},
    {{"check", "platfrom"}, "SIDE: expected \"platform\""},
    {{"check", "platform", "chanel"}, "unknown family \"chanel\"; did you mean \"channel\"?"},
    {{"send", "channel"}, "\"channel\" is not an operation: write FAMILY.OPERATION, for example channel.GetOnid"},
    {{"send", "chanel.GetName"}, "unknown family \"chanel\"; did you mean \"channel\"? (see `hbbtvctl list`)"},
    {{"send", "channel.GetNam"},
     "family channel has no operation \"GetNam\"; did you mean \"GetName\"? (see `hbbtvctl describe channel`)"},
    {{"emit", "channel_config"},
     "emit requires an event of channel_config (see `hbbtvctl describe channel_config`) or --raw"},
    {{"emit", "channel_config", "change"},
     "family channel_config has no event \"change\"; did you mean \"changed\"? (see `hbbtvctl describe "
     "channel_config`)"},
    {{"emit", "channel", "changed"}, "family channel has no events"},
    {{"emit", "channel_config", "changed", "--request", "--one-way"}, "--request excludes --one-way"},
    {{"listen"}, "FAMILY is required\nSee `hbbtvctl listen --help`."},
    {{"listen", "chanel_config"},
     "unknown family \"chanel_config\"; did you mean \"channel_config\"? (see `hbbtvctl list`)"},
    {{"listen", "channel_config", "--with", "contxt=1"},
     "--with \"contxt=1\": no registration takes an argument \"contxt\"; did you mean \"context\"?"},
    {{"listen", "channel_config", "--with", "context"}, "--with \"context\": write NAME=VALUE"},
    {{"listen", "channel_config", "--with", "context=x"},
     "IChannelConfig.RegisterCallback: argument \"context\": \"x\" is not an integer: write int64_t as 4096 or 0x1000"},
    {{"listen", "channel_config", "--count", "many"}, "--count: \"many\" is not an integer of at least 1"},
    {{"listen", "channel_config", "--count", "0"}, "--count: \"0\" is not an integer of at least 1"},
    {{"listen", "channel_config", "--answer", "0"}, "--answer \"0\": write METHOD=JSON"},
    {{"listen", "mtm", "--answer", "CreateAp={}"},
     "--answer \"CreateAp={}\": no method \"CreateAp\" of these families needs an answer; did you mean "
     "\"CreateApp\"?"},
    {{"listen", "channel_config", "--answer", R"(CreateApp={"status": 0, "tabId": 1})"},
     R"(--answer "CreateApp={\"status\": 0, \"tabId\": 1}": no method "CreateApp" of these families needs an answer)"},
    {{"listen", "mtm", "--answer", "CreateApp={"}, "--answer IMtmCallback.CreateApp: value: not valid JSON: line 1, "},
    {{"listen", "mtm", "--answer", "CreateApp={}"},
     "--answer IMtmCallback.CreateApp: missing argument \"status\"; arguments: status (int32_t), tabId (int32_t)"},
    {{"listen", "mtm", "--answer", R"(CreateApp={"status": "x", "tabId": 1})"},
     "--answer IMtmCallback.CreateApp: argument \"status\": \"x\" is not an integer: write int32_t as 4096 or 0x1000"},
    {{"bench", "IChannel.GetName", "1", "--concurrency", "65"}, "--concurrency: \"65\" is not an integer from 1 to 64"},
    {{"bench", "IChannel.GetName", "1", "--rate", "0"}, "--rate: \"0\" is not a number greater than 0"},
    {{"bench", "IChannelConfig.RegisterCallback", "@listen", "1"},
     "bench does not support @listen; use call or listen"},
    // Arguments.
    {{"call", "IChannel.GetName"}, "IChannel.GetName: missing argument \"channel\"; arguments: channel (int64_t)"},
    {{"call", "IChannel.GetName", "1", "2"},
     "IChannel.GetName: unexpected argument \"2\"; arguments: channel (int64_t)"},
    {{"call", "IChannelConfig.GetCurrentChannel", "1"},
     "IChannelConfig.GetCurrentChannel: unexpected argument \"1\"; it takes no arguments"},
    {{"call", "IChannel.GetName", "chanel=1"},
     "IChannel.GetName: unknown argument \"chanel\"; did you mean \"channel\"?"},
    {{"call", "IChannel.GetName", "channel=1", "channel=1"}, "IChannel.GetName: argument \"channel\" is given twice"},
    {{"call", "IChannel.GetName", "channel=one"},
     "IChannel.GetName: argument \"channel\": \"one\" is not an integer: write int64_t as 4096 or 0x1000"},
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
     "IVideoBroadcast.CreateVideoComponent: argument \"aspectRatio\": \"wide\" is not a number"},
    {{"call", "IVideoBroadcast.GetAVComponentNumByType", "1", "AUDI"},
     "IVideoBroadcast.GetAVComponentNumByType: argument \"type\": TolmHbbtvAVComponentType has no enumerator \"AUDI\"; "
     "did you mean \"AUDIO\"?"},
    {{"call", "IChannelConfig.RegisterCallback", "me", "1"},
     "IChannelConfig.RegisterCallback: argument \"cb\": \"me\" is not a valid IChannelConfigCallback: write @listen to "
     "print the calls that arrive, or null"},
    {{"call", "IChannelConfig.CreateChannelList", "1,x"},
     "IChannelConfig.CreateChannelList: argument \"channels\": \"x\" is not an integer: write int64_t as 4096 or "
     "0x1000"},
    {{"call", "IVideoBroadcast.SetWindow", "1", "{}"},
     "IVideoBroadcast.SetWindow: argument \"rect\": TolmRect requires the field \"x\""},
    {{"call", "IVideoBroadcast.SetWindow", "1", R"({"x": 1, "y": 1, "width": 1, "hight": 1})"},
     "IVideoBroadcast.SetWindow: argument \"rect\": TolmRect has no field \"hight\"; did you mean \"height\"?"},
    {{"call", "IVideoBroadcast.SetWindow", "1", R"({"x": 1.5, "y": 1, "width": 1, "height": 1})"},
     "IVideoBroadcast.SetWindow: argument \"rect\": 1.5 is not a valid int32_t"},
    // JSON and files.
    {{"call", "IChannel.GetName", "--json", "{\"channel\": "},
     "IChannel.GetName: --json: not valid JSON: line 1, column "},
    {{"call", "IChannel.GetName", "--json", "{\"channel\": true}"},
     "IChannel.GetName: argument \"channel\": true is not a valid int64_t"},
    {{"call", "IChannel.GetName", "--json", "{\"chanel\": 1}"},
     "IChannel.GetName: unknown argument \"chanel\"; did you mean \"channel\"?"},
    {{"call", "IChannel.GetName", "--json=[1]"},
     "IChannel.GetName: --json: expected an object, for example '{\"channel\": 4096}'"},
    {{"call", "IChannel.GetName", "@"}, "@ requires the name of a file; write @@ for the string @"},
    {{"call", "IChannel.GetName", "@%/none"}, "cannot open %/none: No such file or directory"},
    {{"call", "IChannel.GetName", "@%"}, "cannot read %: Is a directory"},
    {{"call", "IChannel.GetName", "--json", "@%/none"}, "cannot open %/none: No such file or directory"},
    {{"call", "IChannel.SetName", "-", "-"}, "standard input (-) can be read for one argument only"},
    {{"send", "channel", "--raw", "@%/none"}, "cannot open %/none: No such file or directory"},
};

class BadInput : public Alone {};

std::string InDirectory(std::string text, const std::string& directory) {
    for (size_t at; (at = text.find('%')) != std::string::npos;) text.replace(at, 1, directory);
    return text;
}

TEST_F(BadInput, ExitsWithTwoAndAMessageThatHelps) {
    for (const Bad& bad : kBad) {
        std::vector<std::string> arguments;
        for (const std::string& word : bad.arguments) arguments.push_back(InDirectory(word, mDirectory.Path()));
        const FinishedRun run = CtlWithInput(arguments, "1");
        const std::string message = "hbbtvctl: " + InDirectory(bad.message, mDirectory.Path());
        EXPECT_EQ(run.exit, 2) << message << "\n" << run.Text();
        EXPECT_EQ(run.output, "") << message;
        EXPECT_THAT(run.errors, StartsWith(message));
    }
}

TEST_F(BadInput, DoesNotIncludeNegativeNumbers) {
    // 3: the command line is valid, but no service is running.
    for (const char* value : {"-1", "-0x1", "source=-1"}) {
        EXPECT_EQ(Ctl({"call", "IVideoBroadcast.ChangeDisplaySource", value}).exit, 3) << value;
    }
    EXPECT_EQ(Ctl({"call", "IVideoBroadcast.ChangeDisplaySource", "--", "-1"}).exit, 3);
}

TEST_F(BadInput, IncludesJsonThatNestsTooDeeply) {
    const FinishedRun run = Ctl({"call", "IVideoBroadcast.SetWindow", "1", std::string(100000, '[')});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.errors, HasSubstr("not valid JSON: line 1, column 1: it nests deeper than 100 levels\n"));
}

}  // namespace

}  // namespace hbbtv::test
