// Settings of the families from the command line.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace hbbtv::sim {

// The event sent when tuning fails permanently. The standard's table of states has ChannelChanged, its description of
// the events suggests ChannelError.
enum class PermanentErrorEvent { ChannelError, ChannelChanged };

struct Settings {
    std::optional<uint32_t> seed;
    std::string stateDirectory;  // empty: nothing is saved
    std::chrono::milliseconds tuneTime{300};
    PermanentErrorEvent permanentErrorEvent = PermanentErrorEvent::ChannelError;
    std::chrono::milliseconds streamEventInterval{2000};  // 0: no stream events
    std::string streamEvents;                             // the file of the script; empty: none
    std::string carousel;                                 // the directory of the object carousel; empty: none
    std::chrono::milliseconds pingInterval{5000};         // of the browser; 0: none
};

}  // namespace hbbtv::sim
