// Takes the place of one side of a recording: of the platform, which answers the library and sends it events, or of the
// library, which asks the platform.
#pragma once

#include <json/value.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "common/duration.h"
#include "traffic/replay/conversation.h"

namespace hbbtv::traffic {

class ReplaySession;

struct ReplaySettings {
    bool asPlatform = true;
    std::string directory;              // of the sockets
    std::optional<Milliseconds> delay;  // of replies (platform) or between messages (library), instead of the recorded
    std::optional<Milliseconds> limit;  // ends the replay
    Milliseconds timeout{10000};        // for a reply, or for an event before the next request; library only
    bool strict = false;                // requests must come in the order of the recording; platform only
    bool repeats = false;               // a request that comes again gets its last reply again; platform only
    bool closeOnMiss = false;           // closes the connection instead of replying "ret" -1; platform only
};

// What is not as recorded.
struct ReplayFinding {
    enum class Kind {
        Miss,         // a message of the other side that the recording does not have
        Difference,   // a reply that differs
        Clock,        // a reply that differs only in what depends on the time
        Missing,      // a message or a reply of the recording that did not come
        Undelivered,  // a message of the recording that could not be sent
    };

    Kind kind;
    uint64_t record = 0;  // 0: none
    std::string message;  // "channel.GetName c_handle=0x1000"
    std::string text;
};

std::string NameOf(ReplayFinding::Kind kind);
Json::Value ToJson(const ReplayFinding& finding);

struct ReplaySummary {
    uint64_t requests = 0;          // of the recording
    uint64_t requestsReplayed = 0;  // with their replies, if they have any
    uint64_t events = 0;
    uint64_t eventsReplayed = 0;
    uint64_t misses = 0;
    uint64_t differences = 0;
    uint64_t clocks = 0;
    uint64_t missing = 0;
    uint64_t undelivered = 0;
    bool interrupted = false;  // the library ended before all was replayed

    // Returns whether all was as recorded, but for clocks.
    bool Same() const { return misses + differences + missing + undelivered == 0; }
};

Json::Value ToJson(const ReplaySummary& summary);

class Replay {
  public:
    // Serves the sockets from now on. The conversation must outlive it. Throws Failure(kUsage) if a socket cannot be
    // served, and Failure(kUnavailable) if there is no platform to ask.
    Replay(const Conversation& conversation, const ReplaySettings& settings,
           std::function<void(const ReplayFinding&)> onFinding);
    ~Replay();

    // Runs until SIGINT, SIGTERM or the limit; as the library, until everything has been asked at the latest.
    ReplaySummary Run();

  private:
    const std::unique_ptr<ReplaySession> mSession;
};

}  // namespace hbbtv::traffic
