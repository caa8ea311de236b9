// Records as a trace that Perfetto and other viewers of Chrome's trace format open.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "traffic/record/recording.h"

namespace hbbtv::traffic {

// An exchange is a slice of the process that sends it and a slice of the one that answers, with an arrow between them;
// a message without a reply is an instant of both, a note one of the library. A connection is a track of each process:
// it has one open exchange at a time. If it has more, so that slices would overlap, which viewers do not show, it has
// further tracks.
class PerfettoWriter {
  public:
    // `write` takes the text of the file.
    PerfettoWriter(const RecordingHead& head, std::function<void(const std::string& text)> write);

    // Connections that begin and end are left out.
    void Add(const Record& record);

    // Ends the document.
    void Finish();

  private:
    // A row of slices.
    struct Track {
        int64_t number = 0;
        uint64_t end = 0;  // of the last slice
    };

    void AddNote(const Record& record);
    void AddSide(const Record& record, int64_t track, bool sender);
    void NameProcess(const Record& record, bool library, int64_t process);
    void NameTrack(const Record& record, bool library, int64_t process, int64_t track);
    void Write(const Json::Value& event);
    int64_t TrackOf(const Record& record);

    const std::function<void(const std::string&)> mWrite;
    bool mFirst = true;
    std::set<int64_t> mProcesses;
    std::set<std::pair<int64_t, int64_t>> mTracks;  // process, track
    // By connection, or socket if the connection is unknown.
    std::map<std::pair<uint64_t, std::string>, std::vector<Track>> mOfConnections;
    int64_t mOthers = 0;  // tracks that are not named by a connection
};

}  // namespace hbbtv::traffic
