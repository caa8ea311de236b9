#include "traffic/export/perfetto.h"

#include <algorithm>

#include "common/text/json.h"
#include "traffic/view/line.h"
#include "traffic/view/members.h"
#include "traffic/view/names.h"

namespace hbbtv::traffic {

namespace {

// Of processes that the recording does not know.
constexpr int64_t kLibrary = 1;
constexpr int64_t kPlatform = 2;

// The first track that is not named by a connection. Perfetto takes 32 bits.
constexpr int64_t kFirstOtherTrack = int64_t{1} << 31;

int64_t ProcessOf(const Record& record, bool library) {
    const Peer& peer = library ? record.library : record.platform;
    return peer.pid > 0 ? peer.pid : library ? kLibrary : kPlatform;
}

Json::Value Event(const char* phase, int64_t process, int64_t track, uint64_t time) {
    Json::Value event(Json::objectValue);
    event["ph"] = phase;
    event["pid"] = static_cast<Json::Int64>(process);
    event["tid"] = static_cast<Json::Int64>(track);
    event["ts"] = static_cast<Json::UInt64>(time);
    return event;
}

Json::Value Metadata(const char* name, int64_t process, int64_t track, const std::string& value) {
    Json::Value event = Event("M", process, track, 0);
    event["name"] = name;
    event["args"]["name"] = value;
    return event;
}

Json::Value Arguments(const Record& record) {
    Json::Value arguments(Json::objectValue);
    arguments["members"] = MembersText(record, record.message, Names());
    if (record.reply) arguments["reply"] = MembersText(record, *record.reply, Names());
    if (record.status) arguments["status"] = *record.status;
    if (!record.rule.empty()) arguments["rule"] = record.rule;
    if (!record.note.empty()) arguments["note"] = record.note;
    if (!record.reply && record.WantsReply()) arguments["reply"] = "none";
    return arguments;
}

}  // namespace

PerfettoWriter::PerfettoWriter(const RecordingHead& head, std::function<void(const std::string& text)> write)
    : mWrite(std::move(write)) {
    Json::Value origin(Json::objectValue);
    origin["program"] = head.program;
    origin["directory"] = head.directory;
    mWrite(R"({"displayTimeUnit":"ms","otherData":)" + WriteJson(origin) + R"(,"traceEvents":[)");
}

void PerfettoWriter::Add(const Record& record) {
    if (record.kind == Record::Kind::Note) return AddNote(record);
    if (record.kind != Record::Kind::Exchange && record.kind != Record::Kind::Damaged) return;
    const int64_t track = TrackOf(record);
    AddSide(record, track, true);
    AddSide(record, track, false);
}

void PerfettoWriter::Finish() {
    mWrite("\n]}\n");
}

// The library's, such as a warning about a client.
void PerfettoWriter::AddNote(const Record& record) {
    const int64_t process = ProcessOf(record, true);
    NameProcess(record, true, process);
    if (mTracks.insert({process, 0}).second) Write(Metadata("thread_name", process, 0, "notes"));
    Json::Value event = Event("i", process, 0, record.time.Wall());
    event["s"] = "p";
    event["name"] = record.note;
    event["cat"] = "note";
    event["args"]["record"] = static_cast<Json::UInt64>(record.number);
    Write(event);
}

void PerfettoWriter::AddSide(const Record& record, int64_t track, bool sender) {
    const bool library = record.event != sender;
    const int64_t process = ProcessOf(record, library);
    const uint64_t time = record.time.Wall();
    NameTrack(record, library, process, track);
    Json::Value event = Event(record.duration ? "X" : "i", process, track, time);
    if (record.duration) event["dur"] = static_cast<Json::UInt64>(*record.duration);
    if (!record.duration) event["s"] = "t";  // the mark is on its track only
    event["name"] = record.kind == Record::Kind::Damaged ? "damaged" : FullName(record);
    event["cat"] = record.family.empty() ? "unknown" : record.family;
    if (IsError(record)) event["cname"] = "terrible";
    if (sender) event["args"] = Arguments(record);
    event["args"]["record"] = static_cast<Json::UInt64>(record.number);
    Write(event);
    if (!record.duration) return;
    Json::Value arrow = Event(sender ? "s" : "f", process, track, time);
    arrow["id"] = static_cast<Json::UInt64>(record.number);
    arrow["name"] = "message";
    arrow["cat"] = event["cat"];
    if (!sender) arrow["bp"] = "e";  // it ends at the slice, not at the next one
    Write(arrow);
}

void PerfettoWriter::NameProcess(const Record& record, bool library, int64_t process) {
    if (!mProcesses.insert(process).second) return;
    const Peer& peer = library ? record.library : record.platform;
    const std::string role = library ? "library" : "platform";
    Write(Metadata("process_name", process, 0, peer.name.empty() ? role : role + ", " + peer.name));
}

void PerfettoWriter::NameTrack(const Record& record, bool library, int64_t process, int64_t track) {
    NameProcess(record, library, process);
    if (!mTracks.insert({process, track}).second) return;
    const std::string name = record.family.empty() ? record.socket : record.family;
    const std::string connection = record.connection == 0 ? "" : ", connection " + std::to_string(record.connection);
    Write(Metadata("thread_name", process, track, name + (record.event ? " events" : "") + connection));
}

void PerfettoWriter::Write(const Json::Value& event) {
    mWrite((mFirst ? "\n" : ",\n") + WriteJson(event));
    mFirst = false;
}

int64_t PerfettoWriter::TrackOf(const Record& record) {
    std::vector<Track>& tracks = mOfConnections[{record.connection, record.connection == 0 ? record.socket : ""}];
    const uint64_t begin = record.time.Wall();
    const auto idle = std::find_if(tracks.begin(), tracks.end(), [begin](const Track& t) { return t.end <= begin; });
    const bool isMissing = idle == tracks.end();
    Track& track = isMissing ? tracks.emplace_back() : *idle;
    if (isMissing) {
        const bool first = tracks.size() == 1 && record.connection != 0;
        track.number = first ? static_cast<int64_t>(record.connection) : kFirstOtherTrack + mOthers++;
    }
    track.end = begin + record.duration.value_or(0);
    return track.number;
}

}  // namespace hbbtv::traffic
