// Completion as users see it: a shell in a terminal, real keys, and the content of the screen.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ctl.h"
#include "screen.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;

// Returns the candidates that the scripts get.
std::string Candidates(std::vector<std::string> words) {
    words.insert(words.begin(), {"complete", "--"});
    const FinishedRun run = Ctl(words);
    EXPECT_EQ(run.exit, 0);
    EXPECT_EQ(run.errors, "");
    std::string names;
    for (size_t at = 0; at < run.output.size(); at = run.output.find('\n', at) + 1) {
        names += run.output.substr(at, run.output.find('\t', at) - at) + " ";
    }
    return names;
}

class Candidate : public Alone {};

TEST_F(Candidate, IsACommandAnOptionOrAName) {
    EXPECT_EQ(Candidates({"lis"}), "list listen ");
    EXPECT_EQ(Candidates({"c"}), "call check completion ");
    EXPECT_EQ(Candidates({"bench", "--conc"}), "--concurrency ");
    EXPECT_EQ(Candidates({"call", "IVid"}), "IVideoBroadcast. ");
    EXPECT_EQ(Candidates({"call", "--time", "IChannel.GetO"}), "IChannel.GetOnid ");
    EXPECT_EQ(Candidates({"send", "channel_config.GetChannelL"}), "channel_config.GetChannelList ");
    EXPECT_EQ(Candidates({"listen", "channel_"}), "channel_config ");
    EXPECT_EQ(Candidates({"emit", "channel_config", ""}), "OnChannelConfigEvent ");
    EXPECT_EQ(Candidates({"describe", "TolmR"}), "TolmRect ");
    EXPECT_EQ(Candidates({"completion", "z"}), "zsh ");
    EXPECT_EQ(Candidates({"man", "do"}), "doctor ");
    EXPECT_EQ(Candidates({"log", "de"}), "debug default ");
    EXPECT_EQ(Candidates({"status", "channel_l"}), "channel_list ");
    EXPECT_EQ(Candidates({"listen", "channel_config", "--event", ""}), "OnChannelConfigEvent ");
}

TEST_F(Candidate, IsAnArgumentOrItsValue) {
    EXPECT_EQ(Candidates({"call", "IVideoBroadcast.GetAVComponentNumByType", ""}), "vb= type= ");
    EXPECT_EQ(Candidates({"call", "IVideoBroadcast.GetAVComponentNumByType", "vb=1", ""}), "type= ");
    EXPECT_EQ(Candidates({"call", "IVideoBroadcast.GetAVComponentNumByType", "1", ""}), "type= ");
    EXPECT_EQ(Candidates({"call", "IVideoBroadcast.GetAVComponentNumByType", "1", "A"}), "AUDIO ");
    EXPECT_EQ(Candidates({"bench", "IVideoBroadcast.GetAVComponentNumByType", "vb=1", "type="}),
              "type=VIDEO type=AUDIO type=SUBTITLE ");
    EXPECT_EQ(Candidates({"call", "IVideoBroadcast.SetFullScreen", "fullScreen="}),
              "fullScreen=true fullScreen=false ");
    EXPECT_EQ(Candidates({"call", "IChannelConfig.RegisterCallback", "cb="}), "cb=@listen ");
    EXPECT_EQ(Candidates({"send", "channel.GetName", ""}), "c_handle= ");
    EXPECT_EQ(Candidates({"emit", "channel_config", "changed", ""}), "reserved= ");
    EXPECT_EQ(Candidates({"call", "IChannel.NoSuchMethod", ""}), "");
    EXPECT_EQ(Candidates({"nonsense", ""}), "");
}

class Completion : public Alone {
  protected:
    // Types `keys` and TAB, and waits for the line.
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
    // No blank follows a dot or an equals sign; one follows a complete word.
    screen.Type("hbbtvctl call IVid");
    screen.Press("Tab");
    screen.Type("GetPlaySt");
    screen.Press("Tab");
    screen.Type("v");
    screen.Press("Tab");
    screen.Type("1");
    EXPECT_TRUE(screen.WaitForText("$ hbbtvctl call IVideoBroadcast.GetPlayState vb=1\n")) << screen.Text();
    screen.Press("C-u");
    // A quoted value is one word.
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
    // As users configure it, but without the mark before the first prompt, which looks like a prompt.
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
    EXPECT_TRUE(screen.WaitForText("(Register callbacks and print every event)\n")) << screen.Text();
}

}  // namespace

}  // namespace hbbtv::test
