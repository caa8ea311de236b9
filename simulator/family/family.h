// One family of platform objects as the server sees it: its address, its operations, its events, and the viewer's
// commands for it. Addresses, codes and names are those of protocol/. A family is a class derived from Family whose
// constructor lists its rows.
#pragma once

#include <json/value.h>

#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "family/arguments.h"
#include "wire/protocol.h"

namespace hbbtv::sim {

struct FamilyAddress {
    std::string name;           // as in --fault and in commands
    std::string requestSocket;  // served by the simulator
    std::string eventSocket;    // served by the library; empty if the family does not send events
    int eventPort = 0;          // in the header of its events
    std::string codeMember;     // the member that holds the operation's code: "method", or "t"
    std::optional<int> type;    // the member "type" of its requests, for the families that have one
};

// Fills the reply; a reply without "ret" gets 0. Throws Refused to answer -1.
using Handler = std::function<void(const Arguments&, Json::Value& reply)>;

struct Operation {
    std::string name;
    std::string mark;  // of two operations with the same code, the member that only this one has; otherwise empty
    Handler handler;
};

// The words after a command's name.
using Words = std::vector<std::string>;

// An action at the television rather than a request: the viewer zaps, the signal is lost. The function returns the
// answer; it throws WrongWords(), or Refused if the command is not possible now.
struct Command {
    std::string usage;  // "zap next|previous|NUMBER"
    std::string purpose;
    std::function<std::string(const Words& words)> run;
};

// Sends a family's events.
class EventSink {
  public:
    virtual ~EventSink() = default;

    // The members that name the event are added.
    virtual void Send(const std::string& event, const Json::Value& members) = 0;

    // The same with a reply, which the function gets later: null if there was none. The function must not throw.
    virtual void SendAndWait(const std::string& event, const Json::Value& members,
                             std::function<void(const Json::Value& reply)> onReply) = 0;
};

// The members that identify each event, by name.
using EventTable = std::map<std::string, Json::Value>;

using MakeSink = std::function<EventSink&(const FamilyAddress&, const EventTable&)>;

class Family {
  public:
    virtual ~Family() = default;
    Family(const Family&) = delete;
    Family& operator=(const Family&) = delete;

    const FamilyAddress& Address() const { return mAddress; }
    const EventTable& Events() const { return mEvents; }
    const std::map<std::string, Command>& Commands() const { return mCommands; }

    // All operations, by code. Two may share a code.
    const std::multimap<int, Operation>& Operations() const { return mOperations; }

  protected:
    using In = const Arguments&;
    using Out = Json::Value&;

    // This and the functions below throw Fatal for a name that is not in protocol/.
    explicit Family(const std::string& name);

    // Returns the member that names the object of a request, for families whose requests all have one.
    std::string ObjectMember() const;

    // Adds a row to the family's table.
    void Row(const std::string& name, Handler handler, const std::string& mark = "");

    template <typename F>
    void Row(const std::string& name, void (F::*method)(In, Out), const std::string& mark = "") {
        Row(
            name, [self = static_cast<F*>(this), method](In in, Out out) { (self->*method)(in, out); }, mark);
    }

    // Declares the events that the family sends, and returns their sink.
    EventSink& Sends(const MakeSink& makeSink, std::initializer_list<const char*> events);

    // The usage begins with the command's name.
    void AddCommand(const std::string& usage, const std::string& purpose,
                    std::function<std::string(const Words&)> run) {
        mCommands[usage.substr(0, usage.find(' '))] = {usage, purpose, std::move(run)};
    }

    template <typename F>
    void AddCommand(const char* usage, const char* purpose, std::string (F::*method)(const Words&)) {
        AddCommand(usage, purpose,
                   [self = static_cast<F*>(this), method](const Words& w) { return (self->*method)(w); });
    }

  private:
    const WireFamily& mWire;
    FamilyAddress mAddress;
    std::multimap<int, Operation> mOperations;
    EventTable mEvents;
    std::map<std::string, Command> mCommands;
};

}  // namespace hbbtv::sim
