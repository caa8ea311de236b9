#include "traffic/understanding/understanding.h"

#include <algorithm>

#include "common/frame.h"

namespace hbbtv::traffic {

namespace {

// Of a connection whose requests are not answered, as no library sends them.
constexpr size_t kMostOpen = 1000;
constexpr uint64_t kMostOpenBytes = 32u << 20;

std::string Joined(const std::string& first, const std::string& second) {
    return first.empty() || second.empty() ? first + second : first + ", " + second;
}

const char* Sender(bool library) {
    return library ? "the library" : "the platform";
}

}  // namespace

bool IsOfLibrary(const std::string& socket) {
    return socket.rfind("service_hbbtv_to_", 0) == 0;
}

Record Understanding::RecordOf(const Connection& connection, Record::Kind kind, const TimeStamp& time) const {
    Record record;
    record.kind = kind;
    record.time = time;
    record.connection = connection.about.number;
    const bool events = IsOfLibrary(connection.about.socket);
    record.library = events ? connection.about.server : connection.about.caller;
    record.platform = events ? connection.about.caller : connection.about.server;
    record.event = events;
    Identify(record, connection.about.socket);
    return record;
}

void Understanding::Write(Record& record) {
    record.number = ++mLast;
    mOnRecord(record);
}

void Understanding::Connected(const RelayedConnection& about, const TimeStamp& time) {
    Connection* connection = nullptr;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        connection = &mConnections[about.number];
        connection->about = about;
    }
    Record record = RecordOf(*connection, Record::Kind::Connected, time);
    Write(record);
}

void Understanding::Take(uint64_t number, Direction direction, const std::string& bytes, const TimeStamp& time,
                         const std::string& rule) {
    const auto found = mConnections.find(number);
    if (found == mConnections.end()) return;
    Connection& connection = found->second;
    connection.streams[static_cast<size_t>(direction)].Take(bytes, [&](Message&& message, bool damaged) {
        if (damaged) {
            TakeDamaged(connection, direction, std::move(message), time, "the bytes are not a message");
        } else {
            TakeMessage(connection, direction, std::move(message), time, rule);
        }
    });
}

void Understanding::TakeMessage(Connection& connection, Direction direction, Message&& message, const TimeStamp& time,
                                const std::string& rule) {
    if (direction == Direction::kToCaller && Complete(connection, message, time, rule)) return;
    Record record = RecordOf(connection, Record::Kind::Exchange, time);
    record.message = std::move(message);
    record.rule = rule;
    if (direction == Direction::kToServer) {
        Identify(record, connection.about.socket);
        if (record.WantsReply()) {
            if (connection.open.size() >= kMostOpen || connection.openBytes >= kMostOpenBytes) {
                GiveUp(connection, "no reply came, and too many requests after it");
            }
            std::lock_guard<std::mutex> lock(mMutex);
            connection.openBytes += record.message.size;
            connection.open.push_back(std::move(record));
            return;
        }
    } else {
        record.note = "from " + std::string(Sender(record.event)) + ", which was not asked";
    }
    Write(record);
}

// The next message is the reply, whatever its type. Returns false if no request is open.
bool Understanding::Complete(Connection& connection, Message& reply, const TimeStamp& time, const std::string& rule) {
    Record record;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (connection.open.empty()) return false;
        record = std::move(connection.open.front());
        connection.open.pop_front();
        connection.openBytes -= record.message.size;
    }
    record.reply = std::move(reply);
    record.duration = time.Monotonic() - std::min(record.time.Monotonic(), time.Monotonic());
    record.rule = Joined(record.rule, rule);
    const Json::Value& members = record.reply->json;
    if (members.isObject() && members["ret"].isInt()) record.status = members["ret"].asInt();
    Write(record);
    return true;
}

void Understanding::TakeDamaged(Connection& connection, Direction direction, Message&& message, const TimeStamp& time,
                                const std::string& note) {
    Record record = RecordOf(connection, Record::Kind::Damaged, time);
    record.message = std::move(message);
    record.note = "from " + std::string(Sender((direction == Direction::kToServer) != record.event)) + ": " + note;
    Write(record);
}

void Understanding::Lost(uint64_t number, Direction direction, uint64_t count, const TimeStamp& time) {
    const auto found = mConnections.find(number);
    if (found == mConnections.end()) return;
    Connection& connection = found->second;
    connection.streams[static_cast<size_t>(direction)].Restart();
    GiveUp(connection, "what followed was not recorded");
    Record record = RecordOf(connection, Record::Kind::Note, time);
    record.note = std::to_string(count) + " bytes were passed on, but not recorded: the recorder is too slow";
    Write(record);
}

void Understanding::Closed(uint64_t number, const std::string& how, const TimeStamp& time) {
    const auto found = mConnections.find(number);
    if (found == mConnections.end()) return;
    Connection& connection = found->second;
    for (const Direction direction : {Direction::kToServer, Direction::kToCaller}) {
        std::optional<Message> rest = connection.streams[static_cast<size_t>(direction)].Rest();
        if (rest) TakeDamaged(connection, direction, std::move(*rest), time, "the message is cut");
    }
    GiveUp(connection, "the connection ended before the reply");
    Record record = RecordOf(connection, Record::Kind::Closed, time);
    record.note = how;
    Write(record);
    std::lock_guard<std::mutex> lock(mMutex);
    mConnections.erase(found);
}

void Understanding::Note(const std::string& note, const std::string& socket, const TimeStamp& time) {
    Record record;
    record.kind = Record::Kind::Note;
    record.time = time;
    Identify(record, socket);
    record.note = note;
    Write(record);
}

void Understanding::GiveUp(Connection& connection, const std::string& note) {
    std::deque<Record> open;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        open.swap(connection.open);
        connection.openBytes = 0;
    }
    for (Record& record : open) {
        record.open = true;
        record.note = note;
        Write(record);
    }
}

std::vector<Record> Understanding::Open() const {
    std::vector<Record> open;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        for (const auto& [number, connection] : mConnections) {
            open.insert(open.end(), connection.open.begin(), connection.open.end());
        }
    }
    std::sort(open.begin(), open.end(),
              [](const Record& a, const Record& b) { return a.time.Monotonic() < b.time.Monotonic(); });
    for (Record& record : open) record.open = true;
    return open;
}

void Understanding::WriteOpen(const std::string& note) {
    for (auto& [number, connection] : mConnections) GiveUp(connection, note);
}

}  // namespace hbbtv::traffic
