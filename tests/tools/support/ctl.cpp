#include "ctl.h"

#include <json/reader.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace hbbtv::test {

namespace {

std::vector<std::string> Command(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{HBBTVCTL_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

Json::Value Parse(const std::string& text) {
    Json::CharReaderBuilder builder;
    std::istringstream stream(text);
    Json::Value value;
    std::string errors;
    EXPECT_TRUE(Json::parseFromStream(builder, stream, &value, &errors)) << errors << text;
    return value;
}

std::string Hexadecimal(const Json::Value& handle) {
    std::ostringstream text;
    text << "0x" << std::hex << handle.asInt64();
    return text.str();
}

}  // namespace

FinishedRun Ctl(const std::vector<std::string>& arguments) {
    return RunToEnd(Command(arguments));
}

FinishedRun CtlWithInput(const std::vector<std::string>& arguments, const std::string& input) {
    return RunToEnd(Command(arguments), input);
}

FinishedRun CtlWithoutPrivileges(const std::vector<std::string>& arguments) {
    std::vector<std::string> command = Command(arguments);
    if (geteuid() == 0) command.insert(command.begin(), {"setpriv", "--reuid=65534", "--clear-groups"});
    return RunToEnd(command);
}

std::vector<Json::Value> Documents(const std::string& output) {
    std::vector<Json::Value> documents;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) documents.push_back(Parse(line));
    return documents;
}

Json::Value Document(const FinishedRun& run) {
    const std::vector<Json::Value> documents = Documents(run.output);
    EXPECT_EQ(run.exit, 0) << run.Text();
    EXPECT_EQ(documents.size(), 1u) << run.Text();
    return documents.empty() ? Json::Value() : documents[0];
}

CtlProcess::CtlProcess(const std::vector<std::string>& arguments) : ChildProcess(Command(arguments)) {}

Listener::Listener(std::vector<std::string> arguments)
    : CtlProcess((arguments.insert(arguments.begin(), "listen"), arguments.push_back("--json"), arguments)) {}

std::vector<Json::Value> Listener::Events() const {
    std::vector<Json::Value> events;
    const std::string output = Output();
    std::istringstream lines(output.substr(0, output.rfind('\n') + 1));
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("{", 0) == 0) events.push_back(Parse(line));
    }
    return events;
}

bool Listener::WaitForEvents(size_t count) const {
    return WaitFor([&] { return Events().size() >= count; });
}

std::vector<std::string> FamiliesOfProtocolFiles() {
    std::vector<std::string> families;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(HBBTV_SOURCE_DIR) + "/protocol")) {
        if (entry.path().extension() == ".json") families.push_back(entry.path().stem());
    }
    std::sort(families.begin(), families.end());
    return families;
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.good()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

void InFrontOfTheSystem::StartPlatform() {
    mPlatform = std::make_unique<SimulatedPlatform>(std::vector<std::string>{"--seed", "7"});
    ASSERT_TRUE(mPlatform->Ready()) << mPlatform->Output();
}

void InFrontOfTheSystem::SetUp() {
    ASSERT_NO_FATAL_FAILURE(StartPlatform());
    mService = std::make_unique<ServiceProcess>();
    // The service registers it last.
    ASSERT_NE(FindVideoBroadcast(), nullptr) << mService->Output();
}

std::string InFrontOfTheSystem::CurrentChannel() const {
    return Hexadecimal(Document(Ctl({"call", "IChannelConfig.GetCurrentChannel", "--json"}))["results"]["channel"]);
}

std::string InFrontOfTheSystem::NewVideoBroadcast() const {
    return Hexadecimal(Document(Ctl({"call", "IVideoBroadcast.Create", "1", "--json"}))["results"]["vb"]);
}

}  // namespace hbbtv::test
