// The viewer's preferences through the service and the simulated platform: set and asked for, told to a client's
// process whoever has changed them, and there again after the platform has gone and come back.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IConfiguration.h>

#include <memory>
#include <string>
#include <vector>

#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using namespace vantorel::hardware::hbbtv::V1_0;
using android::sp;
using android::hardware::hidl_string;
using android::hardware::hidl_vec;

class SimulatedPreferences : public testing::Test {
  protected:
    void SetUp() override {
        StartPlatform();
        mConfiguration = Find<IConfiguration>();
        ASSERT_NE(nullptr, mConfiguration);
    }

    void StartPlatform() {
        mPlatform = std::make_unique<SimulatedPlatform>(std::vector<std::string>{"--state", mDirectory / "state"});
        ASSERT_TRUE(mPlatform->Ready()) << mPlatform->Output();
    }

    int32_t SetAudio(const std::string& languages) {
        const auto status = mConfiguration->SetPreferredAudioLanguage(languages);
        return status.isOk() ? static_cast<int32_t>(status) : -1000;
    }

    std::string Audio() {
        std::string languages;
        const auto keep = [&](int32_t status, const hidl_string& text) {
            languages = status == 0 ? std::string(text) : "status " + std::to_string(status);
        };
        EXPECT_TRUE(mConfiguration->GetPreferredAudioLanguage(keep).isOk());
        return languages;
    }

    static void Tell(const std::string& command) {
        ChildProcess teller({HBBTV_SIM_PROGRAM, "--tell", command});
        EXPECT_EQ(0, teller.WaitForExit()) << teller.Output();
    }

    ScratchDirectory mDirectory;
    std::unique_ptr<SimulatedPlatform> mPlatform;
    ServiceProcess mService;
    sp<IConfiguration> mConfiguration;
};

TEST_F(SimulatedPreferences, AreToldToAClientWhoeverChangesThem) {
    RegisteredClient client("configuration");
    ASSERT_TRUE(client.Registered()) << client.Output();
    EXPECT_EQ(0, SetAudio("fra,deu"));
    EXPECT_EQ("fra,deu", Audio());
    EXPECT_TRUE(client.WaitForOutput("configuration 2 'fra,deu' 0\n")) << client.Output();
    Tell("set audio-language ita");
    EXPECT_TRUE(client.WaitForOutput("configuration 2 'ita' 0\n")) << client.Output();
    EXPECT_EQ("ita", Audio());
    Tell("set rating-age 16");
    EXPECT_TRUE(client.WaitForOutput("configuration 8 '' 16\n")) << client.Output();
    EXPECT_EQ(-1, SetAudio("Italian"));
    EXPECT_EQ("ita", Audio());

    client.Write("unregister\n");
    ASSERT_TRUE(client.WaitForOutput("unregistered\n"));
    Tell("set rating-age 18");
    RegisteredClient next("configuration");
    ASSERT_TRUE(next.Registered()) << next.Output();
    Tell("set rating-age 6");
    EXPECT_TRUE(next.WaitForOutput("configuration 8 '' 6\n")) << next.Output();
    EXPECT_EQ(std::string::npos, client.Output().find("18")) << client.Output();
    EXPECT_EQ(std::string::npos, next.Output().find("18")) << next.Output();
}

TEST_F(SimulatedPreferences, AreWhatTheyWereWhenThePlatformComesBack) {
    EXPECT_EQ(0, SetAudio("fra"));
    Tell("set network-ids 12289,12290");
    mPlatform->Kill();
    StartPlatform();
    EXPECT_EQ(-1, SetAudio("deu")) << "the first request meets the connection to the one that was killed";
    EXPECT_EQ("fra", Audio());
    std::vector<int32_t> ids;
    const auto keep = [&](int32_t, const hidl_vec<int32_t>& networkIds) { ids = networkIds; };
    EXPECT_TRUE(mConfiguration->GetDttNetworkIds(keep).isOk());
    EXPECT_EQ((std::vector<int32_t>{12289, 12290}), ids);
}

}  // namespace

}  // namespace hbbtv::test
