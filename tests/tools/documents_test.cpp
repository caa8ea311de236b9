// Runs every example of the documents and of --help.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <sstream>

#include "console_blocks.h"
#include "ctl.h"
#include "traffic/select/private_members.h"

namespace hbbtv::test {

namespace {

std::string DirectoryOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

// A shell in the directory of the test. Commands come from its standard input.
class Shell : public ChildProcess {
  public:
    explicit Shell(const std::string& directory)
        : ChildProcess({"bash", "--norc", "--noprofile"},
                       {"PATH=" + DirectoryOf(HBBTVCTL_PROGRAM) + ":" + std::getenv("PATH"), "TMPDIR=" + directory,
                        "HOME=" + directory, "MANWIDTH=80", "LC_ALL=C.UTF-8"}) {
        Write("cd '" + directory + "'\n");
    }

    // Returns the output of the command, and sets its exit code. A command that ends with "&" runs until it listens.
    std::string Type(const std::string& command, int* code = nullptr) {
        const size_t before = Output().size();
        if (!command.empty() && command.back() == '&') {
            Write(command + "\n");
            EXPECT_TRUE(WaitFor(
                [&] { return Output().find("listening; press Ctrl-C to stop\n", before) != std::string::npos; }));
            return Output().substr(before);
        }
        const std::string mark = "=== end of example " + std::to_string(++mTyped) + " ";
        Write(command + "\necho \"" + mark + "$?\"\n");
        EXPECT_TRUE(WaitForOutput(mark)) << command << "\n" << Output().substr(before);
        EXPECT_TRUE(WaitFor([&] { return Output().back() == '\n'; }));
        const std::string output = Output().substr(before);
        const size_t end = output.find(mark);
        if (end == std::string::npos) return output;
        if (code != nullptr) *code = std::stoi(output.substr(end + mark.size()));
        return output.substr(0, end);
    }

  private:
    int mTyped = 0;
};

// Copies a recording and a log to look at.
void CopyTraffic(const std::string& directory) {
    const std::string examples = std::string(HBBTV_SOURCE_DIR) + "/examples/traffic/";
    WriteFile(directory + "/traffic.ndjson", ReadFile(examples + "slow_channel_change.ndjson"));
    WriteFile(directory + "/log.txt", ReadFile(examples + "logcat.txt"));
}

class Documents : public InFrontOfTheSystem {
  protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(InFrontOfTheSystem::SetUp());
        CopyTraffic(mDirectory.Path());
    }

    void RunExamplesOf(const std::string& markdown, size_t atLeast) {
        Shell shell(mDirectory.Path());
        ExampleComparison comparison(mDirectory.Path());
        const std::vector<Example> examples = ConsoleExamples(markdown);
        ASSERT_LE(atLeast, examples.size());
        for (const Example& example : examples) {
            EXPECT_EQ(comparison.Difference(example, shell.Type(comparison.Command(example))), "");
        }
    }
};

TEST_F(Documents, OfHbbtvctlShowWhatHappens) {
    RunExamplesOf(ReadFile(std::string(HBBTV_SOURCE_DIR) + "/docs/hbbtvctl.md"), 25);
}

// Its files stand in blocks that begin with "```play NAME". What its examples do not run has to hold.
TEST_F(Documents, OfPlaysShowWhatHappens) {
    const std::string document = ReadFile(std::string(HBBTV_SOURCE_DIR) + "/docs/play.md");
    const std::regex block("```play ([a-z-]+[.]play)\n([^`]+)```");
    size_t held = 0;
    for (std::sregex_iterator it(document.begin(), document.end(), block), end; it != end; ++it) {
        const std::string name = (*it)[1];
        WriteFile(mDirectory / name, (*it)[2]);
        if (name.rfind("wrong-", 0) == 0) continue;
        const FinishedRun run = Ctl({"play", mDirectory / name});
        EXPECT_EQ(run.exit, 0) << run.Text();
        ++held;
    }
    EXPECT_EQ(held, 3u);
    RunExamplesOf(document, 6);
}

const char* const kSomethingGoesWrong = HBBTV_SOURCE_DIR "/docs/something-goes-wrong.md";

TEST_F(Documents, OfATelevisionThatGoesWrongShowsWhatHappens) {
    RunExamplesOf(ReadFile(kSomethingGoesWrong), 17);
}

class DocumentsOnAnotherPlatform : public Documents {
  protected:
    void StartPlatform() override { ASSERT_TRUE(mPython.Ready()) << mPython.Output(); }

  private:
    PlatformInPython mPython;
};

TEST_F(DocumentsOnAnotherPlatform, OfATelevisionThatGoesWrongShowsWhatHappens) {
    RunExamplesOf(ReadFile(kSomethingGoesWrong), 17);
}

TEST_F(Documents, ReadmeShowsWhatHappens) {
    RunExamplesOf(ReadFile(std::string(HBBTV_SOURCE_DIR) + "/README.md"), 3);
}

TEST(DocumentsOfHbbtvctl, ExplainEveryCommandAndExitCode) {
    ScratchDirectory directory;
    const std::string document = ReadFile(std::string(HBBTV_SOURCE_DIR) + "/docs/hbbtvctl.md");
    const std::string help = Ctl({"--help"}).output;
    const std::regex command("\n  ([a-z]+) {2,}[A-Z]");
    const size_t begin = help.find("Commands:");
    const std::string commands = help.substr(begin, help.find("\n\n", begin) - begin) + "\n";
    size_t count = 0;
    for (std::sregex_iterator it(commands.begin(), commands.end(), command), end; it != end; ++it, ++count) {
        EXPECT_THAT(document, testing::HasSubstr("\n## " + (*it)[1].str())) << "each command has a section";
    }
    EXPECT_LE(14u, count) << help;
    for (const int code : {0, 1, 2, 3, 4, 5, 6, 7, 130}) {
        EXPECT_THAT(document, testing::HasSubstr("\n| " + std::to_string(code) + " | "));
        EXPECT_THAT(help, testing::HasSubstr("\n  " + std::to_string(code) + "  "));
    }
}

TEST(DocumentsOfHbbtvctl, ListEveryPrivateMember) {
    const std::string document = ReadFile(std::string(HBBTV_SOURCE_DIR) + "/docs/hbbtvctl.md");
    const size_t begin = document.find("\n### What is redacted\n");
    ASSERT_NE(begin, std::string::npos);
    const std::string section = document.substr(begin, document.find("\n##", begin + 5) - begin);
    for (const traffic::PrivateMember& member : traffic::PrivateMembers()) {
        const std::string operation = std::string("`") + member.family + "." + member.operation + "`";
        const size_t row = section.find(operation);
        ASSERT_NE(row, std::string::npos) << operation;
        const size_t line = section.rfind('\n', row) + 1;
        EXPECT_THAT(section.substr(line, section.find('\n', row) - line),
                    testing::HasSubstr(std::string("`") + member.key + "`"))
            << operation;
    }
}

// Of one exchange that every platform answers in the same way.
const char* const kRecording =
    R"({"recording":1}
{"number":1,"kind":"exchange","wall_us":1795276045000000,"monotonic_us":6031000000,"connection":1,)"
    R"("socket":"service_plugin_to_hbbtv_vb_chn","family":"channel","operation":"GetName","code":13,)"
    R"("message":{"type":2,"port":2,"size":54,"json":{"c_handle":"","method":13,"type":12}},)"
    R"("reply":{"type":3,"port":2,"size":11,"json":{"ret":-1}},"duration_us":312,"status":-1}
)";

// Returns the last lines, for the message of a failed assertion.
std::string EndOf(const std::string& output) {
    constexpr size_t kMost = 4000;
    if (output.size() <= kMost) return output;
    return "..." + output.substr(output.find('\n', output.size() - kMost));
}

// Returns the indented lines below "Examples".
std::vector<std::string> ExamplesOf(const std::string& help) {
    std::vector<std::string> examples;
    std::istringstream lines(help.substr(std::min(help.find("\nExamples"), help.size())));
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("  ", 0) == 0) examples.push_back(line.substr(2));
    }
    return examples;
}

class Help : public InFrontOfTheSystem, public testing::WithParamInterface<const char*> {
  protected:
    // Creates what the examples need: sockets of the library, files, and real handles.
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(InFrontOfTheSystem::SetUp());
        const FinishedRun listen = Ctl({"listen", "channel_config", "video_broadcast", "--for", "1ms"});
        ASSERT_EQ(listen.exit, 0) << listen.Text();
        WriteFile(mDirectory / "request.bin", FrameBytes(kRequest, 2, R"({"type": 18, "method": 0})"));
        WriteFile(mDirectory / "damaged.bin", "damaged");
        CopyTraffic(mDirectory.Path());
        WriteFile(mDirectory / "zap.play", "tell zap {$number} -> ok ZDF HD\n");
        WriteFile(mDirectory / "names.ndjson", kRecording);
        mChannel = CurrentChannel();
        mVideoBroadcast = NewVideoBroadcast();
    }

    // Returns the command with real handles, run by the shell that it is for.
    std::string Command(std::string example) const {
        example = std::regex_replace(example, std::regex("0x1000"), mChannel);
        example = std::regex_replace(example, std::regex("0x2000"), mVideoBroadcast);
        if (example.find(" fish ") != std::string::npos) return "fish --no-config -c '" + example + "'";
        if (example.find(" zsh)") != std::string::npos) {
            return "zsh -f -c 'autoload -Uz compinit; compinit -D -u; " + example + "'";
        }
        return example;
    }

    std::string mChannel;
    std::string mVideoBroadcast;
};

TEST_P(Help, ShowsExamplesThatWork) {
    const std::vector<std::string> examples = ExamplesOf(Ctl({GetParam(), "--help"}).output);
    EXPECT_LE(2u, examples.size());
    for (const std::string& example : examples) {
        const std::string command = Command(example);
        Shell shell(mDirectory.Path());
        int code = -1;
        const std::string output = shell.Type(command, &code);
        if (code == 0) continue;
        ADD_FAILURE() << "$ " << command << "\nends with " << code << " and prints:\n"
                      << output << "\nOutput of the service:\n"
                      << EndOf(mService->Output()) << "\nOutput of the platform:\n"
                      << EndOf(mPlatform->Output());
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Help,
                         testing::Values("list", "describe", "call", "listen", "send", "emit", "play", "bench",
                                         "monitor", "record", "show", "web", "replay", "status", "log", "check",
                                         "doctor", "completion", "man"),
                         [](const auto& command) { return std::string(command.param); });

}  // namespace

}  // namespace hbbtv::test
