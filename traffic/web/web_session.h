// What the live page gets: records as they come, answers of the platform to questions that change nothing, and a way to
// the commands of a simulator.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "traffic/record/record.h"
#include "traffic/record/recording.h"
#include "traffic/web/http_server.h"
#include "traffic/web/record_ring.h"

namespace hbbtv::traffic {

struct WebSettings {
    std::string directory;  // of the sockets
    std::string platform;   // directory of the platform, where a simulator takes commands; empty: the same
    uint16_t port = 0;      // 0: any
    RecordingHead head;
    std::function<std::vector<Record>()> open;  // returns the exchanges without a reply yet; may be empty. Thread-safe
    std::function<void(Record&)> redact = nullptr;  // what is shown; may be empty. Thread-safe
};

class WebSession {
  public:
    // Throws Failure(kUnavailable) if the port cannot be served.
    explicit WebSession(const WebSettings& settings);

    std::string Address() const { return mServer.Address(); }

    // Shows the record, which is redacted already, in all pages, also in those that are opened later. Thread-safe.
    void Add(const Record& record);

    // Serves until Stop().
    void Run() { mServer.Run(); }
    void Stop() { mServer.Stop(); }  // thread-safe

  private:
    HttpResponse Get(const std::string& path) const;
    Json::Value Ask(const std::string& question, const Json::Value& members) const;
    HttpResponse Post(const std::string& path, const std::string& json) const;
    StreamPart Stream(uint64_t position) const;
    std::string Tick() const;

    const WebSettings mSettings;
    RecordRing mRing;
    HttpServer mServer;
};

}  // namespace hbbtv::traffic
