#include "play/display.h"

#include "common/text/quote.h"
#include "package/handles.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

std::string HandleText(int64_t handle) {
    return ForPeople(*MakeType("int64_t"), Json::Value(static_cast<Json::Int64>(handle)), true);
}

}  // namespace

void Display::Name(int64_t handle, const std::string& name) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mNames[handle] = name;
}

void Display::Show(const std::string& method, const Format& text) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mShown[method] = text;
}

void Display::Forget() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mNames.clear();
    mShown.clear();
}

std::string Display::NameOf(int64_t handle) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mNames.find(handle);
    return found == mNames.end() ? "" : found->second;
}

std::string Display::Value(const Parameter& parameter, const Json::Value& value) const {
    if (IsHandle(parameter) && value.isIntegral()) {
        const std::string name = NameOf(value.asInt64());
        if (!name.empty()) return OneLine(name) + " (" + HandleText(value.asInt64()) + ")";
    }
    if (value.isString()) {
        const std::string line = OneLine(value.asString());
        return Quoted(line) + (line.size() < value.asString().size() ? "..." : "");
    }
    return ForPeople(*parameter.type, value, IsHandle(parameter));
}

std::string Display::Call(const CallStep& step, const Json::Value& arguments) const {
    std::string text;
    for (size_t i = 0; i < step.arguments.size(); ++i) {
        const Parameter& parameter = step.called.method->arguments[i];
        const Expression& expression = step.arguments[i];
        const Json::Value& value = arguments[static_cast<Json::ArrayIndex>(i)];
        std::string shown;
        if (parameter.type->kind == Type::Kind::Callback) {
            shown = value.isNull() ? "null" : "@listen";
        } else if (parameter.type->kind == Type::Kind::Enum && expression.literal.isString()) {
            shown = expression.literal.asString();
        } else if (IsHandle(parameter) && expression.kind == Expression::Kind::Name) {
            shown = OneLine(NameOf(value.asInt64()));
            if (shown.empty()) shown = "$" + expression.name;
        } else {
            shown = Value(parameter, value);
        }
        text += (i == 0 ? "" : ", ") + shown;
    }
    return step.called.Name() + "(" + text + ")";
}

bool Display::InItsOwnWords(const Package::QualifiedMethod& method, const std::vector<Parameter>& parameters,
                            const Json::Value& values, std::string& text) const {
    Format format;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mShown.find(method.Name());
        if (found == mShown.end()) return false;
        format = found->second;
    }
    const auto valueOf = [&](const std::string& name) {
        for (size_t i = 0; i < parameters.size(); ++i) {
            if (parameters[i].name == name) return values[static_cast<Json::ArrayIndex>(i)];
        }
        return Json::Value();
    };
    try {
        text = Filled(format, valueOf, [this](int64_t handle) { return NameOf(handle); });
        return true;
    } catch (const BadValue&) {
        return false;  // not a member of the struct
    }
}

std::string Display::Results(const Package::QualifiedMethod& method, const Json::Value& results) const {
    const std::vector<Parameter>& parameters = method.method->results;
    std::string text;
    for (size_t i = 0; i < parameters.size(); ++i) {
        const Json::Value& value = results[static_cast<Json::ArrayIndex>(i)];
        if (parameters[i].name != "status") {
            text += (text.empty() ? "" : ", ") + Value(parameters[i], value);
        } else if (value != 0) {
            return "status " + value.asString();
        }
    }
    if (text.empty()) return "done";
    if (!method.interface->callback) InItsOwnWords(method, parameters, results, text);
    return text;
}

std::string Display::Arguments(const Package::QualifiedMethod& method, const Json::Value& arguments) const {
    const std::vector<Parameter>& parameters = method.method->arguments;
    std::string text;
    if (InItsOwnWords(method, parameters, arguments, text)) return text;
    for (size_t i = 0; i < parameters.size(); ++i) {
        text += (i == 0 ? "" : ", ") + Value(parameters[i], arguments[static_cast<Json::ArrayIndex>(i)]);
    }
    return text;
}

}  // namespace hbbtv::ctl
