#include "check/question.h"

#include <chrono>

#include "common/text/json.h"
#include "common/text/quote.h"
#include "wire/check.h"
#include "wire/endpoint.h"
#include "wire/message.h"

namespace hbbtv::ctl {

namespace {

// A family that leaves this many requests unanswered is not asked again.
constexpr int kMostSilent = 3;
constexpr size_t kLongestStart = 60;

}  // namespace

void Question::Find(ExitCode theCode, const std::string& finding) {
    if (findings.empty()) code = theCode;
    outcome = Outcome::Wrong;
    findings.push_back(finding);
}

void Asker::Ask(Question& question, const Json::Value& values) {
    Line& line = mLines[question.family->name];
    TakeUnasked(line);
    if (!line.unreachable.empty() || line.silent == kMostSilent) {
        question.reason = line.unreachable.empty() ? "the family does not reply" : line.unreachable;
        return;
    }
    const Json::Value request = MakeRequest(*question.family, *question.operation, values);
    question.outcome = Question::Outcome::Right;
    line.last = &question;
    const auto begin = std::chrono::steady_clock::now();
    try {
        Exchange(question, line, WireText(request));
    } catch (const Failure& e) {
        // A late reply must not be taken for that of the next request.
        if (line.connection == nullptr) line.unreachable = "the family cannot be reached";
        line.connection.reset();
        line.silent += e.Code() == kTimeout ? 1 : 0;
        question.Find(e.Code(), e.what());
    }
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
    question.milliseconds = took.count();
}

void Asker::Exchange(Question& question, Line& line, const std::string& text) {
    const Endpoint endpoint = RequestsOf(*question.family);
    if (line.connection == nullptr) {
        line.connection = std::make_unique<WireConnection>(PathOf(mDirectory, endpoint));
    }
    line.connection->Send(Encode({question.OneWay() ? kOneWay : kRequest, endpoint.port, text}), mLimit);
    if (question.OneWay()) return;
    const Frame frame = line.connection->Receive(mLimit);
    line.silent = 0;
    if (frame.type != kReply) {
        question.Find(kInvalidReply, "the message has type " + std::to_string(frame.type) + ": expected 3, a reply");
    }
    if (frame.port != endpoint.port) {
        question.Find(kInvalidReply, "the reply has port " + std::to_string(frame.port) + ": expected " +
                                         std::to_string(endpoint.port) + ", as the request");
    }
    Judge(question, frame);
}

void Asker::Judge(Question& question, const Frame& frame) {
    if (frame.payload.empty()) return question.Find(kInvalidReply, "the reply is empty: expected a JSON object");
    Json::Value reply;
    try {
        reply = ParseJson(frame.payload);
    } catch (const BadJson& e) {
        return question.Find(kInvalidReply, std::string("the reply is ") + e.what() + "; it begins " +
                                                Quoted(frame.payload.substr(0, kLongestStart)));
    }
    const std::vector<std::string> problems = CheckReply(*question.operation, reply);
    for (const std::string& problem : problems) question.Find(kInvalidReply, problem);
    if (reply.isObject()) question.reply = reply;
}

void Asker::TakeUnasked(Line& line) {
    if (line.connection == nullptr || line.last == nullptr) return;
    try {
        const Frame frame = line.connection->Receive(Milliseconds(0));
        line.connection.reset();
        line.last->Find(kInvalidReply, std::string("another message follows ") +
                                           (line.last->OneWay() ? "a one-way message" : "the reply") + "; it begins " +
                                           Quoted(frame.payload.substr(0, kLongestStart)));
    } catch (const Failure& e) {
        if (e.Code() == kTimeout) return;
        line.connection.reset();
        line.last->Find(e.Code(), "the connection ends after the reply: expected it to stay open");
    }
}

void Asker::Finish() {
    for (auto& [family, line] : mLines) TakeUnasked(line);
}

}  // namespace hbbtv::ctl
