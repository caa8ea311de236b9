// A test's own simulator: the real process in a directory of its own, requests to it by the names in protocol/, and the
// library's event sockets, which the test serves.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "child_process.h"
#include "named_message.h"
#include "raw_peers.h"
#include "scratch_directory.h"

namespace hbbtv::test {

// Five channels and a service outside the list:
//   1 One, 2 Two (with sound in two languages, a description and subtitles), 3 Scrambled, 4 Dark (no signal),
//   5 Locked; Hidden. The triplets are 1.1.<number>, Hidden is 1.1.9. All by satellite.
extern const std::string kSmallLineUp;

// The three of them that cannot be presented, for other line-ups with a network "sat".
extern const char* const kOddServices;

// Returns a television service by satellite with the triplet 1.1.<number>, and with these members besides.
std::string ServiceText(int number, const std::string& name, const std::string& members = "");

// Returns a line-up of these services by satellite.
std::string LineUpText(const std::string& services);

// Returns a line-up of `count` services by satellite, S1, S2 and so on, with the triplets 1.1.<number>.
std::string LineUpOf(int count);

class SimulatorFixture : public testing::Test {
  protected:
    // Starts the program with the line-up of the test (mLineUp), a tune time of 0 and these options, waits until it is
    // ready, and serves the events of video/broadcast objects and of all families served before.
    void Start(const std::vector<std::string>& options = {});
    void StartRemembering() { Start({"--state", StateDirectory()}); }

    // Ends the program and starts it with the same options.
    void Restart();

    // Starts the program with these options only, without waiting for it.
    std::unique_ptr<ChildProcess> Launch(const std::vector<std::string>& options);

    struct Outcome {
        int exitCode;
        std::string output;
    };

    // Runs the program to its end.
    Outcome Run(const std::vector<std::string>& options);

    // Expects that the program ends by itself with this exit code and prints this among others.
    void ExpectEnd(const std::vector<std::string>& options, int exitCode, const std::string& text);

    // Ends the program by SIGTERM and returns its exit code.
    int Stop();

    // Sends a command as the viewer or the broadcaster and returns the first line of the answer: "ok" or the result.
    std::string Tell(const std::string& line);

    // Expects that the program has written the text so many times, waiting for the last one.
    void ExpectSaid(const std::string& text, int times) const;

    // form is for an operation about an object, whose handle is the operation's first member.

    // Returns the reply, which is either complete or a failure.
    Json::Value Ask(const std::string& operation, const Members& members = {});
    Json::Value AskOf(const std::string& object, const std::string& operation, const Members& members = {}) {
        return Ask(operation, WithObject(object, operation, members));
    }

    int Ret(const std::string& operation, const Members& members = {}) {
        return Ask(operation, members)["ret"].asInt();
    }
    int RetOf(const std::string& object, const std::string& operation, const Members& members = {}) {
        return AskOf(object, operation, members)["ret"].asInt();
    }

    // Expects success and returns the only result.
    Json::Value Get(const std::string& operation, const Members& members = {});
    Json::Value GetOf(const std::string& object, const std::string& operation, const Members& members = {}) {
        return Get(operation, WithObject(object, operation, members));
    }

    // Likewise for a handle or any other string. The null handle is empty.
    std::string Handle(const std::string& operation, const Members& members = {});
    std::string HandleOf(const std::string& object, const std::string& operation, const Members& members = {}) {
        return Handle(operation, WithObject(object, operation, members));
    }

    // Expects that each operation of a JSON object returns its value as the only result: {"GetName": "One"}.
    void ExpectValues(const std::string& object, const std::string& values);
    void ExpectValues(const std::string& values);

    // Expects that each operation takes its value, its only member besides the object: {"SetName": "One"}.
    void ExpectTaken(const std::string& object, const std::string& values);
    void ExpectTaken(const std::string& values);

    // Sends a one-way request. Later requests to the family come after it.
    void Send(const std::string& operation, const Members& members = {});
    void SendOf(const std::string& object, const std::string& operation, const Members& members = {}) {
        Send(operation, WithObject(object, operation, members));
    }

    // Requests that protocol/ does not allow: members of any name, a code that no operation has, any text. Each but the
    // one-way form gets a reply.
    Json::Value AskRaw(const std::string& operation, const Members& members);
    void SendRaw(const std::string& operation, const Members& members);
    Json::Value AskCode(const std::string& family, const Json::Value& code, const Members& members = {});
    Json::Value AnswerTo(const std::string& family, const std::string& text);

    // Returns those of the members that the operation has.
    Members Fitting(const std::string& operation, const Members& members) const;

    // Expects that each operation refuses each object. Of the members, an operation gets those that it has.
    void ExpectRefused(const std::vector<std::string>& operations, const std::vector<std::string>& objects,
                       const Members& members = {});
    // Likewise without an object.
    void ExpectRequestsRefused(const std::vector<std::string>& operations, const Members& members = {});

    // Expects that the family refuses all codes around those of its operations, also for an object of its own.
    void ExpectOtherCodesRefused(const std::string& family, const std::string& object = "", Members members = {});

    std::string RequestText(const std::string& operation, const Members& members) const;
    std::string RequestSocket(const std::string& family = "video_broadcast") const;
    static int RequestPort(const std::string& family = "video_broadcast");

    // Returns the connection for a family's requests, which is made when it is first used.
    RawClient& ClientOf(const std::string& family = "video_broadcast");
    void CloseConnections() { mClients.clear(); }

    void ServeEvents(const std::string& family = "video_broadcast");
    void StopServingEvents(const std::string& family = "video_broadcast") { mLibraries.erase(family); }
    LibraryStandIn& LibraryOf(const std::string& family) { return *mLibraries.at(family); }
    std::string EventSocket(const std::string& family = "video_broadcast") const;

    // Returns the next event, with a failure when none comes.
    Event NextEventOf(const std::string& family);

    std::string StateDirectory() const { return mDirectory / "state"; }

    ScratchDirectory mDirectory;
    std::string mFamily = "video_broadcast";
    std::string mLineUp = kSmallLineUp;
    std::unique_ptr<ChildProcess> mSimulator;

  private:
    std::string RawText(const std::string& operation, const Members& members) const;
    Operation Named(const std::string& operation) const;
    Members WithObject(const std::string& object, const std::string& operation, Members members) const;

    std::vector<std::string> mOptions;                                  // of the last Start()
    std::map<std::string, std::unique_ptr<RawClient>> mClients;         // by family
    std::map<std::string, std::unique_ptr<LibraryStandIn>> mLibraries;  // by family
};

std::string ContentOf(const std::string& path);
void WriteFile(const std::string& path, const std::string& text);

}  // namespace hbbtv::test
