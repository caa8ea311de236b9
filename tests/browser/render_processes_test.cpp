// The processes of pages, with a Chromium that the test plays.
#include "chromium/render_processes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace hbbtv::browser {

namespace {

// Answers the commands of traces, and remembers them.
struct Chromium {
    RenderProcesses processes{[this](const std::string& page, const std::string& method, const Json::Value&,
                                     const devtools::DevTools::OnAnswer& onAnswer) {
        commands.push_back(method + " " + page);
        onAnswer({});
    }};
    std::vector<std::string> commands;
    std::vector<std::string> found;

    void Ask(const std::string& page) {
        processes.Get(page, [this, page](int process) { found.push_back(page + " " + std::to_string(process)); });
    }

    void ReportProcess(const std::string& page, int process) {
        Json::Value frame;
        frame["frame"] = page;
        frame["processId"] = process;
        Json::Value event;
        event["name"] = "TracingStartedInBrowser";
        event["args"]["data"]["frames"].append(frame);
        Json::Value params;
        params["value"].append(event);
        processes.Take("Tracing.dataCollected", params);
        processes.Take("Tracing.tracingComplete", Json::Value());
    }
};

using Texts = std::vector<std::string>;

}  // namespace

TEST(RenderProcesses, AreAskedForOneAfterTheOther) {
    Chromium chromium;
    chromium.Ask("a");
    chromium.Ask("b");
    EXPECT_EQ(chromium.commands, (Texts{"Tracing.start a", "Tracing.end a"}));
    chromium.ReportProcess("a", 7);
    chromium.ReportProcess("b", 8);
    EXPECT_EQ(chromium.found, (Texts{"a 7", "b 8"}));
}

// Whose trace has no end.
TEST(RenderProcesses, OfAPageThatGoesAreNotWaitedFor) {
    Chromium chromium;
    chromium.Ask("a");
    chromium.Ask("b");
    chromium.Ask("a");
    chromium.processes.Gone("a");
    EXPECT_EQ(chromium.found, (Texts{"a 0", "a 0"}));
    chromium.ReportProcess("b", 8);
    EXPECT_EQ(chromium.found.back(), "b 8");
    EXPECT_EQ(chromium.commands, (Texts{"Tracing.start a", "Tracing.end a", "Tracing.start b", "Tracing.end b"}));
}

}  // namespace hbbtv::browser
