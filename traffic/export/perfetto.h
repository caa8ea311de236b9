// Records as a trace that Perfetto and other viewers of Chrome's trace format open.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "traffic/record/recording.h"

namespace hbbtv::traffic {

// An exchange is a slice of the process that sends it and a slice of the one that answers, with an arrow between them;
// a message without a reply is an instant of both. A connection is a track of each process: it has one open exchange at
// a time, so its slices do not overlap.
class PerfettoWriter {
  public:
    // `write` takes the text of the file.
    PerfettoWriter(const RecordingHead& head, std::function<void(const std::string& text)> write);

    // Records without a message are left out.
    void Add(const Record& record);

    // Ends the document.
    void Finish();

  private:
    void AddSide(const Record& record, bool sender);
    void NameTrack(const Record& record, bool library, int64_t process, int64_t track);
    void Write(const Json::Value& event);
    int64_t TrackOf(const Record& record);

    const std::function<void(const std::string&)> mWrite;
    bool mFirst = true;
    std::set<int64_t> mProcesses;
    std::set<std::pair<int64_t, int64_t>> mTracks;  // process, track
    std::map<std::string, int64_t> mSockets;        // tracks of messages whose connection is unknown
};

}  // namespace hbbtv::traffic
