#include "events/event_printer.h"

#include <cstdio>

#include "common/text/json.h"
#include "common/time_stamp.h"
#include "package/handles.h"
#include "wire/values.h"

namespace hbbtv::ctl {

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
    const TimeStamp now;
    const Interface& interface = Package::Get().FindInterface(interfaceName);
    const Method& method = *interface.Find(methodName);
    const std::set<std::string>& shown = mSettings.shown;
    if (!shown.empty() && shown.count(method.name) == 0) return AnswerOf(interface, method);
    Json::Value line(Json::objectValue);
    std::string text = now.Text() + "  " + interface.name + "." + method.name;
    Json::Value& named = line["arguments"] = Json::Value(Json::objectValue);
    for (Json::ArrayIndex i = 0; i < method.arguments.size(); ++i) {
        const Parameter& argument = method.arguments[i];
        named[argument.name] = ForPrograms(*argument.type, arguments[i], mSettings.numbers);
        text += " " + argument.name + "=" + ForPeople(*argument.type, arguments[i], IsHandle(argument));
    }
    line["interface"] = interface.name;
    line["method"] = method.name;
    now.AddTo(line);
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mSettings.count != 0 && mTaken >= mSettings.count) return AnswerOf(interface, method);
    std::printf("%s\n", mSettings.json ? WriteJson(line).c_str() : text.c_str());
    // Stop waiting as well if the reader has gone.
    const bool read = std::fflush(stdout) == 0;
    if (++mTaken == mSettings.count || !read) mInterruption.Wake();
    return AnswerOf(interface, method);
}

}  // namespace hbbtv::ctl
