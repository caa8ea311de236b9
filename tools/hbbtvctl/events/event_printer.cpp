#include "events/event_printer.h"

#include <sys/time.h>

#include <cstdio>
#include <ctime>

#include "common/text/json.h"
#include "package/handles.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

uint64_t Microseconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1000000 + static_cast<uint64_t>(now.tv_nsec) / 1000;
}

std::string WallClock(uint64_t microseconds) {
    const time_t seconds = static_cast<time_t>(microseconds / 1000000);
    tm parts{};
    gmtime_r(&seconds, &parts);
    char day[40];
    std::strftime(day, sizeof(day), "%Y-%m-%dT%H:%M:%S", &parts);
    char text[64];
    std::snprintf(text, sizeof(text), "%s.%06uZ", day, static_cast<unsigned>(microseconds % 1000000));
    return text;
}

std::string Seconds(uint64_t microseconds) {
    char text[40];
    std::snprintf(text, sizeof(text), "%llu.%06u", static_cast<unsigned long long>(microseconds / 1000000),
                  static_cast<unsigned>(microseconds % 1000000));
    return text;
}

}  // namespace

Json::Value ZeroValue(const Type& type) {
    switch (type.kind) {
        case Type::Kind::Bool:
            return false;
        case Type::Kind::Real:
            return 0.0;
        case Type::Kind::Text:
            return "";
        case Type::Kind::Vector:
            return Json::Value(Json::arrayValue);
        case Type::Kind::Struct: {
            Json::Value fields(Json::objectValue);
            for (const Parameter& field : type.fields) fields[field.name] = ZeroValue(*field.type);
            return fields;
        }
        default:
            return 0;
    }
}

Json::Value EventPrinter::AnswerOf(const Interface& interface, const Method& method) const {
    const auto given = mSettings.answers.find(interface.name + "." + method.name);
    if (given != mSettings.answers.end()) return given->second;
    Json::Value answer(Json::arrayValue);
    for (const Parameter& result : method.results) answer.append(ZeroValue(*result.type));
    return answer;
}

Json::Value EventPrinter::Take(const char* interfaceName, const char* methodName, Json::Value arguments) {
    const uint64_t wall = Microseconds(CLOCK_REALTIME);
    const uint64_t monotonic = Microseconds(CLOCK_MONOTONIC);
    const Interface& interface = Package::Get().FindInterface(interfaceName);
    const Method& method = *interface.Find(methodName);
    Json::Value line(Json::objectValue);
    std::string text = WallClock(wall) + "  " + Seconds(monotonic) + "  " + interface.name + "." + method.name;
    Json::Value& named = line["arguments"] = Json::Value(Json::objectValue);
    for (Json::ArrayIndex i = 0; i < method.arguments.size(); ++i) {
        const Parameter& argument = method.arguments[i];
        named[argument.name] = ForPrograms(*argument.type, arguments[i], mSettings.numbers);
        text += " " + argument.name + "=" + ForPeople(*argument.type, arguments[i], IsHandle(argument));
    }
    line["interface"] = interface.name;
    line["method"] = method.name;
    line["wall_us"] = static_cast<Json::UInt64>(wall);
    line["monotonic_us"] = static_cast<Json::UInt64>(monotonic);
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mSettings.count != 0 && mTaken >= mSettings.count) return AnswerOf(interface, method);
    std::printf("%s\n", mSettings.json ? WriteJson(line).c_str() : text.c_str());
    // Stop waiting as well if the reader has gone.
    const bool read = std::fflush(stdout) == 0;
    if (++mTaken == mSettings.count || !read) mInterruption.Wake();
    return AnswerOf(interface, method);
}

}  // namespace hbbtv::ctl
