// What one family of platform objects is to the core: where it lives, which operations it answers, and which commands
// the person at the television has for it. A family is a class derived from Family whose constructor lists its rows.
#pragma once

#include <json/value.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "family/arguments.h"

namespace hbbtv::sim {

struct FamilyAddress {
    std::string name;           // as in --fault and in the tell commands
    std::string requestSocket;  // served by the simulator
    std::string eventSocket;    // served by the library; empty when the family sends no events
    int port;                   // in the header of its events
    std::string codeMember;     // the member that holds the operation's code: "method", or "t"
    std::optional<int> type;    // the member "type" of its requests, for the families that have one
};

// Fills the reply; a reply without "ret" gets 0. Throws Refused to answer -1.
using Handler = std::function<void(const Arguments&, Json::Value& reply)>;

struct Operation {
    std::string name;
    Handler handler;
};

// Those behind a command's name.
using Words = std::vector<std::string>;

// Something that happens at the television and not by a request: the viewer zaps, the aerial falls. The function
// returns the answer; it throws WrongWords(), or Refused when the command makes no sense now.
struct Command {
    std::string usage;  // "zap next|previous|NUMBER"
    std::string purpose;
    std::function<std::string(const Words& words)> run;
};

// Where a family's events go.
class EventSink {
  public:
    virtual ~EventSink() = default;

    // `name` is for the trace.
    virtual void Send(const std::string& name, const Json::Value& event) = 0;

    // The same with a reply, which the function gets later: null when there was none. The function must not throw.
    virtual void SendAndWait(const std::string& name, const Json::Value& event,
                             std::function<void(const Json::Value& reply)> onReply) = 0;
};

class Family {
  public:
    virtual ~Family() = default;
    Family(const Family&) = delete;
    Family& operator=(const Family&) = delete;

    const FamilyAddress& Address() const { return mAddress; }
    const std::map<int, Operation>& Operations() const { return mOperations; }
    const std::map<std::string, Command>& Commands() const { return mCommands; }

  protected:
    using In = const Arguments&;
    using Out = Json::Value&;

    explicit Family(FamilyAddress address) : mAddress(std::move(address)) {}

    // One row of the family's table.
    void Row(int code, const char* name, Handler handler) { mOperations[code] = {name, std::move(handler)}; }

    template <typename F>
    void Row(int code, const char* name, void (F::*method)(In, Out)) {
        Row(code, name, [self = static_cast<F*>(this), method](In in, Out out) { (self->*method)(in, out); });
    }

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
    FamilyAddress mAddress;
    std::map<int, Operation> mOperations;
    std::map<std::string, Command> mCommands;
};

}  // namespace hbbtv::sim
