// The command line that the page shows for a message sends the same message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "child_process.h"
#include "common/text/json.h"
#include "finished_run.h"
#include "page_in_chromium.h"
#include "recording_page.h"
#include "sample_records.h"
#include "scratch_directory.h"
#include "values.h"
#include "wire/endpoint.h"
#include "wire/message.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using traffic::Record;
using traffic::test::Exchange;

// Runs a line in a shell that finds hbbtvctl.
FinishedRun RunLine(const std::string& line) {
    const std::string program = HBBTVCTL_PROGRAM;
    return RunToEnd({"/bin/sh", "-c", "PATH=" + program.substr(0, program.rfind('/')) + ":$PATH; " + line});
}

class CopiedCommand : public testing::Test {
  protected:
    // Adds a message of the family. `reply`: it wants one.
    void Add(const WireFamily& family, const Json::Value& message, bool event, bool reply) {
        const Endpoint endpoint = event ? EventsOf(family) : RequestsOf(family);
        records.push_back(Exchange(endpoint.socket, WriteJson(message), reply ? R"({"ret":0})" : ""));
        records.back().number = records.size();
        EXPECT_FALSE(records.back().operation.empty()) << WriteJson(message);
    }

    void AddAllOf(const WireFamily& family) {
        for (const Json::Value& operation : family.protocol["operations"]) {
            const Json::Value values = ValuesFor(operation["request"], 1, kAllBools);
            Add(family, MakeRequest(family, operation, values), false, operation["form"] != "one-way");
        }
        for (const Json::Value& event : family.protocol["events"]) {
            const Json::Value values = ValuesFor(EventMembers(family, event), 1, kAllBools);
            Add(family, MakeEvent(family, event, values), true, event["forms"][0] == "request");
        }
    }

    // Returns the command of each record.
    Json::Value Commands() {
        page.Open(WritePage(directory / "traffic.html", records));
        page.Await(kAllAreShown);
        return page.Evaluate("page.store.rows.map((row) => commandLine(parseExactly(row.line), page.store.protocol))");
    }

    const ScratchDirectory directory;
    std::vector<Record> records;
    PageInChromium page;
};

// hbbtvctl prints the message before it finds that no process receives it.
TEST_F(CopiedCommand, SendsTheSameMessageForEveryOperationAndEvent) {
    for (const WireFamily& family : WireFamilies()) AddAllOf(family);
    const WireFamily& channel = FindFamily("channel");
    for (const char* text :
         {"a 'b' \"c\" $(d) `e` \\ f", "@file", "", "- x", "[1]", "{\"a\": 1}", "ä\n\t*?", "0x10", "true"}) {
        Json::Value values(Json::objectValue);
        values["c_handle"] = "0x1000";
        values["name"] = text;
        const Json::Value* const setName = channel.Operation("SetName");
        ASSERT_NE(setName, nullptr);
        Add(channel, MakeRequest(channel, *setName, values), false, true);
    }
    const Json::Value commands = Commands();
    ASSERT_EQ(commands.size(), records.size());
    for (Json::ArrayIndex i = 0; i < commands.size(); ++i) {
        const FinishedRun run = RunLine(commands[i].asString() + " --verbose");
        const size_t begin = run.errors.find("{");
        const size_t end = run.errors.rfind("}\n");
        ASSERT_NE(end, std::string::npos) << commands[i].asString() << "\n" << run.Text();
        EXPECT_EQ(WriteJson(ParseJson(run.errors.substr(begin, end + 1 - begin))), WriteJson(records[i].message.json))
            << commands[i].asString();
    }
}

TEST_F(CopiedCommand, IsInTheClipboardAndRunsAgainstASimulator) {
    ChildProcess simulator({HBBTV_SIM_PROGRAM, "--directory", directory.Path(), "--seed", "1"});
    ASSERT_TRUE(simulator.WaitForOutput("ready"));
    const WireFamily& family = FindFamily("channel_config");
    Add(family, MakeRequest(family, *family.Operation("GetCurrentChannel"), Json::objectValue), false, true);
    Commands();
    page.AllowClipboard();
    page.Press("j");
    page.Press("c", "c");
    page.Await("byId('notice').textContent === 'Copied'");
    const std::string line = page.Text("navigator.clipboard.readText()");
    EXPECT_EQ(line, "hbbtvctl send channel_config.GetCurrentChannel");
    const FinishedRun run = RunLine(line);
    EXPECT_EQ(run.exit, 0) << run.Text();
    EXPECT_THAT(run.output, HasSubstr("ret     0"));
}

}  // namespace

}  // namespace hbbtv::test
