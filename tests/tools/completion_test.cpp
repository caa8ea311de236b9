// Completion as people have it: a shell in a terminal, real keys, and what the screen shows then.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ctl.h"
#include "screen.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;

// What the scripts ask.
std::string Candidates(std::vector<std::string> words) {
    words.insert(words.begin(), {"complete", "--"});
    const FinishedRun run = Ctl(words);
    EXPECT_EQ(0, run.exit);
    EXPECT_EQ("", run.errors);
    std::string names;
    for (size_t at = 0; at < run.output.size(); at = run.output.find('\n', at) + 1) {
        names += run.output.substr(at, run.output.find('\t', at) - at) + " ";
    }
    return names;
}

class Candidate : public Alone {};

TEST_F(Candidate, IsACommandAnOptionOrAName) {
    EXPECT_EQ("list listen ", Candidates({"lis"}));
    EXPECT_EQ("call completion ", Candidates({"c"}));
    EXPECT_EQ("--concurrency ", Candidates({"bench", "--conc"}));
    EXPECT_EQ("IVideoBroadcast. ", Candidates({"call", "IVid"}));
    EXPECT_EQ("IChannel.GetOnid ", Candidates({"call", "--time", "IChannel.GetO"}));
    EXPECT_EQ("channel_config.GetChannelList ", Candidates({"send", "channel_config.GetChannelL"}));
    EXPECT_EQ("channel_config ", Candidates({"listen", "channel_"}));
    EXPECT_EQ("OnChannelConfigEvent ", Candidates({"emit", "channel_config", ""}));
    EXPECT_EQ("TolmRect ", Candidates({"describe", "TolmR"}));
    EXPECT_EQ("zsh ", Candidates({"completion", "z"}));
    EXPECT_EQ("doctor ", Candidates({"man", "do"}));
}

TEST_F(Candidate, IsAnArgumentOrItsValue) {
    EXPECT_EQ("vb= type= ", Candidates({"call", "IVideoBroadcast.GetAVComponentNumByType", ""}));
    EXPECT_EQ("type= ", Candidates({"call", "IVideoBroadcast.GetAVComponentNumByType", "vb=1", ""}));
    EXPECT_EQ("type= ", Candidates({"call", "IVideoBroadcast.GetAVComponentNumByType", "1", ""}));
    EXPECT_EQ("AUDIO ", Candidates({"call", "IVideoBroadcast.GetAVComponentNumByType", "1", "A"}));
    EXPECT_EQ("type=VIDEO type=AUDIO type=SUBTITLE ",
              Candidates({"bench", "IVideoBroadcast.GetAVComponentNumByType", "vb=1", "type="}));
    EXPECT_EQ("fullScreen=true fullScreen=false ",
              Candidates({"call", "IVideoBroadcast.SetFullScreen", "fullScreen="}));
    EXPECT_EQ("cb=@listen ", Candidates({"call", "IChannelConfig.RegisterCallback", "cb="}));
    EXPECT_EQ("c_handle= ", Candidates({"send", "channel.GetName", ""}));
    EXPECT_EQ("reserved= ", Candidates({"emit", "channel_config", "changed", ""}));
    EXPECT_EQ("", Candidates({"call", "IChannel.NoSuchMethod", ""}));
    EXPECT_EQ("", Candidates({"nonsense", ""}));
}

class Completion : public Alone {
  protected:
    // A few keys and TAB, and what the line has become.
    static void Expect(const Screen& screen, const std::string& typed, const std::string& shown) {
        screen.Type(typed);
        screen.Press("Tab");
        EXPECT_TRUE(screen.WaitForText(shown)) << typed << " should become " << shown << "\n" << screen.Text();
        screen.Press("C-u");
    }

    static void CompletesALine(const Screen& screen) {
        Expect(screen, "hbbtvctl des", "$ hbbtvctl describe\n");
        Expect(screen, "hbbtvctl call IVid", "$ hbbtvctl call IVideoBroadcast.");
        Expect(screen, "hbbtvctl call IChannel.GetO", "$ hbbtvctl call IChannel.GetOnid");
        Expect(screen, "hbbtvctl call IChannel.GetOnid ch", "$ hbbtvctl call IChannel.GetOnid channel=");
        Expect(screen, "hbbtvctl call IVideoBroadcast.GetAVComponentNumByType vb=1 type=S",
               "$ hbbtvctl call IVideoBroadcast.GetAVComponentNumByType vb=1 type=SUBTITLE");
        Expect(screen, "hbbtvctl bench --conc", "$ hbbtvctl bench --concurrency");
    }
};

TEST_F(Completion, InBash) {
    Screen screen("bash --norc --noprofile -i");
    screen.Type("PS1='$ '; source <(hbbtvctl completion bash); clear; echo re''ady");
    screen.Press("Enter");
    ASSERT_TRUE(screen.WaitForText("ready\n$")) << screen.Text();
    CompletesALine(screen);
    // Nothing is appended behind a dot or an equals sign, a blank behind a whole word.
    screen.Type("hbbtvctl call IVid");
    screen.Press("Tab");
    screen.Type("GetPlaySt");
    screen.Press("Tab");
    screen.Type("v");
    screen.Press("Tab");
    screen.Type("1");
    EXPECT_TRUE(screen.WaitForText("$ hbbtvctl call IVideoBroadcast.GetPlayState vb=1\n")) << screen.Text();
    screen.Press("C-u");
    // A value in quotes is one word.
    Expect(screen, "hbbtvctl call IChannel.SetName name=\"Das Erste\" ch",
           "$ hbbtvctl call IChannel.SetName name=\"Das Erste\" channel=");
    // Several candidates are shown.
    screen.Type("hbbtvctl call IVideoBroadcast.GetAVComponentNumByType vb=1 type=");
    screen.Press("Tab");
    screen.Press("Tab");
    EXPECT_TRUE(screen.WaitForText("AUDIO     SUBTITLE  VIDEO")) << screen.Text();
    EXPECT_THAT(screen.Text(), HasSubstr("type=\n")) << "and nothing is chosen";
}

TEST_F(Completion, InZsh) {
    // As users have it, and without the mark that zsh shows in front of its first prompt, which looks like one.
    WriteFile(
        mDirectory / ".zshrc",
        "PS1='$ '\nunsetopt promptsp\nautoload -Uz compinit\ncompinit -D -u\nsource <(hbbtvctl completion zsh)\n");
    Screen screen("zsh -d -i");
    ASSERT_TRUE(screen.WaitForText("$")) << screen.Text();
    CompletesALine(screen);
    screen.Type("hbbtvctl call IVideoBroadcast.GetAVComponentNumByType vb=1 type=");
    screen.Press("Tab");
    for (const char* value : {"type=VIDEO", "type=AUDIO", "type=SUBTITLE"}) {
        EXPECT_TRUE(screen.WaitForText(value)) << screen.Text();
    }
}

TEST_F(Completion, InFish) {
    Screen screen("fish --no-config --private");
    screen.Type("function fish_prompt; echo '$ '; end; hbbtvctl completion fish | source; clear; echo re''ady");
    screen.Press("Enter");
    ASSERT_TRUE(screen.WaitForText("ready\n$")) << screen.Text();
    CompletesALine(screen);
    screen.Type("hbbtvctl lis");
    screen.Press("Tab");
    EXPECT_TRUE(screen.WaitForText("(Register callbacks and show every event)\n")) << screen.Text();
}

}  // namespace

}  // namespace hbbtv::test
