// What an endpoint of the wire is doing and has done. The classes that work for it report here; debug, the watcher and
// the log read it. A lock is held only to change or to copy some numbers, so it can be read while everything hangs.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ipc/tolm_ipc_types.h"

namespace tolm {

// Thread-safe.
class EndpointStatus {
  public:
    using Clock = std::chrono::steady_clock;

    // What a request is for, from its row. Code -1 if it is not known; the name is a literal.
    struct Operation {
        int code = -1;
        const char* name = "";
    };

    // A request that waits for its reply, a one-way message that is being written, or an event that is being handled.
    struct Open {
        uint64_t number = 0;  // counts those of the endpoint
        Operation operation;  // not of an event
        pid_t caller = 0;     // not of an event: the client's process, this one, or 0
        Clock::time_point since;
        bool reported = false;  // see TakeOverdue()
    };

    struct Error {
        std::string text;
        std::chrono::system_clock::time_point time;
    };

    struct State {
        std::optional<Open> open;
        pid_t peer = 0;              // of an endpoint that the platform serves: the connected process, or 0
        size_t connections = 0;      // that are open
        uint64_t connected = 0;      // since the start, successfully
        std::optional<Error> error;  // the last one

        // Of an endpoint that the platform serves.
        std::vector<pid_t> waiting;        // callers that wait for their turn
        std::optional<Open> sending;       // a one-way message
        std::vector<pid_t> waitingToSend;  // callers that wait for it
        uint64_t answered = 0;
        uint64_t failed = 0;  // not sent, not answered, or refused
        uint64_t oneWay = 0;  // sent

        // Of an endpoint that this library serves.
        std::vector<pid_t> clients;  // processes, one entry for each registered callback
        size_t events = 0;           // that wait for one that is being handled
        uint64_t received = 0;
        uint64_t sent = 0;     // calls of clients that returned
        uint64_t dropped = 0;  // events that no client received
        uint64_t refused = 0;  // messages that are not events
    };

    // Returns the status of a key's endpoint, which is never destroyed. Unknown keys share one.
    static EndpointStatus& Of(TolmIpcKeyId key);

    State Get() const;

    // Returns whether a request, a one-way message or an event is open.
    bool IsOpen() const;

    // Of the connections.
    void Connected(pid_t peer);
    void Disconnected();
    void SetError(const std::string& text);

    enum class Form { kWithReply, kOneWay };

    // A request or a one-way message, which has ended when this is destroyed.
    class Request {
      public:
        Request(EndpointStatus& status, const Operation& operation, pid_t caller, Form form = Form::kWithReply)
            : mStatus(status),
              mOpen(form == Form::kOneWay ? status.mState.sending : status.mState.open),
              mWaiting(form == Form::kOneWay ? status.mState.waitingToSend : status.mState.waiting),
              mOperation(operation),
              mCaller(caller),
              mForm(form) {}
        ~Request();
        Request(const Request&) = delete;
        Request& operator=(const Request&) = delete;

        // It is not its turn yet.
        void Waits();

        // Its turn has begun.
        void Begin(Clock::time_point now);

        // A valid reply has come, or the one-way message is written.
        void Succeeded() { mSucceeded = true; }

      private:
        EndpointStatus& mStatus;
        std::optional<Open>& mOpen;    // guarded by mMutex of mStatus
        std::vector<pid_t>& mWaiting;  // guarded by mMutex of mStatus
        const Operation mOperation;
        const pid_t mCaller;
        const Form mForm;
        bool mWaits = false;
        uint64_t mNumber = 0;  // 0: its turn has not begun
        bool mSucceeded = false;
    };

    // An event that is being handled on this thread. Counts as dropped unless a client receives it.
    class Event {
      public:
        explicit Event(EndpointStatus& status);
        ~Event();
        Event(const Event&) = delete;
        Event& operator=(const Event&) = delete;

        // An event on behalf of which a thread works.
        struct Reference {
            EndpointStatus* status = nullptr;
            uint64_t number = 0;
        };

        // Returns the event of this thread; its status is null if there is none.
        static Reference OfThisThread();
        // Lets this thread, which has none, work for an event of another one, which may have ended.
        static void WorkFor(const Reference& event);

        // A client of the event of this thread, if any, has received it, or has not.
        static void Received();
        static void NotReceived(const std::string& why);

      private:
        EndpointStatus& mStatus;
        uint64_t mSentBefore;
    };

    // Events that wait for the one that is being handled.
    void EventWaits();
    void EventWaitsNoMore();

    // A message that is not an event. It becomes the last error.
    void Refused(const std::string& why);

    // The callbacks that are registered.
    void AddClient(pid_t process);
    void RemoveClient(pid_t process);

    // Returns a copy if that member has been open since `before` or longer and this has not been returned yet.
    std::optional<State> TakeOverdue(std::optional<Open> State::*member, Clock::time_point before);

  private:
    EndpointStatus() = default;

    void SetErrorLocked(const std::string& text);

    mutable std::mutex mMutex;
    State mState;          // guarded by mMutex
    uint64_t mNumber = 0;  // guarded by mMutex
};

}  // namespace tolm
