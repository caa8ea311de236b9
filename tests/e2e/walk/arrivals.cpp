// See arrivals.h.
#include "arrivals.h"

#include <json/writer.h>

#include <utility>

namespace hbbtv::test {

std::string Written(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

Arrivals& Arrivals::OfThisProcess() {
    static Arrivals arrivals;
    return arrivals;
}

void Arrivals::Answer(const std::string& method, Json::Value results) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mAnswers[method] = std::move(results);
}

std::optional<Json::Value> Arrivals::Next(const std::string& method) {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::vector<Json::Value>& calls = mCalls[method];
    if (calls.empty()) return std::nullopt;
    const Json::Value first = calls.front();
    calls.erase(calls.begin());
    return first;
}

void Arrivals::Forget() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mCalls.clear();
    mAnswers.clear();
}

std::vector<std::string> Arrivals::Rest() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    std::vector<std::string> texts;
    for (const auto& [method, calls] : mCalls) {
        for (const Json::Value& arguments : calls) texts.push_back(method + " " + Written(arguments));
    }
    return texts;
}

Json::Value Arrivals::Take(const char* interface, const char* method, Json::Value arguments) {
    const std::string name = std::string(interface) + "." + method;
    const std::lock_guard<std::mutex> lock(mMutex);
    mCalls[name].push_back(std::move(arguments));
    const auto answer = mAnswers.find(name);
    return answer == mAnswers.end() ? Json::Value(Json::arrayValue) : answer->second;
}

}  // namespace hbbtv::test
