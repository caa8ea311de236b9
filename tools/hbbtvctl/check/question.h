// One request to a platform, and what its answer lacks.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/duration.h"
#include "common/failure.h"
#include "wire/connection.h"
#include "wire/protocol.h"

namespace hbbtv::ctl {

struct Question {
    enum class Outcome { Skipped, Right, Wrong };

    Question(const WireFamily& itsFamily, const Json::Value& itsOperation)
        : family(&itsFamily), operation(&itsOperation) {}

    const WireFamily* family;
    const Json::Value* operation;
    Outcome outcome = Outcome::Skipped;
    std::string reason{"not needed"};   // why it was skipped
    std::vector<std::string> findings;  // sentences
    ExitCode code = kDone;              // of the first finding
    Json::Value reply;                  // null if there is none
    double milliseconds = 0;

    bool OneWay() const { return (*operation)["form"] == "one-way"; }
    std::string Effect() const { return (*operation)["effect"].asString(); }
    std::string Name() const { return family->name + "." + (*operation)["name"].asString(); }
    void Find(ExitCode theCode, const std::string& finding);
};

// Sends requests to the sockets of a platform, with a connection for each family.
class Asker {
  public:
    Asker(std::string directory, Milliseconds limit) : mDirectory(std::move(directory)), mLimit(limit) {}

    // Sends the request with these values and records in the question what is wrong with the answer.
    void Ask(Question& question, const Json::Value& values);

    // Records messages that have arrived after the answers. Call it at the end.
    void Finish();

  private:
    struct Line {
        std::unique_ptr<WireConnection> connection;
        int silent = 0;            // requests without a reply, one after the other
        Question* last = nullptr;  // the last that was asked
        std::string unreachable;   // why no connection can be opened
    };

    void Exchange(Question& question, Line& line, const std::string& text);
    void Judge(Question& question, const Frame& frame);
    static void TakeUnasked(Line& line);

    const std::string mDirectory;
    const Milliseconds mLimit;
    std::map<std::string, Line> mLines;  // by family
};

}  // namespace hbbtv::ctl
