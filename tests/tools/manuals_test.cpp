// Manual pages and completion scripts: built, free of warnings from man and groff, and installed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;

const std::vector<std::string> kCommands{"bench",  "call",   "check", "completion", "describe", "doctor", "emit",
                                         "list",   "listen", "log",   "man",        "monitor",  "play",   "record",
                                         "replay", "send",   "show",  "status",     "web"};

std::set<std::string> NamesIn(const std::string& directory) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) names.insert(entry.path().filename());
    return names;
}

std::set<std::string> Pages() {
    std::set<std::string> pages{"hbbtvctl.1"};
    for (const std::string& command : kCommands) pages.insert("hbbtvctl-" + command + ".1");
    return pages;
}

TEST(Manuals, ExistForTheProgramAndEachCommand) {
    EXPECT_EQ(NamesIn(HBBTVCTL_MANUALS), Pages());
}

TEST(Manuals, HaveNoWarningsOfManAndGroff) {
    ScratchDirectory directory;
    for (const std::string& page : Pages()) {
        const std::string path = std::string(HBBTVCTL_MANUALS) + "/" + page;
        const FinishedRun man =
            RunToEnd({"man", "--warnings", "-l", path}, std::nullopt, {"LC_ALL=C.UTF-8", "MANWIDTH=80"});
        EXPECT_EQ(man.exit, 0);
        EXPECT_EQ(man.errors, "") << page;
        EXPECT_THAT(man.output, HasSubstr("SYNOPSIS\n")) << page;
        const FinishedRun groff = RunToEnd({"groff", "-ww", "-man", "-Tutf8", path});
        EXPECT_EQ(groff.exit, 0);
        EXPECT_EQ(groff.errors, "") << page;
    }
    // Check that man reports errors at all.
    WriteFile(directory / "wrong.1", ".TH X 1\n.SH NAME\nx \\- y\n.nosuchrequest\n");
    EXPECT_NE(RunToEnd({"groff", "-ww", "-man", "-Tutf8", directory / "wrong.1"}).errors, "");
}

TEST(Manuals, HaveTheContentOfHelp) {
    ScratchDirectory directory;
    for (const std::string& command : kCommands) {
        const std::string help = Ctl({command, "--help"}).output;
        const std::string page = ReadFile(std::string(HBBTVCTL_MANUALS) + "/hbbtvctl-" + command + ".1");
        EXPECT_EQ(page, Ctl({"man", command}).output);
        const std::string completions = Ctl({"complete", "--", command, "--"}).output;
        const std::regex option("  (?:-h,)?(--[a-z-]+) ");
        size_t count = 0;
        for (std::sregex_iterator it(help.begin(), help.end(), option), end; it != end; ++it, ++count) {
            const std::string name = (*it)[1];
            EXPECT_THAT(page, HasSubstr(std::regex_replace(name, std::regex("-"), "\\-"))) << command;
            EXPECT_THAT(completions, HasSubstr(name + "\t")) << command;
        }
        EXPECT_LE(1u, count) << help;
        EXPECT_THAT(help, testing::Not(HasSubstr("\n\n\n")));
        EXPECT_THAT(help, testing::Not(HasSubstr("SUBCOMMAND")));
    }
    EXPECT_THAT(Ctl({"call", "--help"}).output,
                HasSubstr("  --timeout TIME          Maximum time to wait for the reply (default: 10s)\n"));
}

TEST(Manuals, AreInstalledWhereTheyBelong) {
    ScratchDirectory directory;
    const FinishedRun run = RunToEnd(
        {HBBTV_CMAKE, "--install", std::string(HBBTV_BUILD_DIR) + "/tools/hbbtvctl", "--prefix", directory / "usr"});
    ASSERT_EQ(run.exit, 0) << run.Text();
    EXPECT_EQ(NamesIn(directory / "usr/share/man/man1"), Pages());
    EXPECT_EQ(NamesIn(directory / "usr/bin"), std::set<std::string>{"hbbtvctl"});
    for (const auto& [shell, path] : {std::pair("bash", "usr/share/bash-completion/completions/hbbtvctl"),
                                      std::pair("zsh", "usr/share/zsh/site-functions/_hbbtvctl"),
                                      std::pair("fish", "usr/share/fish/vendor_completions.d/hbbtvctl.fish")}) {
        EXPECT_EQ(Ctl({"completion", shell}).output, ReadFile(directory / path));
    }
}

}  // namespace

}  // namespace hbbtv::test
