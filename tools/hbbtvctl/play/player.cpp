#include "play/player.h"

#include <utility>

#include "common/duration.h"
#include "common/failure.h"
#include "common/interruption.h"
#include "common/text/json.h"
#include "common/text/quote.h"
#include "wire/endpoint.h"
#include "wire/message.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr Milliseconds kBetweenAttempts{5};

// A failure whose message already begins with its place.
class PlacedFailure : public Failure {
  public:
    using Failure::Failure;
};

[[noreturn]] void Unexpected(const std::string& expected, const std::string& came) {
    throw Failure(kUnexpected, "expected: " + expected + "\n  got:      " + came);
}

Milliseconds Left(Clock::time_point deadline) {
    const auto left = std::chrono::ceil<Milliseconds>(deadline - Clock::now());
    return std::max(left, Milliseconds(0));
}

Json::Value ByName(const std::vector<Parameter>& parameters, const Json::Value& values) {
    Json::Value named(Json::objectValue);
    for (Json::ArrayIndex i = 0; i < parameters.size(); ++i) {
        named[parameters[i].name] = ForPrograms(*parameters[i].type, values[i], false);
    }
    return named;
}

// The values of a call, in the syntax of plays.
std::string Listed(const std::vector<Parameter>& parameters, const Json::Value& values) {
    std::string text;
    for (Json::ArrayIndex i = 0; i < parameters.size(); ++i) {
        const Type& type = *parameters[i].type;
        const Json::Value value = ForPrograms(type, values[i], true);
        const bool isText = type.kind == Type::Kind::Text;
        text += (i == 0 ? "" : ", ") + (isText ? ForPeople(type, values[i], false) : WriteJson(value));
    }
    return text;
}

}  // namespace

Player::Player(const Stage& stage, const std::map<std::string, Json::Value>& names) : mStage(stage) {
    for (const auto& [name, value] : names) mNames.Set(name, value);
}

void Player::Run(const Script& script) {
    mFile = script.file;
    mStage.arrivals.Forget();
    mStage.display.Forget();
    std::optional<PlacedFailure> failure;
    try {
        RunBlock(script.body);
    } catch (const PlacedFailure& e) {
        failure = e;
    }
    const bool reachable = !failure || failure->Code() == kUnexpected || failure->Code() == kInterrupted ||
                           failure->Code() == kUsage;  // another client is registered
    if (reachable) RunFinally(script, failure.has_value());
    if (failure) throw PlacedFailure(*failure);
}

// After a failure some names may be unbound, so lines that fail are skipped.
void Player::RunFinally(const Script& script, bool failed) {
    for (const Statement& statement : script.finally) {
        try {
            RunStatement(statement);
        } catch (const PlacedFailure& e) {
            if (!failed) throw;
            if (e.Code() != kUnexpected) return;
        }
    }
}

void Player::RunBlock(const std::vector<Statement>& statements) {
    for (const Statement& statement : statements) RunStatement(statement);
}

void Player::RunStatement(const Statement& statement) {
    const std::string place = mFile + ":" + std::to_string(statement.line) + ": ";
    try {
        // The statements of a block are separate steps.
        StepReport report;
        if (const auto* loop = std::get_if<ForStep>(&statement.action)) return Do(*loop, report);
        if (const auto* quiet = std::get_if<QuietStep>(&statement.action)) return Do(*quiet, report);
        RunOne(statement, report);
    } catch (const PlacedFailure&) {
        throw;
    } catch (const Failure& e) {
        throw PlacedFailure(e.Code(), place + statement.text + "\n  " + e.what());
    } catch (const BadValue& e) {
        throw PlacedFailure(kUnexpected, place + statement.text + "\n  " + e.what());
    } catch (const Interrupted&) {
        throw PlacedFailure(kInterrupted, place + "interrupted");
    }
}

void Player::RunOne(const Statement& statement, StepReport& report) {
    report.file = mFile;
    report.line = statement.line;
    report.keyword = statement.keyword;
    mStage.transcript.Begin();
    try {
        std::visit([&](const auto& step) { Do(step, report); }, statement.action);
    } catch (const Failure& e) {
        report.failure = e;
        mStage.transcript.End(report);
        throw;
    } catch (const BadValue& e) {
        report.failure = Failure(kUnexpected, e.what());
        mStage.transcript.End(report);
        throw;
    } catch (const Interrupted&) {
        report.failure = Failure(kInterrupted, "interrupted");
        mStage.transcript.End(report);
        throw;
    }
    mStage.transcript.End(report);
}

void Player::Do(const TitleStep& step, StepReport& report) {
    const std::string text = TextOf(step.text);
    report.details["text"] = text;
    mStage.transcript.Title(text);
}

void Player::Do(const PrintStep& step, StepReport& report) {
    const std::string text = TextOf(step.text);
    report.details["text"] = text;
    mStage.transcript.Print(text);
}

void Player::Do(const CallStep& step, StepReport& report) {
    const std::vector<Parameter>& parameters = step.called.method->results;
    const Json::Value arguments = ValuesOf(step.arguments, step.called.method->arguments);
    if (Listens(arguments)) {
        mStage.peers.CheckOtherClients(step.called);
        mStage.transcript.Begin();  // the time of the step is that of the call
    }
    const auto deadline = Clock::now() + step.within.value_or(mStage.timeout);
    report.asked = mStage.display.Call(step, arguments);
    report.details["method"] = step.called.Name();
    int attempts = 0;
    // The library finds out by a request, which fails, that the platform has been restarted since the last one.
    bool mayBeDisconnected = mCalled.insert(step.called.interface->name).second;
    while (true) {
        const Json::Value results = mStage.peers.Call(step.called, arguments);
        report.answered = mStage.display.Results(step.called, results);
        report.details["results"] = ByName(parameters, results);
        report.details["attempts"] = ++attempts;
        const bool fits = step.results ? Match(*step.results, results, parameters, mNames)
                                       : StatusOf(*step.called.method, results) == 0;
        if (fits) break;
        if (std::exchange(mayBeDisconnected, false) && StatusOf(*step.called.method, results) == -1) continue;
        if (!step.until || Clock::now() >= deadline) {
            Unexpected(step.results ? Shown(*step.results, mNames) : "status 0", Listed(parameters, results));
        }
        mStage.arrivals.Wait(kBetweenAttempts);
    }
    mStage.coverage.Called(step.called);
}

void Player::Do(const ServiceStep& step, StepReport& report) {
    const auto deadline = Clock::now() + step.within.value_or(mStage.timeout);
    report.asked = "until " + step.interface->name;
    report.answered = "registered";
    while (!mStage.peers.Has(*step.interface)) {
        if (Clock::now() >= deadline) {
            throw Failure(kUnavailable, "no process has registered " + step.interface->name + " in " + HostDirectory() +
                                            "; start the service with the same TMPDIR");
        }
        mStage.arrivals.Wait(kBetweenAttempts);
    }
}

void Player::Do(const TellStep& step, StepReport& report) {
    const std::string command = TextOf(step.command);
    const std::string expected = step.answer ? TextOf(*step.answer) : "ok...";
    const auto deadline = Clock::now() + mStage.timeout;
    report.asked = "tell " + command;
    while (true) {
        report.answered = mStage.peers.Tell(command);
        report.details["answer"] = report.answered;
        if (MatchText(expected, report.answered)) return;
        if (!step.until || Clock::now() >= deadline) Unexpected(expected, report.answered);
        mStage.arrivals.Wait(kBetweenAttempts);
    }
}

void Player::Exchange(const Endpoint& endpoint, const Json::Value& message, const std::optional<Expression>& pattern,
                      bool withReply, StepReport& report) {
    const Json::Value reply = mStage.peers.Exchange(endpoint.socket, endpoint.port, message, withReply);
    report.answered = withReply ? WriteJson(reply) : "sent";
    report.details["reply"] = reply;
    if (!withReply) {
        if (pattern) Unexpected(Shown(*pattern, mNames), "no reply: the operation is one-way");
    } else if (pattern) {
        if (!Match(*pattern, reply, nullptr, mNames)) Unexpected(Shown(*pattern, mNames), WriteJson(reply));
    } else if (!reply.isObject() || reply["ret"] != 0) {
        Unexpected("\"ret\" 0", WriteJson(reply));
    }
}

void Player::Do(const SendStep& step, StepReport& report) {
    const Json::Value members = MembersOf(step.members, WireArguments((*step.operation)["request"]));
    const std::string name = step.family->name + "." + (*step.operation)["name"].asString();
    report.asked = "send " + name + " " + WriteJson(members);
    report.details["operation"] = name;
    const bool withReply = (*step.operation)["form"] != "one-way";
    Exchange(RequestsOf(*step.family), MakeRequest(*step.family, *step.operation, members), step.reply, withReply,
             report);
}

void Player::Do(const EmitStep& step, StepReport& report) {
    const Json::Value members = MembersOf(step.members, WireArguments(EventMembers(*step.family, *step.event)));
    report.asked = "emit " + step.family->name + " " + (*step.event)["name"].asString() + " " + WriteJson(members);
    report.details["event"] = step.family->name + " " + (*step.event)["code"].asString();
    Exchange(EventsOf(*step.family), MakeEvent(*step.family, *step.event, members), step.reply, step.reply.has_value(),
             report);
    mStage.coverage.Saw(*step.family, *step.event);
}

void Player::Do(const AnswerStep& step, StepReport&) {
    mStage.arrivals.Answer(step.answered.Name(), ValuesOf(step.results, step.answered.method->results));
}

Arrival Player::NextArrival(const EventStep& step, Clock::time_point deadline) {
    const std::string method = step.which == EventStep::Which::NextOfAll ? "" : step.method.Name();
    while (true) {
        if (const auto arrival = mStage.arrivals.Take(method)) return *arrival;
        if (Clock::now() >= deadline) {
            Unexpected(step.method.Name() + "(" + Shown(step.arguments, mNames) + ")",
                       "nothing of it within " + FormatDuration(step.within.value_or(mStage.timeout)));
        }
        mStage.arrivals.Wait(Left(deadline));
    }
}

void Player::Do(const EventStep& step, StepReport& report) {
    const auto deadline = Clock::now() + step.within.value_or(mStage.timeout);
    const std::vector<Parameter>& parameters = step.method.method->arguments;
    report.details["method"] = step.method.Name();
    while (true) {
        const Arrival arrival = NextArrival(step, deadline);
        const bool same = arrival.method == step.method.Name();
        if (same) report.details["arguments"] = ByName(parameters, arrival.arguments);
        if (same && Match(step.arguments, arrival.arguments, parameters, mNames)) break;
        if (step.which == EventStep::Which::AmongOthers) continue;
        const auto [interface, method] = Package::Get().FindMethod(arrival.method);
        Unexpected(step.method.Name() + "(" + Shown(step.arguments, mNames) + ")",
                   arrival.method + "(" + Listed(method->arguments, arrival.arguments) + ")");
    }
    if (step.event != nullptr) mStage.coverage.Saw(*step.family, *step.event);
}

void Player::Do(const NoEventStep& step, StepReport&) {
    const auto arrival = mStage.arrivals.First(step.method);
    if (!arrival) return;
    const auto [interface, method] = Package::Get().FindMethod(arrival->method);
    Unexpected("no event", arrival->method + "(" + Listed(method->arguments, arrival->arguments) + ")");
}

void Player::Do(const IgnoreStep& step, StepReport&) {
    mStage.arrivals.Ignore(step.method);
}

void Player::Do(const ShowStep& step, StepReport&) {
    mStage.display.Show(step.method, step.text);
}

void Player::Do(const NameStep& step, StepReport&) {
    const Json::Value value = Evaluate(step.value, mNames);
    if (!value.isIntegral()) throw Failure(kUnexpected, "only handles can be given names, not " + WriteJson(value));
    mStage.display.Name(value.asInt64(), TextOf(step.text));
}

void Player::Do(const LetStep& step, StepReport&) {
    mNames.Set(step.name, Evaluate(step.value, mNames));
}

void Player::Do(const WaitStep& step, StepReport& report) {
    report.asked = "wait " + FormatDuration(step.time);
    report.answered = "done";
    const auto deadline = Clock::now() + step.time;
    while (Clock::now() < deadline) mStage.arrivals.Wait(Left(deadline));
}

void Player::Do(const ForStep& step, StepReport&) {
    const auto once = [&](const Json::Value& value) {
        mNames.Begin();
        if (!Match(step.pattern, value, nullptr, mNames)) Unexpected(Shown(step.pattern, mNames), WriteJson(value));
        RunBlock(step.body);
        mNames.End();
    };
    if (step.list) {
        const Json::Value list = Evaluate(*step.list, mNames);
        if (!list.isArray()) Unexpected("a list", WriteJson(list));
        for (const Json::Value& value : list) once(value);
        return;
    }
    const Json::Value from = Evaluate(step.from, mNames);
    const Json::Value below = Evaluate(step.below, mNames);
    if (!from.isIntegral() || !below.isIntegral()) Unexpected("integers", WriteJson(from) + ", " + WriteJson(below));
    for (int64_t i = from.asInt64(); i < below.asInt64(); ++i) once(static_cast<Json::Int64>(i));
}

void Player::Do(const QuietStep& step, StepReport&) {
    mStage.transcript.BeginQuiet();
    RunBlock(step.body);
    mStage.transcript.EndQuiet();
}

Json::Value Player::ValuesOf(const Expressions& expressions, const std::vector<Parameter>& parameters) const {
    Json::Value values(Json::arrayValue);
    for (size_t i = 0; i < expressions.size(); ++i) {
        try {
            values.append(FromJsonValue(*parameters[i].type, Evaluate(expressions[i], mNames)));
        } catch (const BadValue& e) {
            throw BadValue("\"" + parameters[i].name + "\": " + e.what());
        }
    }
    return values;
}

Json::Value Player::MembersOf(const Expression& members, const std::vector<Parameter>& parameters) const {
    const Json::Value given = Evaluate(members, mNames);
    Json::Value values(Json::objectValue);
    for (const Parameter& parameter : parameters) {
        if (given.isMember(parameter.name))
            values[parameter.name] = FromJsonValue(*parameter.type, given[parameter.name]);
    }
    return values;
}

std::string Player::TextOf(const Format& format) const {
    const auto valueOf = [this](const std::string& name) {
        const Json::Value* value = mNames.Find(name);
        if (value == nullptr)
            throw Failure(kUnexpected, "$" + name + " has no value: the line that binds it did not run");
        return *value;
    };
    return Filled(format, valueOf, [this](int64_t handle) { return mStage.display.NameOf(handle); });
}

}  // namespace hbbtv::ctl
