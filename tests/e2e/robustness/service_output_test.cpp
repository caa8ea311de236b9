// The service when its output is not read: its families keep answering.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "every_family.h"
#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using android::sp;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;

constexpr char kCounted[] = "lines of output dropped, as they were not read in time: ";

// A pipe with a name, whose reader the test is.
class Pipe {
  public:
    explicit Pipe(const std::string& path) : mPath(path) {
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        Open();
        EXPECT_GT(fcntl(mFd, F_SETPIPE_SZ, 16384), 0);
    }
    ~Pipe() { Close(); }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void Open() { mFd = open(mPath.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); }
    void Close() { close(mFd); }

    // Returns everything that has been read so far.
    const std::string& Read() {
        char bytes[4096];
        for (ssize_t n; (n = read(mFd, bytes, sizeof(bytes))) > 0;) mText.append(bytes, static_cast<size_t>(n));
        return mText;
    }

  private:
    const std::string mPath;
    int mFd = -1;
    std::string mText;
};

int Times(const std::string& text, const std::string& part) {
    int times = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) ++times;
    return times;
}

class ServiceOutput : public testing::Test {
  protected:
    // Each call logs several lines, as there is no platform.
    void CallInVain(int count) const {
        for (int i = 0; i < count; ++i) ASSERT_EQ(static_cast<int32_t>(mVideo->NextChannel(1)), -1);
    }

    // Standard output and standard error are counted separately.
    int Dropped() {
        const std::string& text = mPipe.Read();
        int dropped = 0;
        for (size_t at = 0; (at = text.find(kCounted, at)) != std::string::npos;) {
            at += sizeof(kCounted) - 1;
            dropped += std::stoi("0" + text.substr(at));
        }
        return dropped;
    }

    const ScratchDirectory mDirectory;
    Pipe mPipe{mDirectory / "output"};
    ChildProcess mService{{"sh", "-c", R"(exec "$0" > "$1" 2>&1)", HBBTV_SERVICE_PROGRAM, mDirectory / "output"},
                          {std::string("HIDL_HOST_PASSTHROUGH_PATH=") + HBBTV_LIBRARIES}};
    const sp<IVideoBroadcast> mVideo = FindVideoBroadcast();
};

TEST_F(ServiceOutput, WhoseReaderHasStoppedBlocksNoFamilyAndTheLostLinesAreCounted) {
    constexpr int kCalls = 200;
    ASSERT_NE(mVideo, nullptr);
    CallInVain(kCalls);
    {
        const EveryFamily platform;
        EXPECT_EQ(EveryFamily::Unanswered(), "");
    }
    EXPECT_TRUE(WaitFor([this] { return Times(mPipe.Read(), "SendIpc failed") + Dropped() >= kCalls; }))
        << mPipe.Read();
    EXPECT_GT(Dropped(), 0);

    CallInVain(1);
    EXPECT_TRUE(WaitFor([this] {
        const std::string& text = mPipe.Read();
        return text.find("SendIpc failed", text.rfind(kCounted)) != std::string::npos;
    })) << mPipe.Read();
}

TEST_F(ServiceOutput, WhoseReaderHasGoneEndsNothingAndTheLostLinesAreCountedWhenItIsBack) {
    ASSERT_NE(mVideo, nullptr);
    mPipe.Close();
    CallInVain(10);
    {
        const EveryFamily platform;
        EXPECT_EQ(EveryFamily::Unanswered(), "");
    }
    mPipe.Open();
    CallInVain(1);
    EXPECT_TRUE(WaitFor([this] { return Dropped() >= 10; })) << mPipe.Read();
    EXPECT_FALSE(mService.WaitForExit(std::chrono::milliseconds(0)).has_value());
}

}  // namespace

}  // namespace hbbtv::test
