// Runs a play: one statement after the other, until one fails.
#pragma once

#include <map>
#include <set>
#include <string>

#include "play/arrivals.h"
#include "play/coverage.h"
#include "play/display.h"
#include "play/language/script.h"
#include "play/language/values.h"
#include "play/peers.h"
#include "play/transcript.h"
#include "wire/endpoint.h"

namespace hbbtv::ctl {

class Player {
  public:
    struct Stage {
        Transcript& transcript;
        Display& display;
        Arrivals& arrivals;
        Peers& peers;
        Coverage& coverage;
        Milliseconds timeout;
    };

    Player(const Stage& stage, const std::map<std::string, Json::Value>& names);

    // Throws a Failure that begins with "FILE:LINE: " for the statement that fails, after the script's finally.
    void Run(const Script& script);

  private:
    void RunFinally(const Script& script, bool failed);
    void RunBlock(const std::vector<Statement>& statements);
    void RunStatement(const Statement& statement);
    void RunOne(const Statement& statement, StepReport& report);

    void Do(const TitleStep& step, StepReport& report);
    void Do(const PrintStep& step, StepReport& report);
    void Do(const CallStep& step, StepReport& report);
    void Do(const ServiceStep& step, StepReport& report);
    void Do(const TellStep& step, StepReport& report);
    void Do(const SendStep& step, StepReport& report);
    void Do(const EmitStep& step, StepReport& report);
    void Do(const AnswerStep& step, StepReport& report);
    void Do(const EventStep& step, StepReport& report);
    void Do(const NoEventStep& step, StepReport& report);
    void Do(const IgnoreStep& step, StepReport& report);
    void Do(const ShowStep& step, StepReport& report);
    void Do(const NameStep& step, StepReport& report);
    void Do(const LetStep& step, StepReport& report);
    void Do(const WaitStep& step, StepReport& report);
    void Do(const ForStep& step, StepReport& report);
    void Do(const QuietStep& step, StepReport& report);

    Arrival NextArrival(const EventStep& step, std::chrono::steady_clock::time_point deadline);
    void Exchange(const Endpoint& endpoint, const Json::Value& message, const std::optional<Expression>& pattern,
                  bool withReply, StepReport& report);
    Json::Value ValuesOf(const Expressions& expressions, const std::vector<Parameter>& parameters) const;
    Json::Value MembersOf(const Expression& members, const std::vector<Parameter>& parameters) const;
    std::string TextOf(const Format& format) const;

    const Stage mStage;
    Names mNames;
    std::string mFile;
    std::set<std::string> mCalled;  // interfaces
};

}  // namespace hbbtv::ctl
