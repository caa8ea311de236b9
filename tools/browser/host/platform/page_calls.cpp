#include "platform/page_calls.h"

#include <memory>
#include <mutex>
#include <thread>

#include "common/text/json.h"

namespace hbbtv::browser {

namespace {

Json::Value Error(const std::string& text) {
    Json::Value answer;
    answer["error"] = text;
    return answer;
}

Json::Value Results(const Json::Value& results) {
    Json::Value answer;
    answer["results"] = results;
    return answer;
}

}  // namespace

// The calls of one request. The thread owns it together with the timer.
struct PageCalls::Batch {
    Json::Value calls;
    std::mutex mutex;
    Json::Value answers{Json::arrayValue};  // guarded by mutex; null: none yet
    bool answered = false;                  // guarded by mutex

    // Returns all answers, the first time.
    std::string TakeAnswers() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (answered) return "";
        answered = true;
        Json::Value document;
        for (const Json::Value& answer : answers)
            document["answers"].append(answer.isNull() ? Error("timeout") : answer);
        return WriteJson(document);
    }

    bool Answered() {
        const std::lock_guard<std::mutex> lock(mutex);
        return answered;
    }

    void Set(Json::ArrayIndex call, const Json::Value& answer) {
        const std::lock_guard<std::mutex> lock(mutex);
        answers[call] = answer;
    }
};

void PageCalls::Make(const std::string& request, const HostCall& hostCall, const OnMade& onMade,
                     const OnAnswer& onAnswer) {
    const auto batch = std::make_shared<Batch>();
    try {
        batch->calls = ParseJson(request)["calls"];
    } catch (const std::exception&) {
    }
    if (!batch->calls.isArray() || batch->calls.empty()) return onAnswer("");
    for (const Json::Value& call : batch->calls) {
        if (!call.isObject()) return onAnswer("");
        batch->answers.append(call["host"].isString() ? Results(hostCall(call["host"].asString(), call["arguments"]))
                                                      : Json::Value());
    }
    const auto answer = [batch, onAnswer] {
        const std::string text = batch->TakeAnswers();
        if (!text.empty()) onAnswer(text);
    };
    mLoop.After(mLimit, answer);
    // May run longer than this object, but not than platform and loop, which are not destroyed.
    std::thread([&platform = mPlatform, &loop = mLoop, batch, onMade, answer] {
        std::vector<MadeCall> made;
        for (Json::ArrayIndex i = 0; i < batch->calls.size() && !batch->Answered(); ++i) {
            const Json::Value& call = batch->calls[i];
            if (call["host"].isString()) continue;
            const std::string method = call["method"].isString() ? call["method"].asString() : "";
            const Json::Value arguments = call["arguments"].isObject() ? call["arguments"] : Json::objectValue;
            const CallResult result = platform.Call(method, arguments);
            batch->Set(i, result.error.empty() ? Results(result.results) : Error(result.error));
            if (result.Ok()) made.push_back({method, arguments, result.results});
        }
        loop.Post([made, onMade, answer] {
            onMade(made);
            answer();
        });
    }).detach();
}

}  // namespace hbbtv::browser
