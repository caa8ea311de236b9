// The service and the simulator when the system refuses them something once: whichever call it is, they continue, and
// the next request is answered.

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "event_connection.h"
#include "failing_calls.h"
#include "scratch_directory.h"
#include "system.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

namespace {

using android::sp;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;

constexpr int64_t kVb = 0x1000;
constexpr int kMost = 50;
// The rarest call happens once in a round.
constexpr int kRounds = 2 * kMost;

struct Case {
    const char* name;
    Function function;
};

void PrintTo(const Case& failing, std::ostream* out) {
    *out << failing.name;
}

// Expects a reply, or that the connection is closed, but not silence.
std::optional<Frame> Ask(const std::string& path, int port, const std::string& request) {
    RawConnection connection = RawConnection::To(path);
    if (!connection.Write(FrameBytes(kRequest, port, request))) return std::nullopt;
    std::optional<Frame> reply = connection.ReadFrame();
    if (!reply) {
        EXPECT_TRUE(connection.PeerCloses(std::chrono::milliseconds(0))) << path << " neither replies nor closes";
    }
    return reply;
}

class FailingCalls : public testing::TestWithParam<Case> {
  protected:
    FailingCalls() : mCall(MapFailingCall((mDirectory / kFailingCallsFile).c_str())) {}

    // Uses each of the functions at least once.
    virtual void Round() = 0;
    // The number of the call that has failed is for the message.
    virtual void ExpectServed(int nth) = 0;

    bool HasFailed() const { return mCall->left == 0; }

    void ExpectServedAfterEachFailure() {
        Round();
        ASSERT_NO_FATAL_FAILURE(ExpectServed(0));
        int failed = 0;
        for (int nth = 1; nth <= kMost; ++nth) {
            mCall->Arm(GetParam().function, nth);
            for (int round = 0; round < kRounds && !HasFailed(); ++round) Round();
            failed += HasFailed() ? 1 : 0;
            mCall->Disarm();
            ASSERT_NO_FATAL_FAILURE(ExpectServed(nth));
        }
        EXPECT_EQ(failed, kMost);
    }

    static std::vector<std::string> Preload() {
        return {std::string("LD_PRELOAD=") + HBBTV_FAILING_CALLS,
                std::string("HIDL_HOST_PASSTHROUGH_PATH=") + HBBTV_LIBRARIES};
    }

    const ScratchDirectory mDirectory;
    FailingCall* const mCall;
};

class ServiceWithFailingCalls : public FailingCalls {
  protected:
    void Start() {
        mService = std::make_unique<ChildProcess>(std::vector<std::string>{HBBTV_SERVICE_PROGRAM}, Preload());
    }

    void RestartPlatform() {
        mPlatform.reset();
        mPlatform = std::make_unique<FakePlatform>("service_plugin_to_hbbtv_vb", R"({"ret": 0})");
    }

    // The service uses each function at least once: it connects to a platform that is new, replies to a connection that
    // is new, and serves a client that is new.
    void Round() override {
        RestartPlatform();
        for (int i = 0; i < 3; ++i) Call();
        Ask(mDirectory / "service_hbbtv_to_plugin_vb", 7, "{}");
        if (mRounds++ % 4 != 0) return;  // a process takes longer than all the rest
        ChildProcess client({HBBTVCTL_PROGRAM, "call", "IVideoBroadcast.SetVolume", "4096", "20"});
        EXPECT_TRUE(client.WaitForExit().has_value()) << "a client hangs";
    }

    // Returns the status, or nothing if the connection to the service was lost.
    std::optional<int> Call() {
        if (mVb == nullptr) mVb = FindVideoBroadcast();
        if (mVb == nullptr) return std::nullopt;
        const auto status = mVb->SetVolume(kVb, 20);
        if (status.isOk()) return static_cast<int>(status);
        mVb = nullptr;
        return std::nullopt;
    }

    void ExpectServed(int nth) override {
        ASSERT_EQ(mService->WaitForExit(std::chrono::milliseconds(0)), std::nullopt) << "call " << nth << "\n"
                                                                                     << mService->Output();
        std::optional<int> status = Call();
        if (!status) status = Call();       // with a new connection
        if (status == -1) status = Call();  // the one before has found that its connection to the platform is gone
        EXPECT_EQ(status, 0) << "call " << nth;
        RegisteredClient client;
        ASSERT_TRUE(client.Registered()) << "call " << nth << "\n" << client.Output();
        EventConnection events(mDirectory / "service_hbbtv_to_plugin_vb", 7);
        const char* const event =
            R"({"type": "videobroadcast", "event": 1, "context": "0xabc", "state": 2, "error": 0})";
        ASSERT_TRUE(events.Send({event})) << "call " << nth;
        EXPECT_TRUE(client.WaitForOutput("onPlayStateChange [2,0]\n")) << "call " << nth << "\n" << client.Output();
    }

    std::unique_ptr<FakePlatform> mPlatform;
    std::unique_ptr<ChildProcess> mService;
    sp<IVideoBroadcast> mVb;
    int mRounds = 0;
};

TEST_P(ServiceWithFailingCalls, ContinuesAndAnswersTheNextRequest) {
    Start();
    ExpectServedAfterEachFailure();
}

// Without this call it either serves, or ends with a message; a service that cannot serve has no use.
TEST_P(ServiceWithFailingCalls, ServesOrEndsWhenACallFailsAtItsStart) {
    RestartPlatform();
    for (int nth = 1; nth <= kMost; ++nth) {
        mVb = nullptr;
        mCall->Arm(GetParam().function, nth);
        Start();
        const auto decided = [&] {
            return mService->Output().find("IVideoBroadcast/default") != std::string::npos ||
                   mService->WaitForExit(std::chrono::milliseconds(0)).has_value();
        };
        ASSERT_TRUE(WaitFor(decided)) << "call " << nth << "\n" << mService->Output();
        const bool last = !HasFailed();
        mCall->Disarm();
        if (mService->Output().find("cannot serve") != std::string::npos) {
            EXPECT_EQ(mService->WaitForExit(), 1) << "call " << nth << "\n" << mService->Output();
        } else {
            ASSERT_NO_FATAL_FAILURE(ExpectServed(nth));
        }
        mService.reset();
        if (last) break;
    }
}

class SimulatorWithFailingCalls : public FailingCalls {
  protected:
    bool Start() {
        mSimulator = std::make_unique<ChildProcess>(
            std::vector<std::string>{HBBTV_SIM_PROGRAM, "--state", mDirectory / "state"}, Preload());
        if (!mSimulator->WaitForOutput("ready")) return false;
        // Its events are sent once a receiver is registered.
        return Ask(mDirectory / "service_plugin_to_hbbtv_conf", 12, R"({"type": 9, "method": 33})").has_value();
    }

    // The simulator uses each function at least once: it replies to connections that are new, writes its state, and
    // connects to a library that is new.
    void Round() override {
        mLibrary.reset();
        mLibrary = std::make_unique<FakePlatform>("service_hbbtv_to_plugin_conf", R"({"ret": 0})");
        Ask(mDirectory / "service_plugin_to_hbbtv_vb_chn_config", 3, kQuestion);
        ChangeRatingAge();
    }

    // Returns the answer, or "" if the connection is closed.
    std::string Tell(const std::string& command) const {
        RawConnection connection = RawConnection::To(mDirectory / "hbbtv_sim_control");
        std::string answer;
        if (!connection.Write(command + "\n")) return answer;
        while (answer.empty() || answer.back() != '\n') {
            const std::string next = connection.Read(1);
            if (next.empty()) {
                EXPECT_TRUE(connection.PeerCloses(std::chrono::milliseconds(0))) << command << ": no answer";
                return "";
            }
            answer += next;
        }
        return answer;
    }

    void ExpectServed(int nth) override {
        ASSERT_EQ(mSimulator->WaitForExit(std::chrono::milliseconds(0)), std::nullopt) << "call " << nth << "\n"
                                                                                       << mSimulator->Output();
        const auto reply = Ask(mDirectory / "service_plugin_to_hbbtv_vb_chn_config", 3, kQuestion);
        ASSERT_TRUE(reply.has_value()) << "call " << nth;
        EXPECT_NE(reply->payload.find(R"("ret" : 0)"), std::string::npos) << reply->payload;
        const size_t events = mLibrary->Frames().size();
        EXPECT_EQ(ChangeRatingAge(), "ok\n") << "call " << nth;
        EXPECT_TRUE(mLibrary->WaitForFrames(events + 1)) << "call " << nth << ": no event";
    }

    // Which the simulator saves, and reports to the library.
    std::string ChangeRatingAge() {
        mRatingAge = mRatingAge == 18 ? 4 : mRatingAge + 1;  // a new value, even if the one before was refused
        return Tell("set rating-age " + std::to_string(mRatingAge));
    }

    static constexpr char kQuestion[] = R"({"type": 19, "method": 2})";

    std::unique_ptr<FakePlatform> mLibrary;
    std::unique_ptr<ChildProcess> mSimulator;
    int mRatingAge = 10;
};

TEST_P(SimulatorWithFailingCalls, ContinuesAndAnswersTheNextRequest) {
    ASSERT_TRUE(Start()) << mSimulator->Output();
    ExpectServedAfterEachFailure();
}

const Case kOfSimulator[] = {
    {"connect", Function::Connect}, {"accept", Function::Accept}, {"socket", Function::Socket},
    {"send", Function::Send},       {"recv", Function::Recv},     {"poll", Function::Poll},
    {"open", Function::Open},       {"write", Function::Write},
};

INSTANTIATE_TEST_SUITE_P(Of, SimulatorWithFailingCalls, testing::ValuesIn(kOfSimulator),
                         [](const auto& failing) { return std::string(failing.param.name); });

const Case kOfService[] = {
    {"connect", Function::Connect}, {"accept", Function::Accept}, {"socket", Function::Socket},
    {"bind", Function::Bind},       {"send", Function::Send},     {"recv", Function::Recv},
    {"clone", Function::Clone},
};

INSTANTIATE_TEST_SUITE_P(Of, ServiceWithFailingCalls, testing::ValuesIn(kOfService),
                         [](const auto& failing) { return std::string(failing.param.name); });

}  // namespace

}  // namespace hbbtv::test
