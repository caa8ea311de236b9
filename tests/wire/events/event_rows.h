// The events of a family, held to protocol/: how they are read, in all their forms, and who receives them from when to
// when. A program of a family compiles event_rows.cpp, defines EventsUnderTest() and instantiates the suites at the end
// for its rows.
#pragma once

#include <android/log.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "event_connection.h"
#include "log_capture.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"
#include "shown_event.h"

namespace hbbtv::test {

// A plain function that notes the events under a name: "first", "second", or "asking", which makes a request first.
enum class Receiver { kNone, kFirst, kSecond, kAsking };

struct EventFamily {
    void (*makeInstance)();
    int (*registerReceiver)(Receiver receiver);
    std::string event;             // one of the family's events
    std::string received;          // what its receiver notes behind its name
    const char* withoutReceiver;   // "priority message" in the log when there is no receiver, or empty
    const char* refusal;           // message in the log for an event that asks for a reply
    const char* protocolsExample;  // what is noted of the protocol file's example
    int refusalPriority = ANDROID_LOG_ERROR;
    const char* story = nullptr;  // how the lines begin by which the log tells of each event, if it does
};

const EventFamily& EventsUnderTest();

// A handle or context, as operations take it.
inline const void* Pointer(uint32_t bits) {
    return reinterpret_cast<const void*>(static_cast<uintptr_t>(bits));
}

// For the receivers. `line` is "name value value ...".
void NoteEvent(const std::string& line);

struct EventRow {
    const char* name;
    const char* event;
    const char* received;        // what is noted behind the receiver's name; null when it is not called
    const char* complaint = "";  // "priority message" in the log
};

// How a registration ends, in a family where it does.
struct EventsEnd {
    int (*unregister)();
};

// The requests that report this to the platform, in a family that has them.
struct EventRequests {
    const char* registering;  // a member of the request, as in "method" : 0
    int (*unregister)();      // null when registrations do not end
    const char* unregistering;
};

// An event of the protocol file, with all its members.
struct ProtocolEventRow {
    std::string name;
    std::string event;
    std::string received;
};

// A member of an event, read in all ways that its type has.
struct EventMemberRow {
    std::string name;
    std::string event;
    std::string key;
    std::string type;
    std::string received;             // with % in place of the member's value
    const char* unchanged = nullptr;  // for a pointer: what is noted when it is not read
};

// What a family's receiver notes of an event behind its name.
using NotedAs = std::string (*)(const Json::Value& event, const ShownMembers& shown);

// Return the rows of the events with these names, and of their members.
std::vector<ProtocolEventRow> RowsOf(const std::vector<std::string>& events, NotedAs noted);
std::vector<EventMemberRow> MemberRowsOf(const std::vector<std::string>& events, NotedAs noted,
                                         const char* unchanged = nullptr);

// That these are the names of the protocol file's events, in the same order.
void ExpectTheProtocolsEvents(const std::vector<std::string>& events, const char* codeKey, const char* callback);

class Events : public ::testing::Test {
  protected:
    Events();
    ~Events() override { UnderTest().deleteInstance(); }

    // One-way events on one connection, and what the receivers noted by the time they were handled.
    std::vector<std::string> Send(const std::vector<std::string>& events) const;

    // What the receivers noted so far.
    std::vector<std::string> Noted() const;

    // Lines of the adaptor about events, as "priority message", without ENTER and LEAVE.
    std::vector<std::string> Complaints() const;

    std::string ServedSocket() const;
    int Port() const;

    ScratchDirectory mDirectory;
    LogCapture mLog;
};

class EventsOfAPlatform : public Events {
  protected:
    EventsOfAPlatform();

    FakePlatform mPlatform;
};

class EventForms : public EventsOfAPlatform, public ::testing::WithParamInterface<EventRow> {};
class EventMembers : public EventsOfAPlatform, public ::testing::WithParamInterface<EventMemberRow> {};
class ProtocolEvents : public EventsOfAPlatform, public ::testing::WithParamInterface<ProtocolEventRow> {};

class EndOfEvents : public EventsOfAPlatform, public ::testing::WithParamInterface<EventsEnd> {};
class RegistrationRequest : public EventsOfAPlatform, public ::testing::WithParamInterface<EventRequests> {};
class EndRequest : public EventsOfAPlatform, public ::testing::WithParamInterface<EventRequests> {};

void PrintTo(const EventRow& row, std::ostream* out);
void PrintTo(const EventMemberRow& row, std::ostream* out);
void PrintTo(const ProtocolEventRow& row, std::ostream* out);

template <typename Row>
std::string NameOfEventRow(const ::testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

}  // namespace hbbtv::test
