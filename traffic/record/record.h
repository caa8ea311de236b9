// What was seen between a library and a platform, one record for each exchange and each change of a connection. In a
// recording, a record is one line of JSON.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <optional>
#include <string>

#include "common/frame.h"
#include "common/time_stamp.h"

namespace hbbtv::traffic {

// The process at one end of a connection.
struct Peer {
    int pid = 0;  // 0: unknown
    unsigned uid = 0;
    std::string name;  // of its program
};

struct Message {
    int32_t type = 0;  // kOneWay, kRequest, kReply, or what a damaged header has
    int32_t port = 0;
    uint32_t size = 0;  // of the payload in bytes, as the header announces it
    Json::Value json;   // the payload; null if it is not JSON
    std::string raw;    // the payload if it is not JSON; if the message is cut, less than `size`

    bool Readable() const { return !json.isNull(); }
};

struct Record {
    enum class Kind {
        Exchange,   // a message, and its reply if there is one
        Connected,  // a connection was accepted and passed on
        Closed,     // it ended; `note`: by which side
        Damaged,    // bytes that are not a message, in `message.raw`; what follows on the connection is unknown
        Note,       // what the recorder has to say, in `note`
    };

    Kind kind = Kind::Exchange;
    uint64_t number = 0;      // from 1, in the order in which records were completed
    TimeStamp time{0, 0};     // when the message had arrived
    uint64_t connection = 0;  // from 1; 0: none
    std::string socket;       // name of the file
    std::string family;       // "channel"; empty if the socket is not one of the wire
    bool event = false;       // the connection is one of the platform to the library
    std::string operation;    // "GetName", or the event's name; empty if unknown
    std::optional<int> code;  // of the operation or the event
    Message message;
    std::optional<Message> reply;
    std::optional<uint64_t> duration;  // until the reply had arrived, in microseconds
    std::optional<int> status;         // "ret" of the reply
    bool open = false;                 // an exchange whose reply had not come when the record was written
    Peer library;
    Peer platform;
    std::string rule;  // what was done to the exchange on purpose
    std::string note;

    bool WantsReply() const { return message.type == kRequest; }
};

// Returns the name of a kind, as a recording has it, and the kind of a name. Throws std::runtime_error.
std::string NameOf(Record::Kind kind);
Record::Kind KindOf(const std::string& name);

// RecordReader reads it.
Json::Value ToJson(const Record& record);
Json::Value ToJson(const Peer& peer);

// Sets message.json or message.raw from a payload. The header's members are the caller's.
void SetPayload(Message& message, const std::string& payload);

// Returns the payload: as received if it is not JSON, else as the library writes it.
std::string PayloadOf(const Message& message);

// Sets socket, family, event, operation and code from the name of a socket and the record's message.
void Identify(Record& record, const std::string& socket);

}  // namespace hbbtv::traffic
