// Runs the plays of tests/e2e/plays, each with its own service and simulated platform. A line "# platform: OPTIONS"
// says how the platform is started: {plays} is the folder of the plays, {directory} that of the test. For
// NAME.again.play the platform is killed and started again; it gets the values that NAME.play prints as NAME=VALUE.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "common/text/json.h"
#include "finished_run.h"
#include "package/description.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

const std::string kPlays = std::string(HBBTV_SOURCE_DIR) + "/tests/e2e/plays";

std::vector<std::string> NamesOfPlays() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(kPlays)) {
        const std::string name = entry.path().stem();
        if (entry.path().extension() == ".play" && name.find('.') == std::string::npos) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

std::string ContentOf(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

class Stage : public testing::Test {
  protected:
    void Start(const std::string& name) {
        std::vector<std::string> options;
        std::ifstream file(kPlays + "/" + name + ".play");
        for (std::string line; std::getline(file, line);) {
            std::istringstream words(line);
            std::string sign;
            std::string key;
            if (!(words >> sign >> key) || sign != "#" || key != "platform:") continue;
            for (std::string word; words >> word;) options.push_back(Filled(word));
        }
        mPlatform = std::make_unique<SimulatedPlatform>(options);
        ASSERT_TRUE(mPlatform->Ready()) << mPlatform->Output();
        // The service registers it last.
        ASSERT_NE(FindVideoBroadcast(), nullptr) << mService.Output();
    }

    FinishedRun Play(const std::string& name, const std::vector<std::string>& options = {}) {
        std::vector<std::string> command{HBBTVCTL_PROGRAM, "play", kPlays + "/" + name + ".play", "--timeout", "30s"};
        command.insert(command.end(), options.begin(), options.end());
        const FinishedRun run = RunToEnd(command);
        const std::string trace = mPlatform->Output();
        EXPECT_EQ(run.exit, 0) << run.Text() << "the end of the platform's output:\n"
                               << trace.substr(trace.size() - std::min<size_t>(trace.size(), 4000));
        return run;
    }

    ScratchDirectory mDirectory;
    std::unique_ptr<SimulatedPlatform> mPlatform;
    ServiceProcess mService;

  private:
    std::string Filled(std::string word) const {
        for (const auto& [name, value] : {std::pair("{plays}", kPlays), std::pair("{directory}", mDirectory.Path())}) {
            const size_t at = word.find(name);
            if (at != std::string::npos) word.replace(at, std::string(name).size(), value);
        }
        return word;
    }
};

class Plays : public Stage, public testing::WithParamInterface<std::string> {};

TEST_P(Plays, Hold) {
    Start(GetParam());
    const FinishedRun run = Play(GetParam());
    if (HasFailure() || !std::filesystem::exists(kPlays + "/" + GetParam() + ".again.play")) return;
    mPlatform->Kill();
    Start(GetParam());
    std::vector<std::string> options;
    for (const std::string& line : Lines(run.output)) options.insert(options.end(), {"--set", line});
    Play(GetParam() + ".again", options);
}

INSTANTIATE_TEST_SUITE_P(All, Plays, testing::ValuesIn(NamesOfPlays()), [](const auto& name) { return name.param; });

TEST_F(Stage, AReceivedFileHasTheContentOfTheCarousel) {
    Start("carousel");
    RunToEnd({HBBTVCTL_PROGRAM, "call", "IDsmcc.OnRequestFile", "dvb://1.3fb.283d.17/index.html", "0xabc"});
    const std::string sent = ContentOf(kPlays + "/television/carousel/index.html");
    EXPECT_NE(sent, "");
    EXPECT_TRUE(WaitFor([&] { return ContentOf(mDirectory / "hbbtv_sim_carousel/1/index.html") == sent; }));
}

class WholePackage : public Stage {
  protected:
    static constexpr size_t kTimeLength = 12;  // "17:04:05.311"

    // The operations of the requests in the platform's trace, which names all operations with the same code: "TIME >
    // OnTabShow/OnLoadingStateChanged tabid=7 | ...".
    std::map<std::string, int> Requests() const {
        std::map<std::string, int> requests;
        for (const std::string& line : Lines(mPlatform->Output())) {
            if (line.find(" > ") != kTimeLength) continue;
            const size_t begin = kTimeLength + 3;
            std::istringstream names(line.substr(begin, line.find(' ', begin) - begin));
            for (std::string name; std::getline(names, name, '/');) ++requests[name];
        }
        return requests;
    }
};

// Returns the operation that the method sends; empty if it does not send any.
std::string OperationOf(const std::string& name) {
    const auto [interface, method] = Package::Get().FindMethod(name);
    const Json::Value* operation = Package::Get().FamilyOf(*interface)->OperationOf(method->name);
    return operation == nullptr ? "" : (*operation)["name"].asString();
}

TEST_F(WholePackage, EveryMethodGoesToThePlatformAndBack) {
    Start("every_method");
    const std::vector<std::string> lines = Lines(Play("every_method", {"--json", "--coverage"}).output);
    std::map<std::string, int> calls;
    for (const std::string& line : lines) {
        const Json::Value step = ParseJson(line);
        if (!step.isMember("results")) continue;
        const std::string operation = OperationOf(step["method"].asString());
        if (!operation.empty()) calls[operation] += step["attempts"].asInt();
    }
    for (const auto& [operation, count] : calls) {
        EXPECT_TRUE(WaitFor([&, name = operation, least = count] { return Requests()[name] >= least; })) << operation;
    }
    const Json::Value methods = ParseJson(lines.back())["methods"];
    EXPECT_EQ(methods["all"], 277);
    EXPECT_TRUE(methods["missing"].empty()) << WriteJson(methods["missing"]);
}

TEST_F(WholePackage, EveryEventReachesTheClientItIsFor) {
    Start("every_event");
    const std::vector<std::string> lines = Lines(Play("every_event", {"--json", "--coverage"}).output);
    const Json::Value events = ParseJson(lines.back())["events"];
    EXPECT_EQ(events["all"], 65);
    EXPECT_TRUE(events["missing"].empty()) << WriteJson(events["missing"]);
}

}  // namespace

}  // namespace hbbtv::test
