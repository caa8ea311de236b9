#include "traffic/log/log_import.h"

#include <cstdlib>

#include "traffic/log/logged_message.h"
#include "traffic/log/request_family.h"
#include "traffic/view/members.h"
#include "wire/endpoint.h"

namespace hbbtv::traffic {

namespace {

constexpr size_t kLongestLine = 64u << 10;
constexpr size_t kLongestMessage = 1u << 20;
constexpr size_t kMostProblems = 100;
constexpr size_t kMostWriters = 10000;

// The library, and the log after it, keep no more of a message.
constexpr size_t kKept = 1000;

// May add to the members what identifies the operation.
std::string SocketOf(const LoggedMessage& message, Json::Value& members) {
    if (!message.received) return SocketOfRequest(members);
    for (const Endpoint& endpoint : AllEndpoints()) {
        if (!endpoint.ofPlatform && message.key == endpoint.key) return endpoint.socket;
    }
    // Without the key, which is at the end.
    for (const Endpoint& endpoint : AllEndpoints()) {
        if (endpoint.ofPlatform) continue;
        if (FindFamily(endpoint.family).EventOf(members) != nullptr) return endpoint.socket;
    }
    return "";
}

int PortOf(const std::string& socket) {
    for (const Endpoint& endpoint : AllEndpoints()) {
        if (endpoint.socket == socket) return endpoint.port;
    }
    return 0;
}

Message MessageFrom(const LoggedDocument& document, int32_t type, int32_t port) {
    Message message;
    message.type = type;
    message.port = port;
    SetPayload(message, document.text);
    // The library writes a message as it writes it to the socket, and the log keeps that.
    message.size = static_cast<uint32_t>(PayloadOf(message).size());
    return message;
}

Record RecordOf(const LoggedMessage& logged) {
    Record record;
    // What is cut is identified by the members that are left.
    record.message.json = logged.message.members;
    Identify(record, SocketOf(logged, record.message.json));
    const bool request = logged.reply || (!logged.received && !logged.whole);
    const int port = logged.port.value_or(PortOf(record.socket));
    record.message = MessageFrom(logged.message, request ? kRequest : kOneWay, port);
    if (!logged.reply) return record;
    record.reply = MessageFrom(*logged.reply, kReply, port);
    if (logged.reply->members["ret"].isInt()) record.status = logged.reply->members["ret"].asInt();
    return record;
}

// Returns "GetName" of "[tolm](tolm_channel_adaptor_ipc.cpp:31) GetName: ENTER".
std::string OperationThatBegins(const std::string& text) {
    constexpr size_t kEnter = sizeof(": ENTER") - 1;
    if (text.size() < kEnter || text.compare(text.size() - kEnter, kEnter, ": ENTER") != 0) return "";
    const size_t begin = text.rfind(' ', text.size() - kEnter - 1);
    return begin == std::string::npos ? "" : text.substr(begin + 1, text.size() - kEnter - begin - 1);
}

bool IsWarning(const LogLine& line) {
    return (line.priority == 'W' || line.priority == 'E') && line.text.rfind("[tolm](", 0) == 0;
}

}  // namespace

LogImport::LogImport(const LogSettings& settings, std::function<void(const Record&)> onRecord)
    : mReader(settings.path, kLongestLine), mClock(settings.zone, settings.year), mOnRecord(std::move(onRecord)) {}

void LogImport::Problem(const std::string& place, const std::string& problem) {
    if (mProblems.size() < kMostProblems) mProblems.push_back(place + ": " + problem);
}

void LogImport::Run() {
    std::string text;
    while (mReader.Next(text)) {
        ++mCounts.lines;
        const std::optional<LogLine> line = mLines.Read(text);
        if (line) Take(*line, mClock.Of(line->time));
    }
    while (!mPending.empty()) Finish(mPending.begin()->first);
}

// A line that begins with the place in the source is a message of its own, whatever was before it.
void LogImport::Take(const LogLine& line, TimeStamp time) {
    const Writer writer{line.pid, line.tid, line.tag};
    if (line.text.rfind("[tolm](", 0) == 0) {
        if (mPending.count(writer) > 0) Finish(writer);
        TakeLine(line, time);
    } else if (line.tag == "chatty") {
        TakeLost(line);
    } else if (ContinuesMessage(line.text)) {
        Continue(line);
    } else if (mPending.count(writer) > 0) {
        Finish(writer);
    }
}

void LogImport::TakeLine(const LogLine& line, TimeStamp time) {
    if (BeginsMessage(line.text)) {
        if (mPending.size() >= kMostWriters) Finish(mPending.begin()->first);
        mPending[{line.pid, line.tid, line.tag}] = {line, time, mReader.Place(), line.text};
        return;
    }
    const std::string operation = OperationThatBegins(line.text);
    if (!operation.empty() && line.tid != 0) {
        if (mBeginnings.size() >= kMostWriters) mBeginnings.clear();
        mBeginnings[{line.pid, line.tid}] = {operation, time};
    }
    if (!IsWarning(line)) return;
    ++mCounts.notes;
    Record record;
    record.kind = Record::Kind::Note;
    record.time = time;
    record.note = line.text.substr(line.text.find(") ") == std::string::npos ? 0 : line.text.find(") ") + 2);
    Write(record, line);
}

void LogImport::Continue(const LogLine& line) {
    const Writer writer{line.pid, line.tid, line.tag};
    const auto found = mPending.find(writer);
    if (found == mPending.end()) {
        // Other programs also write lines of this form.
        if (line.tag == "[ipc_base]") {
            ++mCounts.mixed;
            Problem(mReader.Place(), "a line of a message whose beginning is missing");
        }
        return;
    }
    Pending& pending = found->second;
    if (pending.text.size() < kLongestMessage) pending.text += "\n" + line.text;
    const bool mayEnd = line.text[0] == '}' || line.text.find("msg:") != std::string::npos || line.text[0] == ' ';
    if (mayEnd && ReadLoggedMessage(pending.text).whole) Finish(writer);
}

// logcat writes: "uid=1000(system) Binder:4711_2 expire 12 lines"; "identical 3 lines" have been there before.
void LogImport::TakeLost(const LogLine& line) {
    const size_t expire = line.text.find("expire ");
    if (expire == std::string::npos) return;
    const uint64_t lost = std::strtoull(line.text.c_str() + expire + 7, nullptr, 10);
    mCounts.lost += lost;
    Problem(mReader.Place(), "the log has dropped " + std::to_string(lost) + " lines");
}

void LogImport::Finish(const Writer& writer) {
    const auto found = mPending.find(writer);
    const Pending pending = std::move(found->second);
    mPending.erase(found);
    FinishMessage(pending);
}

void LogImport::SetTimes(const Pending& pending, Record& record) {
    record.time = pending.time;
    const auto began = mBeginnings.find({pending.first.pid, pending.first.tid});
    if (began == mBeginnings.end() || began->second.operation != record.operation || !record.reply) return;
    record.time = began->second.time;
    record.duration = pending.time.Monotonic() - record.time.Monotonic();
    mBeginnings.erase(began);
}

void LogImport::NoteProblem(const Pending& pending, Record& record) {
    const std::string what = record.family.empty() ? "a message" : FullName(record);
    if (pending.text.size() >= kKept) {
        ++mCounts.cut;
        record.note = "the log has cut this after " + std::to_string(pending.text.size()) + " bytes";
        Problem(pending.place, "the log has cut " + what);
    } else {
        ++mCounts.mixed;
        record.note = "lines of this are missing in the log";
        Problem(pending.place, "lines of " + what + " are missing");
    }
}

void LogImport::FinishMessage(const Pending& pending) {
    const LoggedMessage logged = ReadLoggedMessage(pending.text);
    Record record = RecordOf(logged);
    SetTimes(pending, record);
    ++(logged.received ? mCounts.events : mCounts.exchanges);
    if (!logged.whole) NoteProblem(pending, record);
    if (logged.whole && record.operation.empty()) {
        ++mCounts.unknown;
        Problem(pending.place, "a message that is not one of the wire protocol");
    }
    Write(record, pending.first);
}

void LogImport::Write(Record& record, const LogLine& line) {
    record.number = ++mNumber;
    record.library.pid = line.pid;
    mOnRecord(record);
}

}  // namespace hbbtv::traffic
