// The service and the simulator when the system refuses them something once: whichever call it is, they continue, and
// the next request is answered.

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "common/local_socket.h"
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

    virtual void Start() = 0;
    // Returns whether the process has told what it does after its start.
    virtual bool Serves() = 0;
    // Uses each of the functions at least once.
    virtual void Round() = 0;
    // The number of the call that has failed is for the message.
    virtual void ExpectServed(int nth) = 0;

    bool HasFailed() const { return mCall->left == 0; }

    // A member of a message. A large one takes mappings of its own in the process that reads it.
    static std::string Padding() {
        return R"("padding": ")" + std::string(GetParam().function == Function::Mmap ? 200'000 : 0, 'x') + '"';
    }

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

    // Without the call, the process either serves, or ends with a message: what cannot serve has no use.
    void ExpectServedOrEndedAfterEachFailureAtStart() {
        int failed = 0;
        for (bool more = true; more && failed < kMost;) {
            const int nth = failed + 1;
            mCall->Arm(GetParam().function, nth);
            Start();
            ASSERT_TRUE(WaitFor([&] { return Serves() || HasEnded(); })) << "call " << nth << "\n"
                                                                         << mProcess->Output();
            more = HasFailed();
            mCall->Disarm();
            failed += more ? 1 : 0;
            if (HasEnded()) {
                EXPECT_GT(mProcess->WaitForExit(), 0) << "call " << nth << "\n" << mProcess->Output();
                EXPECT_NE(mProcess->Output(), "") << "call " << nth;
            } else {
                ASSERT_NO_FATAL_FAILURE(ExpectServed(nth));
            }
            mProcess.reset();
        }
        EXPECT_GE(failed, 1) << "the process does not call the function when it starts";
    }

    // Returns whether the process has ended, or is about to.
    bool HasEnded() {
        const bool ends = mProcess->Output().find("cannot serve") != std::string::npos;
        return mProcess->WaitForExit(ends ? kPatience : std::chrono::milliseconds(0)).has_value();
    }

    // The shell itself must not have the failing calls.
    void StartProcess(const std::vector<std::string>& command, const std::string& redirection = "") {
        std::vector<std::string> shell{"/bin/sh", "-c", R"(exec env LD_PRELOAD="$0" "$@" )" + redirection,
                                       HBBTV_FAILING_CALLS};
        shell.insert(shell.end(), command.begin(), command.end());
        mProcess = std::make_unique<ChildProcess>(
            shell, std::vector<std::string>{"MALLOC_MMAP_THRESHOLD_=65536",
                                            std::string("HIDL_HOST_PASSTHROUGH_PATH=") + HBBTV_LIBRARIES});
    }

    const ScratchDirectory mDirectory;
    FailingCall* const mCall;
    std::unique_ptr<ChildProcess> mProcess;
};

class ServiceWithFailingCalls : public FailingCalls {
  protected:
    void Start() override {
        mVb = nullptr;
        // It polls an output that it cannot open again without waiting, such as a file.
        const bool toFile = GetParam().function == Function::Poll;
        StartProcess({HBBTV_SERVICE_PROGRAM}, toFile ? R"(> "$TMPDIR/output")" : "");
    }

    // Its last name is published.
    bool Serves() override {
        const sp<IVideoBroadcast> service = IVideoBroadcast::tryGetService();
        return service != nullptr && service->ping().isOk();
    }

    void RestartPlatform() {
        mPlatform.reset();
        mPlatform = std::make_unique<FakePlatform>("service_plugin_to_hbbtv_vb", R"({"ret": 0})");
    }

    // The service connects to a platform that is new, replies to a connection that is new, and serves a client that is
    // new.
    void Round() override {
        RestartPlatform();
        for (int i = 0; i < 3; ++i) Call();
        Ask(mDirectory / "service_hbbtv_to_plugin_vb", 7, "{" + Padding() + "}");
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
        ASSERT_EQ(mProcess->WaitForExit(std::chrono::milliseconds(0)), std::nullopt) << "call " << nth << "\n"
                                                                                     << mProcess->Output();
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
    sp<IVideoBroadcast> mVb;
    int mRounds = 0;
};

TEST_P(ServiceWithFailingCalls, ContinuesAndAnswersTheNextRequest) {
    Start();
    ExpectServedAfterEachFailure();
}

using StartOfServiceWithFailingCalls = ServiceWithFailingCalls;

TEST_P(StartOfServiceWithFailingCalls, ServesOrEnds) {
    RestartPlatform();
    ExpectServedOrEndedAfterEachFailureAtStart();
}

class SimulatorWithFailingCalls : public FailingCalls {
  protected:
    void Start() override { StartProcess({HBBTV_SIM_PROGRAM, "--state", mDirectory / "state"}); }

    // Its last socket is served.
    bool Serves() override { return Descriptor(ConnectTo(mDirectory / "hbbtv_sim_control")).Get() >= 0; }

    // Its events are sent once a receiver is registered.
    void Register() { Ask(mDirectory / "service_plugin_to_hbbtv_conf", 12, R"({"type": 9, "method": 33})"); }

    void RestartLibrary() {
        mLibrary.reset();
        mLibrary = std::make_unique<FakePlatform>("service_hbbtv_to_plugin_conf", R"({"ret": 0})");
    }

    // The simulator replies to connections that are new, writes its state, and connects to a library that is new.
    void Round() override {
        RestartLibrary();
        Ask(mDirectory / "service_plugin_to_hbbtv_vb_chn_config", 3, Question());
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
        ASSERT_EQ(mProcess->WaitForExit(std::chrono::milliseconds(0)), std::nullopt) << "call " << nth << "\n"
                                                                                     << mProcess->Output();
        const auto reply = Ask(mDirectory / "service_plugin_to_hbbtv_vb_chn_config", 3, Question());
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

    static std::string Question() { return R"({"type": 19, "method": 2, )" + Padding() + "}"; }

    std::unique_ptr<FakePlatform> mLibrary;
    int mRatingAge = 10;
};

TEST_P(SimulatorWithFailingCalls, ContinuesAndAnswersTheNextRequest) {
    Start();
    ASSERT_TRUE(WaitFor([this] { return Serves(); })) << mProcess->Output();
    Register();
    ExpectServedAfterEachFailure();
}

class StartOfSimulatorWithFailingCalls : public SimulatorWithFailingCalls {
  protected:
    void ExpectServed(int nth) override {
        Register();
        SimulatorWithFailingCalls::ExpectServed(nth);
    }
};

TEST_P(StartOfSimulatorWithFailingCalls, ServesOrEnds) {
    RestartLibrary();
    ExpectServedOrEndedAfterEachFailureAtStart();
}

const auto kNameOfCase = [](const auto& failing) { return std::string(failing.param.name); };

constexpr Case kConnect{"connect", Function::Connect};
constexpr Case kAccept{"accept", Function::Accept};
constexpr Case kSocket{"socket", Function::Socket};
constexpr Case kBind{"bind", Function::Bind};
constexpr Case kSend{"send", Function::Send};
constexpr Case kRecv{"recv", Function::Recv};
constexpr Case kPoll{"poll", Function::Poll};
constexpr Case kClone{"clone", Function::Clone};
constexpr Case kMmap{"mmap", Function::Mmap};
constexpr Case kOpen{"open", Function::Open};
constexpr Case kWrite{"write", Function::Write};

// What is missing in a list is not called then: the service opens no files while it serves; the simulator binds its
// sockets when it starts, and has one thread.
INSTANTIATE_TEST_SUITE_P(Of, ServiceWithFailingCalls,
                         testing::Values(kConnect, kAccept, kSocket, kBind, kSend, kRecv, kPoll, kClone, kMmap, kWrite),
                         kNameOfCase);
INSTANTIATE_TEST_SUITE_P(Of, StartOfServiceWithFailingCalls,
                         testing::Values(kAccept, kSocket, kBind, kSend, kRecv, kPoll, kClone, kMmap, kOpen, kWrite),
                         kNameOfCase);
INSTANTIATE_TEST_SUITE_P(Of, SimulatorWithFailingCalls,
                         testing::Values(kConnect, kAccept, kSocket, kSend, kRecv, kPoll, kMmap, kOpen, kWrite),
                         kNameOfCase);
INSTANTIATE_TEST_SUITE_P(Of, StartOfSimulatorWithFailingCalls, testing::Values(kAccept, kSocket, kBind, kOpen, kWrite),
                         kNameOfCase);

}  // namespace

}  // namespace hbbtv::test
