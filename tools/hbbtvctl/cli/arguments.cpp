#include "cli/arguments.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>

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

class Reader {
  public:
    Reader(const std::string& whose, const std::vector<Parameter>& parameters)
        : mWhose(whose), mParameters(parameters) {}

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

    const Parameter& Named(const std::string& name) const {
        std::set<std::string> known;
        for (const Parameter& parameter : mParameters) {
            if (parameter.name == name) return parameter;
            known.insert(parameter.name);
        }
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
            const Parameter& parameter = Named(name);
            Take(parameter, [&] { return FromJsonValue(*parameter.type, object[name]); });
        }
    }

    void TakeWord(const std::string& word) {
        const size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const bool named =
            equals != std::string::npos && !name.empty() &&
            std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) || c == '_'; }) &&
            !std::isdigit(static_cast<unsigned char>(name[0]));
        const Parameter& parameter = named ? Named(name) : Next(word);
        const std::string value = named ? word.substr(equals + 1) : word;
        const bool callback = parameter.type->kind == Type::Kind::Callback;
        Take(parameter, [&] { return FromWord(*parameter.type, callback ? value : ReadWord(value)); });
    }

    const Parameter& Next(const std::string& word) const {
        for (const Parameter& parameter : mParameters) {
            if (!mValues.isMember(parameter.name)) return parameter;
        }
        Refuse("unexpected argument " + Quoted(word) + "; " + Names(mParameters));
    }

    const std::string& mWhose;
    const std::vector<Parameter>& mParameters;
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
    return Reader(whose, parameters).Read(given, allRequired);
}

Json::Value InOrder(const std::vector<Parameter>& parameters, const Json::Value& byName) {
    Json::Value values(Json::arrayValue);
    for (const Parameter& parameter : parameters) values.append(byName[parameter.name]);
    return values;
}

}  // namespace hbbtv::ctl
