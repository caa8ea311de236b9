#include "cli/arguments.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <sstream>

#include "common/failure.h"
#include "common/local_socket.h"
#include "common/nearest_name.h"
#include "common/text/json.h"
#include "common/text/quote.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

constexpr size_t kAtOnce = 65536;

// Reads up to the end.
std::string All(int fd, const std::string& name) {
    std::string text;
    char bytes[kAtOnce];
    while (true) {
        const ssize_t count = read(fd, bytes, sizeof(bytes));
        if (count > 0) text.append(bytes, static_cast<size_t>(count));
        if (count == 0) return text;
        if (count < 0 && errno != EINTR) throw Failure(kUsage, "cannot read " + name + ": " + std::strerror(errno));
    }
}

std::string StandardInput() {
    static bool taken = false;
    if (taken) throw Failure(kUsage, "standard input (-) can be read for one argument only");
    taken = true;
    return All(STDIN_FILENO, "standard input");
}

std::string Names(const std::vector<Parameter>& parameters) {
    std::string names;
    for (const Parameter& parameter : parameters) {
        names += (names.empty() ? "" : ", ") + parameter.name + " (" + parameter.type->name + ")";
    }
    return names.empty() ? "it takes no arguments" : "arguments: " + names;
}

// The type of a member that protocol/ does not have. No value is of it, so each stays as it is.
std::shared_ptr<const Type> AnyType() {
    static const auto type = [] {
        auto any = std::make_shared<Type>();
        any->kind = Type::Kind::Struct;
        return any;
    }();
    return type;
}

Json::Value FromAnyJson(const Type& type, const Json::Value& value) {
    if (type.kind == Type::Kind::Vector && value.isArray()) {
        Json::Value values(Json::arrayValue);
        for (const Json::Value& element : value) values.append(FromAnyJson(*type.element, element));
        return values;
    }
    try {
        return FromJsonValue(type, value);
    } catch (const BadValue&) {
        return value;
    }
}

Json::Value FromAnyWord(const Type& type, const std::string& word) {
    try {
        return FromWord(type, word);
    } catch (const BadValue&) {
    }
    try {
        return FromAnyJson(type, ParseJson(word));
    } catch (const BadJson&) {
    }
    if (type.kind != Type::Kind::Vector) return word;
    Json::Value values(Json::arrayValue);
    std::stringstream words(word);
    for (std::string element; std::getline(words, element, ',');) {
        values.append(FromAnyWord(*type.element, element));
    }
    return values;
}

class Reader {
  public:
    // A lenient reader accepts other names and other types.
    Reader(const std::string& whose, const std::vector<Parameter>& parameters, bool lenient)
        : mWhose(whose), mParameters(parameters), mLenient(lenient) {}

    Json::Value Read(const GivenArguments& given, bool allRequired) {
        if (given.json) TakeObject(*given.json, given.jsonIs);
        for (const std::string& word : given.words) TakeWord(word);
        for (const Parameter& parameter : mParameters) {
            if (allRequired && !mValues.isMember(parameter.name)) {
                Refuse("missing argument \"" + parameter.name + "\"; " + Names(mParameters));
            }
        }
        return mValues;
    }

  private:
    [[noreturn]] void Refuse(const std::string& reason) const { throw Failure(kUsage, mWhose + ": " + reason); }

    Parameter Named(const std::string& name) const {
        std::set<std::string> known;
        for (const Parameter& parameter : mParameters) {
            if (parameter.name == name) return parameter;
            known.insert(parameter.name);
        }
        if (mLenient) return {name, AnyType()};
        Refuse("unknown argument \"" + name + "\"" +
               (known.empty() ? "; it takes no arguments" : DidYouMean(name, known, kShortList)));
    }

    void Store(const Parameter& parameter, const Json::Value& value) {
        if (mValues.isMember(parameter.name)) Refuse("argument \"" + parameter.name + "\" is given twice");
        mValues[parameter.name] = value;
    }

    template <typename F>
    void Take(const Parameter& parameter, F make) {
        try {
            Store(parameter, make());
        } catch (const BadValue& e) {
            Refuse("argument \"" + parameter.name + "\": " + e.what());
        }
    }

    void TakeObject(const std::string& word, const std::string& what) {
        Json::Value object;
        try {
            object = ParseJson(ReadWord(word));
        } catch (const BadJson& e) {
            Refuse(what + ": " + e.what());
        }
        if (!object.isObject()) {
            Refuse(what + ": expected an object, for example '{\"channel\": 4096}'");
        }
        for (const std::string& name : object.getMemberNames()) {
            const Parameter parameter = Named(name);
            Take(parameter, [&] {
                return mLenient ? FromAnyJson(*parameter.type, object[name])
                                : FromJsonValue(*parameter.type, object[name]);
            });
        }
    }

    void TakeWord(const std::string& word) {
        const size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const bool named =
            equals != std::string::npos && !name.empty() &&
            std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) || c == '_'; }) &&
            !std::isdigit(static_cast<unsigned char>(name[0]));
        const Parameter parameter = named ? Named(name) : Next(word);
        const std::string value = named ? word.substr(equals + 1) : word;
        const bool callback = parameter.type->kind == Type::Kind::Callback;
        const std::string content = callback ? value : ReadWord(value);
        Take(parameter,
             [&] { return mLenient ? FromAnyWord(*parameter.type, content) : FromWord(*parameter.type, content); });
    }

    const Parameter& Next(const std::string& word) const {
        for (const Parameter& parameter : mParameters) {
            if (!mValues.isMember(parameter.name)) return parameter;
        }
        Refuse("unexpected argument " + Quoted(word) + "; " + Names(mParameters));
    }

    const std::string& mWhose;
    const std::vector<Parameter>& mParameters;
    const bool mLenient;
    Json::Value mValues{Json::objectValue};
};

}  // namespace

std::string ReadWord(const std::string& word) {
    if (word == "-") return StandardInput();
    if (word.rfind("@@", 0) == 0) return word.substr(1);
    if (word.empty() || word[0] != '@') return word;
    const std::string name = word.substr(1);
    if (name.empty()) throw Failure(kUsage, "@ requires the name of a file; write @@ for the string @");
    const Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.Get() < 0) throw Failure(kUsage, "cannot open " + name + ": " + std::strerror(errno));
    return All(file.Get(), name);
}

Json::Value ReadArguments(const std::string& whose, const std::vector<Parameter>& parameters,
                          const GivenArguments& given, bool allRequired) {
    return Reader(whose, parameters, false).Read(given, allRequired);
}

Json::Value ReadMembers(const std::string& whose, const std::vector<Parameter>& members, const GivenArguments& given) {
    return Reader(whose, members, true).Read(given, false);
}

Json::Value InOrder(const std::vector<Parameter>& parameters, const Json::Value& byName) {
    Json::Value values(Json::arrayValue);
    for (const Parameter& parameter : parameters) values.append(byName[parameter.name]);
    return values;
}

}  // namespace hbbtv::ctl
