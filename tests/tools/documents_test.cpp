// The documents and --help show what happens: every example in them is run.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <sstream>

#include "console_blocks.h"
#include "ctl.h"

namespace hbbtv::test {

namespace {

std::string DirectoryOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

// One shell in the test's directory, as the reader's: what is typed comes on its standard input.
class Shell : public ChildProcess {
  public:
    explicit Shell(const std::string& directory)
        : ChildProcess({"bash", "--norc", "--noprofile"},
                       {"PATH=" + DirectoryOf(HBBTVCTL_PROGRAM) + ":" + std::getenv("PATH"), "TMPDIR=" + directory,
                        "MANWIDTH=80", "LC_ALL=C.UTF-8"}) {
        Write("cd '" + directory + "'\n");
    }

    // What the command wrote, and its exit code. One that ends with "&" is given until it listens.
    std::string Type(const std::string& command, int* code = nullptr) {
        const size_t before = Output().size();
        if (!command.empty() && command.back() == '&') {
            Write(command + "\n");
            EXPECT_TRUE(
                WaitFor([&] { return Output().find("listening, Ctrl-C ends\n", before) != std::string::npos; }));
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

class Documents : public InFrontOfTheSystem {
  protected:
    void RunExamplesOf(const std::string& markdown, size_t atLeast) {
        Shell shell(mDirectory.Path());
        ExampleComparison comparison(mDirectory.Path());
        const std::vector<Example> examples = ConsoleExamples(markdown);
        ASSERT_LE(atLeast, examples.size());
        for (const Example& example : examples) {
            EXPECT_EQ("", comparison.Difference(example, shell.Type(comparison.Command(example))));
        }
    }
};

TEST_F(Documents, OfHbbtvctlShowWhatHappens) {
    RunExamplesOf(ReadFile(std::string(HBBTV_SOURCE_DIR) + "/docs/hbbtvctl.md"), 25);
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
        EXPECT_THAT(document, testing::HasSubstr("\n## " + (*it)[1].str())) << "a section of its own";
    }
    EXPECT_EQ(10u, count) << help;
    for (int code = 0; code <= 6; ++code) {
        EXPECT_THAT(document, testing::HasSubstr("\n| " + std::to_string(code) + " | "));
        EXPECT_THAT(help, testing::HasSubstr("\n  " + std::to_string(code) + "  "));
    }
}

class Footers : public InFrontOfTheSystem {
  protected:
    // The indented lines below "Examples".
    static std::vector<std::string> ExamplesOf(const std::string& help) {
        std::vector<std::string> examples;
        std::istringstream lines(help.substr(std::min(help.find("\nExamples"), help.size())));
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("  ", 0) == 0) examples.push_back(line.substr(2));
        }
        return examples;
    }
};

TEST_F(Footers, OfHelpShowWhatWorks) {
    ASSERT_EQ(0, Ctl({"listen", "channel_config", "video_broadcast", "--for", "1ms"}).exit);
    WriteFile(mDirectory / "request.bin", FrameBytes(kRequest, 2, R"({"type": 18, "method": 0})"));
    WriteFile(mDirectory / "damaged.bin", "damaged");
    const std::string channel = CurrentChannel();
    const std::string vb = NewVideoBroadcast();
    for (const char* command :
         {"list", "describe", "call", "listen", "send", "emit", "bench", "doctor", "completion", "man"}) {
        const std::vector<std::string> examples = ExamplesOf(Ctl({command, "--help"}).output);
        EXPECT_LE(2u, examples.size()) << command;
        for (std::string example : examples) {
            example = std::regex_replace(example, std::regex("0x1000"), channel);
            example = std::regex_replace(example, std::regex("0x2000"), vb);
            if (example.find(" fish ") != std::string::npos) example = "fish --no-config -c '" + example + "'";
            if (example.find(" zsh)") != std::string::npos) {
                example = "zsh -f -c 'autoload -Uz compinit; compinit -D; " + example + "'";
            }
            Shell shell(mDirectory.Path());
            int code = -1;
            const std::string output = shell.Type(example, &code);
            EXPECT_EQ(0, code) << "$ " << example << "\n" << output;
        }
    }
}

}  // namespace

}  // namespace hbbtv::test
