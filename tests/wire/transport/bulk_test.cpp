// Much traffic on one endpoint: nothing is lost, and nothing of what has ended stays.
#include <malloc.h>
#include <sys/resource.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "build_kind.h"
#include "ipc/src/tolm_base_server.h"
#include "ipc/src/tolm_json_text.h"
#include "process_usage.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "stdout_capture.h"

namespace hbbtv::test {

namespace {

// Under a sanitizer a connection takes twenty times as long, and a message ten times.
constexpr int kConnections = kSanitized ? 3000 : 100000;
constexpr int kEvents = kSanitized ? 50000 : 1000000;
constexpr int kClients = 18;

// Counts events {"n": number} and whether each sender's numbers came in their order.
class Counter : public TolmBaseServer {
  public:
    Counter() : TolmBaseServer(TOLM_IPC_KEY_SERVICE_HBBTV_TO_PLUGIN_VB, 7) { Start(); }
    ~Counter() override { Stop(); }

    void ReceiveIpc(const Json::Value& msg) override {
        const int sender = tolm::ReadInt(msg, "sender");
        if (tolm::ReadInt(msg, "n") != mNext[sender]++) ++mOutOfOrder;
        ++mCount;
    }

    int Count() const { return mCount; }
    int OutOfOrder() const { return mOutOfOrder; }

    bool WaitForEvents(int count) const {
        // Long enough for all of them, since they are waited for in one go.
        return WaitFor([&] { return mCount >= count; }, std::chrono::seconds(100));
    }

  private:
    int mNext[kClients] = {};  // on the endpoint's threads, one message at a time
    std::atomic<int> mCount{0};
    std::atomic<int> mOutOfOrder{0};
};

std::string Event(int sender, int number) {
    return FrameBytes(1, 7, "{\"n\":" + std::to_string(number) + ",\"sender\":" + std::to_string(sender) + "}");
}

class Bulk : public testing::Test {
  protected:
    RawConnection Connect() const { return RawConnection::To(mDirectory / "service_hbbtv_to_plugin_vb"); }

    const ScratchDirectory mDirectory;
    const StdoutCapture mOut;
};

class ManyConnections : public Bulk {
  protected:
    // Connects, sends and disconnects so many times, like a platform that does so for every event.
    void Rounds(Counter& counter, int count) {
        for (int i = 0; i < count; ++i) ASSERT_TRUE(Connect().Write(Event(0, 0)));
        mSent += count;
        ASSERT_TRUE(counter.WaitForEvents(mSent)) << counter.Count();
    }

    void Run() {
        // On a busy machine more threads run at once, and each further arena of glibc is 64 MiB of address space.
        mallopt(M_ARENA_MAX, 1);
        Counter counter;
        const int threads = UsageOfThisProcess().threads;
        const int descriptors = UsageOfThisProcess().descriptors;
        const auto settled = [&] {
            return WaitFor([&] {
                const ProcessUsage now = UsageOfThisProcess();
                // The thread that ended last is still to be joined.
                return now.threads <= threads + 1 && now.descriptors == descriptors;
            });
        };
        // Whatever the process keeps, it has after some thousand rounds.
        ASSERT_NO_FATAL_FAILURE(Rounds(counter, kConnections / 10));
        ASSERT_TRUE(settled()) << ToText(UsageOfThisProcess());
        const ProcessUsage before = UsageOfThisProcess();
        ASSERT_NO_FATAL_FAILURE(Rounds(counter, kConnections));
        ASSERT_TRUE(settled()) << ToText(UsageOfThisProcess());
        const ProcessUsage after = UsageOfThisProcess();
        // A leak of 100 bytes for each connection would be 10 MB; a stack that stays is 8 MiB of address space. What a
        // sanitizer keeps for itself is not of interest.
        if (kSanitized) return;
        EXPECT_LE(after.residentKiB, before.residentKiB + 4 * 1024) << ToText(before) << "\n" << ToText(after);
        EXPECT_LE(after.addressSpaceKiB, before.addressSpaceKiB + 64 * 1024) << ToText(before) << "\n" << ToText(after);
    }

  private:
    int mSent = 0;
};

TEST_F(ManyConnections, OneAfterTheOtherLeaveNothingBehind) {
    Run();
}

TEST_F(ManyConnections, NeedNoMoreThan4GiBOfAddressSpace) {
    // A sanitizer needs more than that for itself; there the rounds are run as they are.
    const rlimit limit{rlim_t{4} << 30, rlim_t{4} << 30};
    ASSERT_TRUE(kSanitized || setrlimit(RLIMIT_AS, &limit) == 0);
    Run();
}

TEST_F(Bulk, EventsOfOneSenderAllArriveInTheirOrder) {
    Counter counter;
    RawConnection connection = Connect();
    std::string some;
    for (int i = 0; i < kEvents; ++i) {
        some += Event(0, i);
        if (i % 100 == 99) {
            ASSERT_TRUE(connection.Write(some));
            some.clear();
        }
    }
    ASSERT_TRUE(counter.WaitForEvents(kEvents)) << counter.Count();
    EXPECT_EQ(kEvents, counter.Count());
    EXPECT_EQ(0, counter.OutOfOrder());
}

TEST_F(Bulk, EventsOf18SendersAtOnceAllArriveInTheirOrder) {
    Counter counter;
    std::vector<std::thread> senders;
    for (int sender = 0; sender < kClients; ++sender) {
        senders.emplace_back([this, sender] {
            RawConnection connection = Connect();
            for (int i = 0; i < kEvents / 100; ++i) ASSERT_TRUE(connection.Write(Event(sender, i)));
        });
    }
    for (std::thread& sender : senders) sender.join();
    ASSERT_TRUE(counter.WaitForEvents(kClients * (kEvents / 100))) << counter.Count();
    EXPECT_EQ(kClients * (kEvents / 100), counter.Count());
    EXPECT_EQ(0, counter.OutOfOrder());
}

}  // namespace

}  // namespace hbbtv::test
