// What the relay's bytes mean: the exchanges of each connection, as records. Bytes are understood after they have been
// passed on, so nothing here can change or delay them.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "traffic/record/record.h"
#include "traffic/understanding/message_stream.h"

namespace hbbtv::traffic {

// A connection that the relay has accepted and passed on.
struct RelayedConnection {
    uint64_t number = 0;  // from 1
    std::string socket;   // name of the file
    Peer caller;          // the process that has connected
    Peer server;          // the process that serves the socket
};

enum class Direction { kToServer, kToCaller };

// Returns whether the library serves the socket, also one of a family that protocol/ does not have.
bool IsOfLibrary(const std::string& socket);

// One thread calls it; Open() is thread-safe.
class Understanding {
  public:
    explicit Understanding(std::function<void(const Record&)> onRecord) : mOnRecord(std::move(onRecord)) {}

    void Connected(const RelayedConnection& connection, const TimeStamp& time);

    // Bytes that have arrived at `time`. `rule`: what was done to the messages that end in them.
    void Take(uint64_t connection, Direction direction, const std::string& bytes, const TimeStamp& time,
              const std::string& rule);

    // Bytes of the connection are missing here; the next ones of the direction begin with a message.
    void Lost(uint64_t connection, Direction direction, uint64_t count, const TimeStamp& time);

    // `how`: by which side, or why.
    void Closed(uint64_t connection, const std::string& how, const TimeStamp& time);

    void Note(const std::string& note, const std::string& socket, const TimeStamp& time);

    // Returns the exchanges whose reply has not come, as records without a number, oldest first.
    std::vector<Record> Open() const;

    // Writes the open exchanges as records, at the end of the relay.
    void WriteOpen(const std::string& note);

  private:
    struct Connection {
        RelayedConnection about;
        MessageStream streams[2];
        std::deque<Record> open;  // guarded by mMutex
        uint64_t openBytes = 0;   // of their payloads, as announced
    };

    Record RecordOf(const Connection& connection, Record::Kind kind, const TimeStamp& time) const;
    void Write(Record& record);
    void TakeMessage(Connection& connection, Direction direction, Message&& message, const TimeStamp& time,
                     const std::string& rule);
    void TakeDamaged(Connection& connection, Direction direction, Message&& message, const TimeStamp& time,
                     const std::string& note);
    bool Complete(Connection& connection, Message& reply, const TimeStamp& time, const std::string& rule);
    void GiveUp(Connection& connection, const std::string& note);

    const std::function<void(const Record&)> mOnRecord;
    mutable std::mutex mMutex;
    std::map<uint64_t, Connection> mConnections;  // changed under mMutex
    uint64_t mLast = 0;                           // number of the last record
};

}  // namespace hbbtv::traffic
