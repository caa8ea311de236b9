// A relay that runs in the test, and the sockets at its ends.
#pragma once

#include "traffic/relay/relay.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "raw_listener.h"
#include "raw_socket.h"
#include "scratch_directory.h"
#include "traffic/relay/claim.h"

namespace hbbtv::traffic {
using test::FakePlatform;
using test::FrameBytes;
using test::HeaderBytes;
using test::RawConnection;
using test::RawListener;
using test::ScratchDirectory;
using test::WaitFor;

constexpr char kChannel[] = "service_plugin_to_hbbtv_vb_chn";
constexpr char kEvents[] = "service_hbbtv_to_plugin_vb";

class RunningRelay {
  public:
    explicit RunningRelay(const RelaySettings& settings)
        : mRelay(settings, [this](const Record& record) { Take(record); }), mThread([this] { mRelay.Run(); }) {}

    // `platform` accepts the connection by which the relay has found out who serves the socket.
    RunningRelay(const RelaySettings& settings, RawListener& platform) : RunningRelay(settings) { platform.Accept(); }
    ~RunningRelay() { Stop(); }

    void Stop() {
        if (!mThread.joinable()) return;
        mRelay.Stop();
        mThread.join();
    }

    std::vector<Record> Records() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mRecords;
    }
    std::vector<Record> Exchanges() const {
        std::vector<Record> exchanges;
        for (const Record& record : Records()) {
            if (record.kind == Record::Kind::Exchange) exchanges.push_back(record);
        }
        return exchanges;
    }
    bool WaitForExchanges(size_t count) const {
        return WaitFor([&] { return Exchanges().size() >= count; });
    }
    bool WaitForNote(const std::string& part) const {
        return WaitFor([&] {
            for (const Record& record : Records()) {
                if (record.note.find(part) != std::string::npos) return true;
            }
            return false;
        });
    }
    Relay& Of() { return mRelay; }
    const Relay& Of() const { return mRelay; }

  private:
    void Take(const Record& record) {
        std::lock_guard<std::mutex> lock(mMutex);
        mRecords.push_back(record);
    }

    mutable std::mutex mMutex;
    std::vector<Record> mRecords;
    Relay mRelay;
    std::thread mThread;
};

inline ino_t InodeOf(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

struct RelayTest : testing::Test {
    RelaySettings Here() const {
        RelaySettings settings;
        settings.directory = directory.Path();
        settings.program = "test";
        return settings;
    }
    RawConnection Connect(const std::string& name) const { return RawConnection::To(directory / name); }

    // Wait until the relay has the place of the socket, or no longer has it.
    bool Taken(const std::string& name) const {
        return WaitFor([&] { return Has(name); });
    }
    bool GivenBack(const std::string& name) const {
        return WaitFor([&] { return !Has(name); });
    }
    bool Has(const std::string& name) const {
        const auto answer = AskRelay(directory.Path());
        if (!answer) return false;
        for (const Json::Value& socket : (*answer)["sockets"]) {
            if (socket.asString() == name) return true;
        }
        return false;
    }

    std::string Ask(const std::string& text) const {
        RawConnection connection = Connect(kChannel);
        connection.Write(FrameBytes(test::kRequest, 2, text));
        const auto reply = connection.ReadFrame();
        return reply ? reply->payload : "no reply";
    }

    ScratchDirectory directory;
};

}  // namespace hbbtv::traffic
