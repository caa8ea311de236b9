// The whole package, from a client's process through the service to the simulated platform and back: every method of
// every interface, and every event.

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <set>
#include <string>

#include "package/bindings.h"
#include "package/description.h"
#include "scratch_directory.h"
#include "system.h"
#include "walk/arrivals.h"
#include "walk/walk.h"

namespace hbbtv::test {

namespace {

const std::string kFiles = std::string(HBBTV_SOURCE_DIR) + "/tests/e2e/walk/";

class Package : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(mPlatform.Ready()) << mPlatform.Output(); }

    void TearDown() override {
        if (!HasFailure()) return;
        const std::string trace = mPlatform.Output();
        std::cerr << "the end of the platform's trace:\n" << trace.substr(trace.size() - std::min(trace.size(), kEnd));
    }

    static constexpr size_t kEnd = 4000;

    ScratchDirectory mDirectory;
    SimulatedPlatform mPlatform{{"--trace", "--line-up", kFiles + "line_up.json", "--programmes",
                                 kFiles + "programmes.xml", "--carousel", kFiles + "carousel", "--stream-events",
                                 kFiles + "stream_events.json"}};
    ServiceProcess mService;
    Walk mWalk{mPlatform, mDirectory.Path()};
};

std::set<std::string> AllMethods() {
    std::set<std::string> names;
    for (const auto& [interface, binding] : hbbtv::AllBindings()) {
        for (const hbbtv::MethodBinding& method : binding->methods) names.insert(interface + "." + method.name);
    }
    return names;
}

std::set<std::string> AllEvents() {
    std::set<std::string> names;
    for (const WireFamily& family : WireFamilies()) {
        for (const Json::Value& event : family.protocol["events"]) {
            const bool mediaSync = event["object"].asString() == "mediasync";
            names.insert((mediaSync ? "mediasync" : family.name) + " " + event["code"].asString());
        }
    }
    return names;
}

TEST_F(Package, EveryMethodGoesToThePlatformAndBack) {
    EXPECT_EQ(18u, hbbtv::AllBindings().size());
    mWalk.Take(kFiles + "every_method.walk");
    EXPECT_EQ(277u, mWalk.Called().size());
    EXPECT_EQ(AllMethods(), mWalk.Called());
}

TEST_F(Package, EveryEventReachesTheClientItIsFor) {
    mWalk.Take(kFiles + "every_event.walk");
    EXPECT_EQ(65u, mWalk.Events().size());
    EXPECT_EQ(AllEvents(), mWalk.Events());
    for (const std::string& call : Arrivals::OfThisProcess().Rest()) {
        EXPECT_EQ(0u, call.rfind("IMtmCallback.Ping ", 0)) << call << " was not expected";
    }
}

}  // namespace

}  // namespace hbbtv::test
