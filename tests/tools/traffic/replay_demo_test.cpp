// The demo is recorded by a relay and replayed: as the platform for the service and the demo, without a simulator, and
// as the library for another simulator.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "ctl.h"
#include "traffic/record/recording.h"
#include "traffic/relay/relay.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::string kDemo = std::string(HBBTV_SOURCE_DIR) + "/tools/demo/demo.play";

FinishedRun PlayDemo() {
    return Ctl({"play", kDemo});
}

// Records the traffic between two directories while it exists.
class Recording {
  public:
    Recording(const std::string& library, const std::string& platform, const std::string& file)
        : mWriter(file, {}),
          mRelay({library, platform, {}, {}, false, "test"},
                 [this](const traffic::Record& record) { EXPECT_EQ(mWriter.Write(record), ""); }),
          mThread([this] { mRelay.Run(); }) {}

    ~Recording() {
        mRelay.Stop();
        mThread.join();
    }

  private:
    traffic::RecordingWriter mWriter;
    traffic::Relay mRelay;
    std::thread mThread;
};

class ReplayOfTheDemo : public Alone {
  protected:
    // The programmes of the simulator begin at whole minutes, and the demo asks what is on.
    static std::chrono::minutes Minute() {
        return std::chrono::duration_cast<std::chrono::minutes>(std::chrono::system_clock::now().time_since_epoch());
    }

    void Record() {
        const std::string directory = mDirectory / "platform";
        mkdir(directory.c_str(), 0755);
        SimulatedPlatform platform({"--directory", directory});
        ASSERT_TRUE(platform.Ready()) << platform.Output();
        const Recording recording(mDirectory.Path(), directory, File());
        ServiceProcess service;
        // A platform does not wait until the relay has noticed a socket of the library.
        const std::vector<std::string> families{"application_manager", "mtm", "search_manager", "video_broadcast"};
        std::vector<std::string> listen{"listen", "--for", "1ms"};
        listen.insert(listen.end(), families.begin(), families.end());
        ASSERT_TRUE(WaitFor([&listen] { return Ctl(listen).exit == 0; }));
        for (const std::string& family : families) {
            const std::string path = directory + "/" + EventsOf(FindFamily(family)).socket;
            ASSERT_TRUE(WaitFor([&path] { return LookAt(path).state == Finding::State::Serving; })) << path;
        }
        const FinishedRun demo = PlayDemo();
        EXPECT_EQ(demo.exit, 0) << demo.Text();
    }

    std::string File() const { return mDirectory / "demo.ndjson"; }
};

TEST_F(ReplayOfTheDemo, AsThePlatformLetsTheDemoPassWithoutASimulator) {
    ASSERT_NO_FATAL_FAILURE(Record());
    CtlProcess platform({"replay", File(), "--as", "platform"});
    ASSERT_TRUE(platform.WaitForOutput("listening; press Ctrl-C to stop\n")) << platform.Output();
    ServiceProcess service;
    const FinishedRun demo = PlayDemo();
    EXPECT_EQ(demo.exit, 0) << demo.Text();
    platform.Signal(SIGINT);
    ASSERT_TRUE(platform.WaitForExit());
    // The recording has more than the demo, and what a client replies to an event depends on when it comes.
    EXPECT_THAT(platform.Output(), HasSubstr("\n0 not in the recording, "));
}

TEST_F(ReplayOfTheDemo, AsTheLibraryFindsNoDifference) {
    FinishedRun replay;
    // Again if a programme may have begun between the two.
    for (auto minute = Minute() - std::chrono::minutes(1); minute != Minute();) {
        minute = Minute();
        unlink(File().c_str());
        ASSERT_NO_FATAL_FAILURE(Record());
        SimulatedPlatform platform;
        ASSERT_TRUE(platform.Ready()) << platform.Output();
        replay = Ctl({"replay", File(), "--as", "library"});
    }
    EXPECT_EQ(replay.exit, 0) << replay.Text();
    EXPECT_THAT(replay.output, StartsWith("replayed "));
    EXPECT_THAT(replay.output, HasSubstr("0 not in the recording, 0 replied differently, "));
}

TEST_F(ReplayOfTheDemo, AsAPlayHoldsOnAnotherPlatform) {
    const std::string walk = mDirectory / "walk.play";
    FinishedRun play;
    for (auto minute = Minute() - std::chrono::minutes(1); minute != Minute();) {
        minute = Minute();
        unlink(File().c_str());
        ASSERT_NO_FATAL_FAILURE(Record());
        ASSERT_EQ(Ctl({"show", File(), "--walk", walk}).exit, 0);
        SimulatedPlatform platform;
        ASSERT_TRUE(platform.Ready()) << platform.Output();
        ServiceProcess service;
        ASSERT_TRUE(WaitFor([] { return Ctl({"call", "IChannelConfig.GetCurrentChannel"}).exit == 0; }));
        play = Ctl({"play", walk});
    }
    EXPECT_EQ(play.exit, 0) << play.Text() << ReadFile(walk);
}

}  // namespace

}  // namespace hbbtv::test
