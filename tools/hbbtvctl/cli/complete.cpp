// hbbtvctl complete: computes the candidates for the word that a shell completes. They come from the definition of the
// command line, the package and protocol/.
#include <algorithm>
#include <cstdio>

#include "cli/help.h"
#include "cli/options.h"
#include "cli/self_description.h"
#include "common/failure.h"
#include "package/description.h"
#include "wire/message.h"

namespace hbbtv::ctl {

namespace {

struct Candidate {
    std::string word;
    std::string hint;
};

using Candidates = std::vector<Candidate>;

std::string FirstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

// Completes "INTERFACE." first, which keeps the list short, and methods after the dot.
Candidates Methods(const std::string& word, bool callbacks) {
    Candidates candidates;
    const bool whole = word.find('.') != std::string::npos;
    for (const Interface& interface : Package::Get().interfaces) {
        if (interface.callback && !callbacks) continue;
        if (!whole) candidates.push_back({interface.name + ".", FirstLine(interface.doc)});
        for (const Method& method : interface.methods) {
            if (whole) candidates.push_back({interface.name + "." + method.name, FirstLine(method.doc)});
        }
    }
    return candidates;
}

Candidates Families(bool withEvents) {
    Candidates candidates;
    for (const WireFamily& family : WireFamilies()) {
        if (withEvents && !family.protocol["endpoints"].isMember("events")) continue;
        candidates.push_back({family.name, family.protocol["title"].asString()});
    }
    return candidates;
}

Candidates Operations(const std::string& word) {
    Candidates candidates;
    const bool whole = word.find('.') != std::string::npos;
    for (const WireFamily& family : WireFamilies()) {
        if (!whole) candidates.push_back({family.name + ".", family.protocol["title"].asString()});
        for (const Json::Value& operation : family.protocol["operations"]) {
            if (!whole) break;
            candidates.push_back({family.name + "." + operation["name"].asString(), operation["doc"].asString()});
        }
    }
    return candidates;
}

Candidates Names(const std::string& word) {
    Candidates candidates = Methods(word, true);
    if (word.find('.') == std::string::npos) {
        for (Candidate& candidate : candidates) candidate.word.pop_back();
        for (const auto& type : Package::Get().types) candidates.push_back({type->name, FirstLine(type->doc)});
    }
    for (const Candidate& operation : word.find('.') == std::string::npos ? Families(false) : Operations(word)) {
        candidates.push_back(operation);
    }
    return candidates;
}

// Returns the names of values that the type has.
Candidates ValuesOf(const Type& type, const std::string& start) {
    Candidates candidates;
    for (const Enumerator& e : type.enumerators) candidates.push_back({start + e.name, FirstLine(e.doc)});
    if (type.kind == Type::Kind::Bool) candidates = {{start + "true", ""}, {start + "false", ""}};
    if (type.kind == Type::Kind::Callback) candidates = {{start + "@listen", "print the calls that arrive"}};
    return candidates;
}

// Returns the parameters without a value so far, in order.
std::vector<Parameter> NotGiven(std::vector<Parameter> parameters, const std::vector<std::string>& given) {
    for (const bool named : {true, false}) {
        for (const std::string& word : given) {
            const auto parameter = std::find_if(parameters.begin(), parameters.end(), [&word](const Parameter& p) {
                return word.rfind(p.name + "=", 0) == 0;
            });
            if (parameter != parameters.end()) {
                if (named) parameters.erase(parameter);
            } else if (!named && !parameters.empty() && word.find('=') == std::string::npos) {
                parameters.erase(parameters.begin());
            }
        }
    }
    return parameters;
}

// Completes "name=" for missing arguments, values after "name=", and values of the next argument.
Candidates Arguments(const std::vector<Parameter>& parameters, const std::vector<std::string>& given,
                     const std::string& word) {
    for (const Parameter& parameter : parameters) {
        if (word.rfind(parameter.name + "=", 0) == 0) return ValuesOf(*parameter.type, parameter.name + "=");
    }
    Candidates candidates;
    const std::vector<Parameter> missing = NotGiven(parameters, given);
    for (const Parameter& parameter : missing) candidates.push_back({parameter.name + "=", parameter.type->name});
    if (word.empty() || missing.empty()) return candidates;
    const Candidates values = ValuesOf(*missing.front().type, "");
    candidates.insert(candidates.end(), values.begin(), values.end());
    return candidates;
}

// Completes methods of clients that return a value.
Candidates Answers() {
    Candidates candidates;
    for (const Interface& interface : Package::Get().interfaces) {
        for (const Method& method : interface.methods) {
            if (!interface.callback || method.results.empty()) continue;
            candidates.push_back({method.name + "=", FirstLine(method.doc)});
        }
    }
    return candidates;
}

std::vector<Parameter> ParametersOf(const std::string& command, const std::vector<std::string>& positionals) {
    const Package& package = Package::Get();
    if (command == "emit") {
        if (positionals.size() < 2) return {};
        const WireFamily& family = FindFamily(positionals[0]);
        return WireArguments(EventMembers(family, family.FindEvent(positionals[1])));
    }
    if (command == "send") {
        const size_t dot = positionals[0].find('.');
        const WireFamily& family = FindFamily(positionals[0].substr(0, dot));
        const Json::Value* operation = family.Operation(positionals[0].substr(dot + 1));
        return operation == nullptr ? std::vector<Parameter>() : WireArguments((*operation)["request"]);
    }
    return package.FindMethod(positionals[0]).method->arguments;
}

Candidates Events(const std::string& familyName) {
    Candidates candidates;
    const WireFamily& family = FindFamily(familyName);
    for (const Json::Value& event : family.protocol["events"]) {
        const std::string callback = event["callback"].asString();
        candidates.push_back({callback.empty() ? event["code"].asString() : callback, event["name"].asString()});
    }
    return candidates;
}

// The words before the one to complete.
class Line {
  public:
    Line(const CLI::App& app, const std::vector<std::string>& words) : mCommand(&app) {
        for (size_t i = 0; i + 1 < words.size(); ++i) Take(words[i]);
        mWord = words.empty() ? "" : words.back();
    }

    Candidates Complete() const {
        if (mUnknown) return {};
        if (mOption != nullptr) return OfType(mOption->get_type_name());
        if (!mWord.empty() && mWord[0] == '-') return Options();
        if (mCommand->get_parent() == nullptr) return Commands(*mCommand);
        const std::vector<const CLI::Option*> positionals = ctl::Options(*mCommand, true);
        if (positionals.empty()) return {};
        return OfType(positionals[std::min(mPositionals.size(), positionals.size() - 1)]->get_type_name());
    }

  private:
    void Take(const std::string& word) {
        if (mOption != nullptr) {
            mOption = nullptr;
        } else if (word.size() > 1 && word[0] == '-') {
            const CLI::Option* option = mCommand->get_option_no_throw(word.substr(0, word.find('=')));
            const bool takesValue = option != nullptr && option->get_expected_min() > 0;
            if (takesValue && word.find('=') == std::string::npos) mOption = option;
        } else if (mCommand->get_parent() == nullptr) {
            const auto commands = mCommand->get_subcommands([&word](const CLI::App* c) { return c->check_name(word); });
            mUnknown = commands.empty();
            if (!mUnknown) mCommand = commands.front();
        } else {
            mPositionals.push_back(word);
        }
    }

    static Candidates Commands(const CLI::App& app) {
        Candidates candidates;
        for (const CLI::App* command : ctl::Commands(app)) {
            candidates.push_back({command->get_name(), command->get_description()});
        }
        return candidates;
    }

    Candidates Options() const {
        Candidates candidates;
        for (const CLI::Option* option : ctl::Options(*mCommand, false)) {
            for (const std::string& name : option->get_lnames()) {
                candidates.push_back({"--" + name, option->get_description()});
            }
        }
        return candidates;
    }

    Candidates OfType(const std::string& type) const {
        if (type == "METHOD") return Methods(mWord, false);
        if (type == "OPERATION") return Operations(mWord);
        if (type == "FAMILY") return Families(mCommand->get_name() != "status");
        if (type == "SIDE") return {{"platform", "answers requests"}};
        if (type == "EVENT" && !mPositionals.empty()) return Events(mPositionals[0]);
        if (type == "NAME") return Names(mWord);
        if (type == "COMMAND") return Commands(*mCommand->get_parent());
        if (type == "METHOD=JSON") return Answers();
        if (type == "LEVEL") {
            return {{"verbose", ""}, {"debug", "messages"}, {"info", ""}, {"warn", ""}, {"error", ""}, {"default", ""}};
        }
        if (type == "SHELL") return {{"bash", ""}, {"zsh", ""}, {"fish", ""}};
        if (type == "ARGUMENT" && !mPositionals.empty()) {
            const size_t before = mCommand->get_name() == "emit" ? 2 : 1;
            return Arguments(ParametersOf(mCommand->get_name(), mPositionals),
                             {mPositionals.begin() + static_cast<std::ptrdiff_t>(std::min(before, mPositionals.size())),
                              mPositionals.end()},
                             mWord);
        }
        return {};
    }

    const CLI::App* mCommand;
    bool mUnknown = false;                 // whether the command does not exist
    const CLI::Option* mOption = nullptr;  // whose value comes next
    std::vector<std::string> mPositionals;
    std::string mWord;
};

}  // namespace

int Complete(const CLI::App& app, const std::vector<std::string>& words) {
    const std::string word = words.empty() ? "" : words.back();
    try {
        for (const Candidate& candidate : Line(app, words).Complete()) {
            if (candidate.word.rfind(word, 0) != 0) continue;
            std::printf("%s\t%s\n", candidate.word.c_str(), FirstLine(candidate.hint).c_str());
        }
    } catch (const Failure&) {
        // An earlier word is an unknown name: no candidates.
    }
    return kDone;
}

}  // namespace hbbtv::ctl
