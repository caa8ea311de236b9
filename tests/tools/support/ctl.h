// Runs hbbtvctl as users do, with or without a running system.
#pragma once

#include <gtest/gtest.h>
#include <json/value.h>

#include <memory>
#include <string>
#include <vector>

#include "child_process.h"
#include "finished_run.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

// Runs hbbtvctl with these arguments until it exits.
FinishedRun Ctl(const std::vector<std::string>& arguments);
FinishedRun CtlWithInput(const std::vector<std::string>& arguments, const std::string& input);

// Runs it as a user whom file modes restrict: root becomes nobody.
FinishedRun CtlWithoutPrivileges(const std::vector<std::string>& arguments);

// Parses one document per line; any other line fails the test.
std::vector<Json::Value> Documents(const std::string& output);

// Returns the only document of a successful run.
Json::Value Document(const FinishedRun& run);

// A running hbbtvctl.
class CtlProcess : public ChildProcess {
  public:
    explicit CtlProcess(const std::vector<std::string>& arguments);
};

// hbbtvctl listen. Its events are the complete lines that begin with `{`.
class Listener : public CtlProcess {
  public:
    explicit Listener(std::vector<std::string> arguments);

    bool Listens() const { return WaitForOutput("hbbtvctl: listening; press Ctrl-C to stop\n"); }
    std::vector<Json::Value> Events() const;
    bool WaitForEvents(size_t count) const;
};

// Returns the names of the files in protocol/, without ".json".
std::vector<std::string> FamiliesOfProtocolFiles();

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& text);

// A scratch directory without a running system.
class Alone : public testing::Test {
  protected:
    ScratchDirectory mDirectory;
};

// A platform and the service, ready for calls.
class InFrontOfTheSystem : public Alone {
  protected:
    void SetUp() override;

    // Starts the simulated platform.
    virtual void StartPlatform();

    // Return handles: the current channel, and a new video/broadcast object.
    std::string CurrentChannel() const;
    std::string NewVideoBroadcast() const;

    std::unique_ptr<SimulatedPlatform> mPlatform;
    std::unique_ptr<ServiceProcess> mService;
};

// A platform in Python, which shares no code with the tools: see traffic/platform_in_python.py.
class PlatformInPython : public ChildProcess {
  public:
    PlatformInPython() : ChildProcess({"python3", HBBTV_SOURCE_DIR "/tests/tools/traffic/platform_in_python.py"}) {}

    bool Ready() { return WaitForOutput("ready\n"); }
};

}  // namespace hbbtv::test
