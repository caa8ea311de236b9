// The page that `hbbtvctl web` serves, in Chromium, with a simulator or another platform.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "child_process.h"
#include "common/text/json.h"
#include "finished_run.h"
#include "page_in_chromium.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// hbbtvctl web, in the test's directory.
class Server : public ChildProcess {
  public:
    explicit Server(const std::vector<std::string>& options = {}) : ChildProcess(Command(options)) {}

    // Waits for the address.
    std::string Address() const {
        EXPECT_TRUE(WaitForOutput("/\n")) << Output();
        const std::string output = Output();
        const size_t begin = output.find("http://");
        return begin == std::string::npos ? "" : output.substr(begin, output.find('\n', begin) - begin);
    }

  private:
    static std::vector<std::string> Command(const std::vector<std::string>& options) {
        std::vector<std::string> command{HBBTVCTL_PROGRAM, "web"};
        command.insert(command.end(), options.begin(), options.end());
        return command;
    }
};

class LivePage : public testing::Test {
  protected:
    // Starts a simulator and the server, and opens the page.
    void Begin() {
        simulator = std::make_unique<ChildProcess>(std::vector<std::string>{HBBTV_SIM_PROGRAM, "--seed", "1"});
        ASSERT_TRUE(simulator->WaitForOutput("ready"));
        Open();
    }

    void Open() {
        server = std::make_unique<Server>();
        address = server->Address();
        page.Open(address);
        page.Await("page.live?.connected");
    }

    // Sends a request as the library does.
    static void Ask(const std::string& operation) {
        const FinishedRun run = RunToEnd({HBBTVCTL_PROGRAM, "send", operation});
        EXPECT_EQ(run.exit, 0) << run.Text();
    }

    void AwaitShown(const std::string& operation, int count) {
        page.Await("page.view.shown.filter((row) => row.operation === '" + operation +
                   "').length === " + std::to_string(count));
    }

    const ScratchDirectory directory;
    std::unique_ptr<ChildProcess> simulator;
    std::unique_ptr<Server> server;
    std::string address;
    PageInChromium page;
};

TEST_F(LivePage, ShowsMessagesAsTheyCome) {
    ASSERT_NO_FATAL_FAILURE(Begin());
    Ask("channel_config.GetCurrentChannel");
    AwaitShown("GetCurrentChannel", 1);
    Ask("channel_config.GetCurrentChannel");
    AwaitShown("GetCurrentChannel", 2);
    page.Await(
        "[...document.querySelectorAll('.row .operation')].some((cell) => cell.textContent === 'GetCurrentChannel')");
    EXPECT_THAT(page.Text("byId('state').textContent"), HasSubstr("live"));
    EXPECT_THAT(page.Complaints(), IsEmpty());
}

TEST_F(LivePage, LosesNothingWhileItIsPaused) {
    ASSERT_NO_FATAL_FAILURE(Begin());
    Ask("channel_config.GetCurrentChannel");
    AwaitShown("GetCurrentChannel", 1);
    page.Press("p", "p");
    Ask("configuration.GetCountryId");
    page.Await("page.store.rows.some((row) => row.operation === 'GetCountryId')");
    EXPECT_EQ(page.Evaluate("page.view.shown.filter((row) => row.operation === 'GetCountryId').length"), 0);
    EXPECT_THAT(page.Text("byId('state').textContent"), HasSubstr("paused"));
    page.Press("p", "p");
    AwaitShown("GetCountryId", 1);
}

TEST_F(LivePage, ShowsWhatHappenedBeforeItWasOpened) {
    ASSERT_NO_FATAL_FAILURE(Begin());
    Ask("channel_config.GetCurrentChannel");
    AwaitShown("GetCurrentChannel", 1);
    page.Open("about:blank", false);
    page.Open(address);
    AwaitShown("GetCurrentChannel", 1);
}

TEST_F(LivePage, ShowsTheTelevisionAndControlsTheSimulator) {
    ASSERT_NO_FATAL_FAILURE(Begin());
    page.Press("4", "4");
    page.Await("document.querySelector('.channel').textContent === 'Das Erste HD'");
    page.Await("[...document.querySelectorAll('.card dd')].some((value) => value.textContent === 'DEU')");
    page.Evaluate("document.querySelector('#remote [title=\"zap next\"]').click()");
    page.Await("document.querySelector('.channel').textContent === 'ZDF HD'");
    page.Evaluate("byId('command-line').focus()");
    for (const char* letter : {"a", "p", "p", "s"}) page.Press(letter, letter);
    page.Press("Enter", "\r");
    page.Await("byId('answers').firstChild.textContent === 'apps ok screen 1920x1080'");
    EXPECT_THAT(page.Complaints(), IsEmpty());
}

TEST_F(LivePage, ShowsAPlatformThatIsNotTheSimulator) {
    simulator = std::make_unique<ChildProcess>(
        std::vector<std::string>{"python3", HBBTV_SOURCE_DIR "/examples/platform/platform.py", directory.Path()});
    ASSERT_TRUE(simulator->WaitForOutput("ready"));
    ASSERT_NO_FATAL_FAILURE(Open());
    page.Press("4", "4");
    page.Await("!page.television.asking && /^(?!unknown)/.test(document.querySelector('.channel').textContent)");
    EXPECT_FALSE(page.Evaluate("document.querySelector('.remote-side').checkVisibility()").asBool());
    // Families that this platform does not have.
    EXPECT_THAT(page.Text("document.querySelector('.card.wide').textContent"), HasSubstr("service_"));
    EXPECT_THAT(page.Complaints(), IsEmpty());
}

TEST_F(LivePage, ReportsThatTheServerHasGoneAndLeavesTheSocketsAsTheyWere) {
    ASSERT_NO_FATAL_FAILURE(Begin());
    server->Signal(SIGINT);
    EXPECT_EQ(server->WaitForExit(), 0) << server->Output();
    page.Await("byId('state').textContent.startsWith('disconnected')");
    Ask("channel_config.GetCurrentChannel");
    const FinishedRun list = RunToEnd({HBBTVCTL_PROGRAM, "list", "--json"});
    EXPECT_THAT(list.output, HasSubstr("hbbtv-sim"));
    EXPECT_THAT(list.output, Not(HasSubstr("\"process\":\"hbbtvctl")));
}

// The current channel, as the platform answers.
std::string CurrentChannel() {
    return RunToEnd({HBBTVCTL_PROGRAM, "send", "channel_config.GetCurrentChannel"}).output;
}

TEST_F(LivePage, IsClosedToOtherPages) {
    ASSERT_NO_FATAL_FAILURE(Begin());
    const std::string channel = CurrentChannel();
    // A page of another port of this machine is another origin, but of the same site.
    ChildProcess other({"python3", "-u", "-m", "http.server", "--bind", "127.0.0.1", "0"});
    ASSERT_TRUE(other.WaitForOutput("/) ..."));
    const std::string output = other.Output();
    const size_t begin = output.find("http://127.0.0.1:");
    page.Open(output.substr(begin, output.find("/)") + 1 - begin), false);
    EXPECT_EQ(page.Text("fetch(" + WriteJson(address) + ").then(() => 'read', () => 'refused')"), "refused");
    page.Evaluate("fetch(" + WriteJson(address + "simulator") +
                  ", {method: 'POST', mode: 'no-cors', body: '{\"command\":\"zap next\"}'}).then(() => 1, () => 0)");
    EXPECT_EQ(CurrentChannel(), channel);
    page.Evaluate(
        "new Promise((resolve) => { const frame = document.createElement('iframe'); frame.onload = resolve; frame.src "
        "= " +
        WriteJson(address) + "; document.body.append(frame); }).then(() => 1)");
    EXPECT_EQ(page.Text("(() => { try { return typeof frames[0].page; } catch { return 'refused'; } })()"), "refused");
    // The page itself may, which shows that the command was right.
    page.Open(address);
    page.Evaluate("page.television.command('zap next')");
    EXPECT_NE(CurrentChannel(), channel);
}

}  // namespace

}  // namespace hbbtv::test
