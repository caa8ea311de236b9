// Chromium as a process that is commanded, killed and ended.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "common/failure.h"
#include "devtools/devtools.h"
#include "scratch_directory.h"
#include "wait_for.h"

namespace hbbtv::test {

namespace {

using devtools::Answer;
using devtools::ChromiumOptions;
using devtools::DevTools;
using devtools::kBrowserSession;
using devtools::Loop;

constexpr Milliseconds kPatienceOfLoop = kPatience;

bool IsEmpty(const std::string& directory) {
    return std::filesystem::is_empty(directory);
}

// Returns the processes whose command line contains the text.
int ProcessesWith(const std::string& text) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream file(entry.path() / "cmdline");
        std::string line;
        std::getline(file, line, '\x01');  // which takes a process that has just ended for an empty one
        count += line.find(text) != std::string::npos ? 1 : 0;
    }
    return count;
}

Json::Value Object(const char* name, const Json::Value& value) {
    Json::Value object;
    object[name] = value;
    return object;
}

// Opens a page and returns its session.
std::string OpenPage(DevTools& chromium, const std::string& url) {
    const Json::Value target = chromium.Command(kBrowserSession, "Target.createTarget", Object("url", url));
    Json::Value attach = Object("targetId", target["targetId"]);
    attach["flatten"] = true;
    return chromium.Command(kBrowserSession, "Target.attachToTarget", attach)["sessionId"].asString();
}

Json::Value Evaluate(DevTools& chromium, const std::string& session, const std::string& expression) {
    return chromium.Command(session, "Runtime.evaluate", Object("expression", expression))["result"]["value"];
}

}  // namespace

TEST(DevTools, SendsCommandsToTheBrowserAndToEachPage) {
    const ScratchDirectory directory;
    Loop loop;
    DevTools chromium(loop, {});
    const std::string product = chromium.Command(kBrowserSession, "Browser.getVersion")["product"].asString();
    EXPECT_NE(product.find("Chrome/"), std::string::npos) << product;
    const std::string one = OpenPage(chromium, "about:blank");
    const std::string two = OpenPage(chromium, "about:blank");
    Evaluate(chromium, one, "name = 'One'");
    Evaluate(chromium, two, "name = 'Two'");
    EXPECT_EQ(Evaluate(chromium, one, "name"), "One");
    EXPECT_EQ(Evaluate(chromium, two, "name"), "Two");
}

TEST(DevTools, PassesAMessageOfMegabytesBothWays) {
    const ScratchDirectory directory;
    Loop loop;
    DevTools chromium(loop, {});
    const std::string page = OpenPage(chromium, "about:blank");
    const std::string text(3 << 20, 'x');
    EXPECT_EQ(Evaluate(chromium, page, "'" + text + "' + 'y'"), text + "y");
}

TEST(DevTools, PassesEventsWithTheSessionOfTheirPage) {
    const ScratchDirectory directory;
    Loop loop;
    DevTools chromium(loop, {});
    const std::string page = OpenPage(chromium, "about:blank");
    std::vector<std::string> lines;
    chromium.SetHandlers(
        [&](const std::string& session, const std::string& method, const Json::Value& params) {
            if (method == "Runtime.consoleAPICalled") lines.push_back(session + params["args"][0]["value"].asString());
        },
        nullptr);
    chromium.Command(page, "Runtime.enable");
    Evaluate(chromium, page, "console.log('a'), console.log('b')");
    EXPECT_TRUE(loop.RunUntil([&] { return lines.size() == 2; }, kPatienceOfLoop));
    EXPECT_EQ(lines, (std::vector<std::string>{page + "a", page + "b"}));
}

TEST(DevTools, ReportsTheErrorOfACommandAndContinues) {
    const ScratchDirectory directory;
    Loop loop;
    DevTools chromium(loop, {});
    try {
        chromium.Command(kBrowserSession, "Browser.noSuchCommand");
        ADD_FAILURE() << "no failure";
    } catch (const Failure& e) {
        EXPECT_EQ(e.Code(), kInvalidReply);
        EXPECT_NE(std::string(e.what()).find("wasn't found"), std::string::npos) << e.what();
    }
    EXPECT_FALSE(chromium.Command(kBrowserSession, "Browser.getVersion")["product"].asString().empty());
}

TEST(DevTools, GivesACommandUpAtItsLimitAndDropsItsLateAnswer) {
    const ScratchDirectory directory;
    Loop loop;
    DevTools chromium(loop, {});
    const std::string page = OpenPage(chromium, "about:blank");
    Json::Value busy = Object("expression", "for (const end = Date.now() + 300; Date.now() < end;) {}");
    int answers = 0;
    std::string error;
    chromium.Send(
        page, "Runtime.evaluate", busy,
        [&](const Answer& answer) {
            ++answers;
            error = answer.error;
        },
        Milliseconds(50));
    EXPECT_TRUE(loop.RunUntil([&] { return answers != 0; }, kPatienceOfLoop));
    EXPECT_EQ(error, "Runtime.evaluate: no answer within 50 ms");
    EXPECT_EQ(Evaluate(chromium, page, "6 * 7"), 42);
    EXPECT_EQ(answers, 1);
}

TEST(DevTools, NoticesAtOnceThatChromiumWasKilledAndAnswersOpenCommands) {
    const ScratchDirectory directory;
    Loop loop;
    DevTools chromium(loop, {});
    const std::string page = OpenPage(chromium, "about:blank");
    bool ended = false;
    chromium.SetHandlers(nullptr, [&] { ended = true; });
    std::string error;
    chromium.Send(page, "Runtime.evaluate", Object("expression", "for (;;) {}"),
                  [&](const Answer& answer) { error = answer.error; });
    kill(chromium.Pid(), SIGKILL);
    EXPECT_TRUE(loop.RunUntil([&] { return ended; }, Milliseconds(5000)));
    EXPECT_EQ(error, "Chromium has ended");
    EXPECT_FALSE(chromium.Running());
    EXPECT_THROW(chromium.Command(kBrowserSession, "Browser.getVersion"), Failure);
}

TEST(DevTools, LeaveNoFileAndNoProcessBehind) {
    const ScratchDirectory directory;
    {
        Loop loop;
        DevTools chromium(loop, {});
        chromium.Command(kBrowserSession, "Browser.getVersion");
        EXPECT_GT(ProcessesWith(directory.Path()), 0);
    }
    EXPECT_TRUE(IsEmpty(directory.Path()));
    EXPECT_TRUE(WaitFor([&] { return ProcessesWith(directory.Path()) == 0; }));
}

TEST(DevTools, LeaveNothingBehindWhenTheirProcessIsKilled) {
    const ScratchDirectory directory;
    int started[2];
    ASSERT_EQ(pipe(started), 0);
    const pid_t child = fork();
    if (child == 0) {
        Loop loop;
        DevTools chromium(loop, {});
        chromium.Command(kBrowserSession, "Browser.getVersion");
        if (write(started[1], "x", 1) != 1) _exit(1);
        pause();
        _exit(0);
    }
    close(started[1]);
    char c = 0;
    EXPECT_EQ(read(started[0], &c, 1), 1);
    close(started[0]);
    kill(child, SIGKILL);
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_TRUE(WaitFor([&] { return IsEmpty(directory.Path()); }));
    EXPECT_TRUE(WaitFor([&] { return ProcessesWith(directory.Path()) == 0; }));
}

TEST(DevTools, KeepAProfileThatIsGiven) {
    const ScratchDirectory directory;
    {
        Loop loop;
        DevTools chromium(loop, {directory / "kept", false, {}});
        chromium.Command(kBrowserSession, "Browser.getVersion");
    }
    EXPECT_TRUE(std::filesystem::exists(directory / "kept"));
}

TEST(DevTools, NameThePackageIfChromiumIsMissing) {
    const ScratchDirectory directory;
    setenv("PATH", directory.Path().c_str(), 1);
    Loop loop;
    try {
        DevTools chromium(loop, {});
        ADD_FAILURE() << "no failure";
    } catch (const Failure& e) {
        EXPECT_EQ(e.Code(), kUnavailable);
        EXPECT_STREQ(e.what(), "chromium is not installed; install the Debian package chromium");
    }
    EXPECT_TRUE(IsEmpty(directory.Path()));
}

}  // namespace hbbtv::test
