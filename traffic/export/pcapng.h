// Records as packets of a capture file (pcapng, link type 147), for Wireshark with the dissector in wireshark/.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "traffic/record/recording.h"

namespace hbbtv::traffic {

class PcapngWriter {
  public:
    // `write` takes the bytes of the file. Packets leave it in the order of their times as long as no exchange lasts
    // longer than `window` packets; with 0 they leave it at once.
    PcapngWriter(const RecordingHead& head, size_t window, std::function<void(const std::string& bytes)> write);

    // Adds a packet for each message of the record. Records without a message are left out.
    void Add(const Record& record);

    // Writes the packets that are left.
    void Finish();

  private:
    void AddPacket(const Record& record, const Message& message, bool reply);

    const size_t mWindow;
    const std::function<void(const std::string&)> mWrite;
    std::multimap<uint64_t, std::string> mWaiting;  // packets by time
};

}  // namespace hbbtv::traffic
