// The pictures of docs/live-page.md, made from a run of the demo: scripts/screenshots keeps them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "child_process.h"
#include "finished_run.h"
#include "page_in_chromium.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

// Pictures stay in the history of the repository, so they must be small.
constexpr uintmax_t kLargest = 200000;

// Starts platform, page and service, and plays the demo.
class Screenshots : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(simulator.WaitForOutput("ready"));
        server = std::make_unique<ChildProcess>(std::vector<std::string>{HBBTVCTL_PROGRAM, "web"});
        ASSERT_TRUE(server->WaitForOutput("/\n"));
        service = std::make_unique<ChildProcess>(
            std::vector<std::string>{HBBTV_SERVICE_PROGRAM},
            std::vector<std::string>{std::string("HIDL_HOST_PASSTHROUGH_PATH=") + HBBTV_LIBRARIES});
        const std::string address = server->Output();
        page.Open(address.substr(address.find("http://"), address.rfind('\n') - address.find("http://")));
        // The library serves the sockets of events from the first use on, and the relay takes them then.
        const FinishedRun listen =
            RunToEnd({HBBTVCTL_PROGRAM, "listen", "video_broadcast", "channel_config", "mtm", "--for", "500ms"});
        ASSERT_EQ(listen.exit, 0) << listen.Text();
        const FinishedRun demo = RunToEnd({HBBTVCTL_PROGRAM, "play", HBBTV_SOURCE_DIR "/tools/demo/demo.play"});
        ASSERT_EQ(demo.exit, 0) << demo.Text();
    }

    // Takes a picture once the page has drawn.
    void Take(const std::string& name) {
        page.Evaluate("new Promise((resolve) => setTimeout(() => requestAnimationFrame(() => resolve(1)), 400))");
        const char* kept = std::getenv("HBBTV_SCREENSHOTS");
        const std::string file = (kept == nullptr ? directory.Path() : std::string(kept)) + "/" + name;
        page.Screenshot(file);
        EXPECT_GT(std::filesystem::file_size(file), 10000u) << name;
        EXPECT_LT(std::filesystem::file_size(file), kLargest) << name;
    }

    const ScratchDirectory directory;
    ChildProcess simulator{std::vector<std::string>{HBBTV_SIM_PROGRAM, "--seed", "1"}};
    std::unique_ptr<ChildProcess> server;
    std::unique_ptr<ChildProcess> service;
    PageInChromium page{1180, 720};
};

TEST_F(Screenshots, ShowEachViewOfADemo) {
    page.Evaluate("byId('origin').textContent = '/tmp/tv, hbbtvctl 1.0.0'");
    page.Evaluate(
        "page.list.follow = false, page.select(page.view.shown.find((row) => row.operation === 'SetChannel'))");
    Take("messages.png");
    page.Evaluate("page.filterBy('op:SetChannel | op:TOLM_VB_EVENT* | family:mtm & event')");
    page.Evaluate("page.show('ladder'), byId('view-ladder').scrollTop = 0");
    Take("ladder.png");
    page.Evaluate("page.filterBy(''), page.show('television')");
    page.Await("!page.television.asking");
    Take("television.png");
    page.PreferTheme("dark");
    page.Evaluate("page.show('statistics')");
    Take("statistics.png");
    EXPECT_TRUE(page.Complaints().empty());
}

}  // namespace

}  // namespace hbbtv::test
