// See walk.h.
#include "walk.h"

#include <gtest/gtest.h>
#include <json/reader.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <regex>
#include <sstream>

#include "package/description.h"

namespace hbbtv::test {

namespace {

// What follows from those before is of little interest, and each may take the time of a wait.
constexpr int kMostProblems = 5;

// Whether a value says something.
bool IsSomething(const Json::Value& value) {
    if (value.isBool()) return value.asBool();
    if (value.isNumeric()) return value.asDouble() != 0;
    return value.isString() ? !value.asString().empty() : !value.empty();
}

// `$name` outside of texts becomes a text, so that what a line says is JSON.
std::string WithNamesAsTexts(const std::string& text) {
    std::string json;
    bool inText = false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"' && (i == 0 || text[i - 1] != '\\')) inText = !inText;
        if (inText || text[i] != '$') {
            json += text[i];
            continue;
        }
        size_t end = i + 1;
        while (end < text.size() && std::isalnum(static_cast<unsigned char>(text[end])) != 0) ++end;
        json += '"' + text.substr(i, end - i) + '"';
        i = end - 1;
    }
    return json;
}

hbbtv::Invoker InvokerOf(const std::string& interface, const std::string& method) {
    const auto found = hbbtv::AllBindings().find(interface);
    if (found == hbbtv::AllBindings().end()) return nullptr;
    for (const hbbtv::MethodBinding& binding : found->second->methods) {
        if (binding.name == method) return binding.invoke;
    }
    return nullptr;
}

// What the method sends; empty when it does not go to the platform.
std::string OperationOf(const std::string& interfaceName, const std::string& method) {
    const hbbtv::Interface& interface = hbbtv::Package::Get().FindInterface(interfaceName);
    const Json::Value* operation = hbbtv::Package::Get().FamilyOf(interface)->OperationOf(interface.Find(method)->name);
    return operation == nullptr ? "" : (*operation)["name"].asString();
}

// "mediasync 3" is an event of the family video_broadcast, and so on.
const WireFamily& FamilyOf(const std::string& event) {
    const std::string name = event.substr(0, event.find(' '));
    return FindFamily(name == "mediasync" ? "video_broadcast" : name);
}

std::string CodeOf(const std::string& event) {
    return event.substr(event.find(' ') + 1);
}

// "IMtmCallback.Ping".
std::string CallbackOf(const std::string& event) {
    const WireFamily& family = FamilyOf(event);
    for (const Json::Value& known : family.protocol["events"]) {
        if (known["object"].asString() == "mediasync" || known["code"].asString() != CodeOf(event)) continue;
        for (const hbbtv::Interface& interface : hbbtv::Package::Get().interfaces) {
            const std::string method = known["callback"].asString();
            if (interface.callback && interface.Find(method) != nullptr) return interface.name + "." + method;
        }
    }
    return "nothing";
}

}  // namespace

Walk::Walk(const SimulatedPlatform& platform, const std::string& directory) : mPlatform(platform) {
    mValues["$directory"] = directory;
    Arrivals::OfThisProcess().Forget();
}

void Walk::Take(const std::string& file) {
    std::ifstream lines(file);
    ASSERT_TRUE(lines.good()) << file;
    int number = 0;
    int problems = 0;
    for (std::string line; problems < kMostProblems && std::getline(lines, line);) {
        ++number;
        if (line.empty() || line[0] == '#') continue;
        const std::string problem = TakeLine(line);
        if (problem.empty()) continue;
        ++problems;
        ADD_FAILURE_AT(file.c_str(), number) << line << "\n" << problem;
    }
}

std::string Walk::TakeLine(const std::string& line) {
    static const std::regex call(R"((until )?(I\w+)\.(\w+)\((.*)\)(?: -> (.*))?)");
    static const std::regex answer(R"(answer (I\w+\.\w+) -> (.*))");
    static const std::regex tell(R"((until )?tell (.*) -> (.*))");
    static const std::regex event(R"(event (\w+ \d+): (I\w+\.\w+)\((.*)\))");
    static const std::regex emission(R"(emit (\w+ \d+): (\{.*?\})(?: -> (.*))?)");
    std::smatch part;
    if (std::regex_match(line, part, call)) return TakeCall(part[2], part[3], part[4], part[5], part[1].matched);
    if (std::regex_match(line, part, tell)) return TakeTell(part[2], part[3], part[1].matched);
    if (std::regex_match(line, part, event)) return TakeEvent(part[1], part[2], part[3]);
    if (std::regex_match(line, part, emission)) return TakeEmission(part[1], part[2], part[3]);
    if (!std::regex_match(line, part, answer)) return "this line says nothing";
    Arrivals::OfThisProcess().Answer(part[1], Read("[" + part[2].str() + "]"));
    return "";
}

std::string Walk::TakeCall(const std::string& interface, const std::string& method, const std::string& arguments,
                           const std::string& results, bool repeatedly) {
    const hbbtv::Invoker invoke = InvokerOf(interface, method);
    if (invoke == nullptr) return "there is no such method";
    auto& service = mServices[interface];
    const auto find = hbbtv::AllBindings().at(interface)->find;
    if (service == nullptr && !WaitFor([&] { return (service = find()) != nullptr; })) {
        return "nobody has registered this interface";
    }
    const std::string operation = OperationOf(interface, method);
    const size_t seen = RequestsSeen(operation);
    const Json::Value given = Read("[" + arguments + "]");
    const Json::Value expected = Read("[" + results + "]");
    hbbtv::CallOutcome outcome;
    const auto comesOut = [&] {
        outcome = invoke(*service, given, Arrivals::OfThisProcess());
        return outcome.answered && Fits(expected, outcome.results);
    };
    if (repeatedly ? !WaitFor(comesOut) : !comesOut()) return "the results are " + Written(outcome.results);
    mCalled.insert(interface + "." + method);
    if (operation.empty() || WaitFor([&] { return RequestsSeen(operation) > seen; })) return "";
    return "the platform has seen no request " + operation;
}

std::string Walk::TakeTell(const std::string& command, const std::string& answer, bool repeatedly) {
    std::string given;
    const auto comesOut = [&] {
        ChildProcess program({HBBTV_SIM_PROGRAM, "--tell", command});
        program.WaitForExit();
        given = program.Output();
        return given == answer + "\n";
    };
    return (repeatedly ? WaitFor(comesOut) : comesOut()) ? "" : "the answer is: " + given;
}

std::string Walk::TakeEvent(const std::string& event, const std::string& method, const std::string& argumentsText) {
    const Json::Value expected = Read("[" + argumentsText + "]");
    std::optional<Json::Value> actual;
    if (!WaitFor([&] { return (actual = Arrivals::OfThisProcess().Next(method)).has_value(); })) {
        return "it does not arrive";
    }
    if (!Fits(expected, *actual)) return "what arrives is " + Written(*actual);
    if (method != CallbackOf(event)) return "the protocol says " + CallbackOf(event);
    mEvents.insert(event);
    return "";
}

std::string Walk::TakeEmission(const std::string& event, const std::string& message, const std::string& reply) {
    const Json::Value& protocol = FamilyOf(event).protocol;
    const Json::Value& endpoint = protocol["endpoints"]["events"];
    const Json::Value payload = Read(message);
    if (payload[protocol["event_envelope"]["code"]["key"].asString()].asString() != CodeOf(event)) {
        return "the message has another code";
    }
    const std::string socket = std::string(std::getenv("TMPDIR")) + "/" + endpoint["socket"].asString();
    if (mConnections.count(socket) == 0) mConnections.emplace(socket, RawConnection::To(socket));
    RawConnection& connection = mConnections.at(socket);
    const int type = reply.empty() ? kOneWay : kRequest;
    if (!connection.Write(FrameBytes(type, endpoint["port"].asInt(), Written(payload)))) return "it cannot be written";
    mEvents.insert(event);
    if (type == kOneWay) return "";
    const auto frame = connection.ReadFrame();
    if (!frame.has_value()) return "there is no reply";
    return Fits(Read(reply), Read(frame->payload)) ? "" : "the reply is " + frame->payload;
}

// A line of the trace names all operations that share a code: "> OnTabShow/OnLoadingStateChanged tabid=7 | ...".
size_t Walk::RequestsSeen(const std::string& operation) const {
    std::istringstream trace(mPlatform.Output());
    size_t count = 0;
    for (std::string line; std::getline(trace, line);) {
        if (line.rfind("> ", 0) != 0) continue;
        const std::string names = "/" + line.substr(2, line.find(' ', 2) - 2) + "/";
        if (names.find("/" + operation + "/") != std::string::npos) ++count;
    }
    return count;
}

Json::Value Walk::Read(const std::string& text) const {
    Json::CharReaderBuilder builder;
    std::istringstream stream(WithNamesAsTexts(text));
    Json::Value value;
    std::string errors;
    EXPECT_TRUE(Json::parseFromStream(builder, stream, &value, &errors)) << errors << text;
    return Filled(value);
}

Json::Value Walk::Filled(const Json::Value& value) const {
    Json::Value filled = value;
    if (value.isArray() || value.isObject()) {
        for (auto it = filled.begin(); it != filled.end(); ++it) *it = Filled(*it);
    } else if (value.isString()) {
        const std::string text = value.asString();
        const std::string name = text.substr(0, text.find('/'));
        const auto known = mValues.find(name);
        if (known != mValues.end()) {
            filled = name == text ? known->second : Json::Value(known->second.asString() + text.substr(name.size()));
        }
    }
    return filled;
}

bool Walk::Fits(const Json::Value& expected, const Json::Value& actual) {
    if (expected.isString() && expected.asString().rfind('$', 0) == 0) {
        return IsSomething(actual) && mValues.emplace(expected.asString(), actual).first->second == actual;
    }
    if (expected.isNumeric() && actual.isNumeric()) return expected.asDouble() == actual.asDouble();
    if (expected.type() != actual.type()) return false;
    if (expected.isObject()) {
        for (const std::string& name : expected.getMemberNames()) {
            if (!actual.isMember(name)) return false;
        }
        for (const std::string& name : actual.getMemberNames()) {
            const bool fits = expected.isMember(name) ? Fits(expected[name], actual[name]) : !IsSomething(actual[name]);
            if (!fits) return false;
        }
        return true;
    }
    if (!expected.isArray()) return expected == actual;
    if (expected.size() != actual.size()) return false;
    for (Json::ArrayIndex i = 0; i < expected.size(); ++i) {
        if (!Fits(expected[i], actual[i])) return false;
    }
    return true;
}

}  // namespace hbbtv::test
