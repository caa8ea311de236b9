// What the command line sets for the behaviour of the families.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace hbbtv::sim {

// What is said when tuning fails for good. The standard's table of states lists ChannelChanged there, the description
// of the events leads one to expect ChannelError.
enum class PermanentErrorEvent { ChannelError, ChannelChanged };

struct Settings {
    std::optional<uint32_t> seed;
    std::string stateDirectory;  // empty: nothing outlives the simulator
    std::chrono::milliseconds tuneTime{300};
    PermanentErrorEvent permanentErrorEvent = PermanentErrorEvent::ChannelError;
    std::chrono::milliseconds streamEventInterval{2000};  // 0: no stream events
    std::string streamEvents;                             // the file with those of a script; empty: there is none
    std::string carousel;                                 // the directory of the object carousel; empty: there is none
    std::chrono::milliseconds pingInterval{5000};         // of the browser; 0: none
};

}  // namespace hbbtv::sim
