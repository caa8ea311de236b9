// A recording as a play: the calls of the service that cause the recorded requests, with the recorded results, and the
// recorded events. Handles become names, so that it runs on any platform that has the same content.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "package/description.h"
#include "traffic/record/packed_records.h"
#include "traffic/record/recording.h"

namespace hbbtv::ctl {

class WalkWriter {
  public:
    // `write` takes the text of the file.
    WalkWriter(const traffic::RecordingHead& head, std::function<void(const std::string& text)> write);

    // Keeps the record. Only exchanges become lines.
    void Add(const traffic::Record& record);

    // Writes the play. A line that the language cannot express is a comment.
    void Finish();

  private:
    void WriteRequest(const traffic::Record& record);
    void WriteEvent(const traffic::Record& record, uint64_t waited);
    void Register(const std::string& family);
    void RegisterBefore(size_t request);

    // Both return an empty string if the method's arguments are not those of the message.
    std::string CallOf(const traffic::Record& record);
    std::string SendOf(const traffic::Record& record);

    std::string ReplyOf(const traffic::Message& reply, const Json::Value& members);
    std::string ResultsOf(const traffic::Record& record, const Method& method, const Json::Value& members);

    // Returns the value of a member as the type, or an empty string. A handle of the recording that has no name gets
    // one if `names` is set.
    std::string Value(const Type& type, const Json::Value& member, const Json::Value& value, bool names);
    std::string HandleText(const std::string& kind, uint64_t handle, bool names);

    // Returns the record of a place in mOrder.
    traffic::Record Recorded(size_t place) const { return mRecords.At(mOrder[place].second); }

    const std::function<void(const std::string&)> mWrite;
    traffic::PackedRecords mRecords;
    std::vector<std::pair<uint64_t, size_t>> mOrder;                 // times, and places in mRecords
    std::set<std::string> mHasEvents;                                // families
    std::map<std::pair<std::string, uint64_t>, std::string> mNames;  // of handles, by kind
    std::set<std::pair<std::string, uint64_t>> mReleased;            // handles
    std::map<std::string, int> mCounts;                              // of names, by kind
    std::map<size_t, std::vector<std::string>> mRegisterBefore;      // families, by record
};

}  // namespace hbbtv::ctl
