// A second service in the directories of a running one: it must not take the names and sockets of the first.

#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include "every_family.h"
#include "finished_run.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

class SecondService : public testing::Test {
  protected:
    void SetUp() override { ASSERT_NE(FindVideoBroadcast(), nullptr); }

    FinishedRun StartSecond(const std::vector<std::string>& environment = {}) const {
        std::vector<std::string> all = {std::string("HIDL_HOST_PASSTHROUGH_PATH=") + HBBTV_LIBRARIES};
        all.insert(all.end(), environment.begin(), environment.end());
        return RunToEnd({HBBTV_SERVICE_PROGRAM}, std::nullopt, all);
    }

    // In one sentence, with the process of the first one.
    void ExpectRefused(const FinishedRun& run, const std::string& directory, const std::string& variable) const {
        const std::string sentence = "process " + std::to_string(mFirst->Pid()) + " serves the directory \"" +
                                     directory + "\" already; end it or set " + variable + " to another directory\n";
        EXPECT_EQ(run.exit, 3) << run.Text();
        EXPECT_NE(run.errors.find(sentence), std::string::npos) << run.Text();
        EXPECT_EQ(run.output, "");
    }

    const ScratchDirectory mDirectory;
    const EveryFamily mPlatform;
    std::unique_ptr<ServiceProcess> mFirst = std::make_unique<ServiceProcess>();
};

TEST_F(SecondService, IsRefusedAndTheFirstKeepsAnswering) {
    ExpectRefused(StartSecond(), mDirectory.Path(), "TMPDIR");
    EXPECT_EQ(EveryFamily::Unanswered(), "");
    EXPECT_FALSE(mFirst->WaitForExit(std::chrono::milliseconds(0)).has_value());
}

TEST_F(SecondService, IsRefusedInTheDirectoryOfTheNamesToo) {
    const std::string names = mDirectory / "hidl";
    const std::string other = mDirectory / "other";
    std::filesystem::create_directory(other);
    ExpectRefused(StartSecond({"TMPDIR=" + other, "HIDL_HOST_DIR=" + names}), names, "HIDL_HOST_DIR");
    EXPECT_EQ(EveryFamily::Unanswered(), "");
}

TEST_F(SecondService, IsRefusedWhenTheFirstHasStopped) {
    mFirst->Signal(SIGSTOP);
    ExpectRefused(StartSecond(), mDirectory.Path(), "TMPDIR");
    mFirst->Signal(SIGCONT);
}

TEST_F(SecondService, IsNotHinderedByTheFilesOfAKilledOne) {
    EXPECT_EQ(EveryFamily::Unanswered(), "");
    mFirst->Kill();
    mFirst = std::make_unique<ServiceProcess>();
    ASSERT_NE(FindVideoBroadcast(), nullptr) << mFirst->Output();
    EXPECT_EQ(EveryFamily::Unanswered(), "");
}

}  // namespace

}  // namespace hbbtv::test
