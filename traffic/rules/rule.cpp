#include "traffic/rules/rule.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <set>
#include <utility>
#include <vector>

#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/json.h"
#include "common/text/quote.h"

namespace hbbtv::traffic {

namespace {

enum class Value { None, Optional, Required };

struct ActionName {
    const char* name;
    Rule::Action action;
    Value value;
    const char* usage;
    const char* purpose;
};

using Action = Rule::Action;

constexpr ActionName kActions[] = {
    {"delay", Action::Delay, Value::Required, "delay=TIME", "pass it on later; what follows on the connection waits"},
    {"drop", Action::Drop, Value::None, "drop", "do not pass it on"},
    {"duplicate", Action::Duplicate, Value::None, "duplicate", "pass it on twice"},
    {"cut", Action::Cut, Value::Optional, "cut[=BYTES]",
     "pass on its beginning (default: half), and close the connection"},
    {"corrupt", Action::Corrupt, Value::Optional, "corrupt[=BYTES]", "change bytes of its payload (default: 1)"},
    {"set", Action::Set, Value::Required, "set=MEMBER:JSON", "set a member of its JSON object"},
    {"answer", Action::Answer, Value::Required, "answer=JSON", "reply to it instead of passing it on"},
    {"hold", Action::Hold, Value::None, "hold", "keep it until the command \"go\""},
    {"close", Action::Close, Value::None, "close", "close the connection instead of passing it on"},
    {"slow", Action::Slow, Value::Required, "slow=BYTES", "pass on so many bytes a second"},
};

struct OptionName {
    const char* name;
    const char* usage;
    const char* purpose;
};

constexpr OptionName kOptions[] = {
    {"on", "on=reply", "do it to the reply (default: to the message that asks, or the event)"},
    {"p", "p=NUMBER", "with this probability, 0 to 1 (default: 1)"},
    {"seed", "seed=NUMBER", "of the random numbers (default: 1)"},
    {"count", "count=NUMBER", "for so many messages"},
};

struct Word {
    std::string name;
    std::string value;
    bool hasValue = false;
    std::string text;
    size_t position = 0;
};

const ActionName* FindAction(const std::string& name) {
    for (const ActionName& action : kActions) {
        if (name == action.name) return &action;
    }
    return nullptr;
}

bool IsOption(const std::string& name) {
    return std::any_of(std::begin(kOptions), std::end(kOptions),
                       [&name](const OptionName& option) { return name == option.name; });
}

// Returns the end of a word: the next blank that is not in quotes or brackets.
size_t EndOfWord(const std::string& text, size_t at) {
    int depth = 0;
    bool quoted = false;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (quoted) {
            if (c == '\\') ++at;
            quoted = c != '"';
        } else if (c == '"') {
            quoted = true;
        } else if (c == '{' || c == '[') {
            ++depth;
        } else if (c == '}' || c == ']') {
            --depth;
        } else if (depth <= 0 && std::isspace(static_cast<unsigned char>(c)) != 0) {
            break;
        }
    }
    return std::min(at, text.size());
}

std::vector<Word> WordsOf(const std::string& text) {
    std::vector<Word> words;
    for (size_t at = 0;;) {
        while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at])) != 0) ++at;
        if (at == text.size()) return words;
        const size_t end = EndOfWord(text, at);
        Word word;
        word.text = text.substr(at, end - at);
        word.position = at;
        const size_t equals = word.text.find('=');
        word.hasValue = equals != std::string::npos;
        word.name = word.text.substr(0, equals);
        if (word.hasValue) word.value = word.text.substr(equals + 1);
        words.push_back(word);
        at = end;
    }
}

uint64_t Number(const Word& word, uint64_t least) {
    errno = 0;
    const bool digits = !word.value.empty() && word.value.find_first_not_of("0123456789") == std::string::npos;
    const uint64_t number = digits ? std::strtoull(word.value.c_str(), nullptr, 10) : 0;
    if (!digits || errno != 0 || number < least) {
        throw Failure(kUsage, word.name + ": " + Quoted(word.value) + " is not a whole number of at least " +
                                  std::to_string(least));
    }
    return number;
}

double Probability(const Word& word) {
    char* end = nullptr;
    const double probability = std::strtod(word.value.c_str(), &end);
    if (word.value.empty() || *end != '\0' || !(probability >= 0 && probability <= 1)) {
        throw Failure(kUsage, "p: " + Quoted(word.value) + " is not a number from 0 to 1");
    }
    return probability;
}

// Returns the value as JSON or, if it is not, as a string.
Json::Value Lenient(const std::string& text) {
    try {
        return ParseJson(text);
    } catch (const BadJson&) {
        return text;
    }
}

Json::Value ObjectOf(const Word& word) {
    try {
        return ParseJson(word.value);
    } catch (const BadJson& e) {
        throw Failure(kUsage, "answer: " + Quoted(word.value) + " is " + e.what());
    }
}

void ReadAction(const ActionName& name, const Word& word, Rule& rule) {
    if ((word.hasValue && name.value == Value::None) || (!word.hasValue && name.value == Value::Required)) {
        throw Failure(kUsage, "write " + std::string(name.usage) + ", not " + Quoted(word.text));
    }
    rule.action = name.action;
    rule.what = word.text;
    if (!word.hasValue) return;
    if (rule.action == Action::Delay) {
        const auto delay = ParseDuration(word.value);
        if (!delay) throw Failure(kUsage, "delay: " + CheckDuration(word.value));
        rule.delay = *delay;
    } else if (rule.action == Action::Set) {
        const size_t colon = word.value.find(':');
        if (colon == 0 || colon == std::string::npos) {
            throw Failure(kUsage, "write " + std::string(name.usage) + ", not " + Quoted(word.text));
        }
        rule.member = word.value.substr(0, colon);
        rule.value = Lenient(word.value.substr(colon + 1));
    } else if (rule.action == Action::Answer) {
        rule.value = ObjectOf(word);
    } else {
        rule.number = Number(word, rule.action == Action::Cut ? 0 : 1);
    }
}

void ReadOption(const Word& word, Rule& rule) {
    if (word.name == "on") {
        if (word.value != "reply" && word.value != "request") {
            throw Failure(kUsage, "on: " + Quoted(word.value) + " is not \"request\" or \"reply\"");
        }
        rule.onReply = word.value == "reply";
    } else if (word.name == "p") {
        rule.probability = Probability(word);
    } else if (word.name == "seed") {
        rule.random.seed(Number(word, 0));
    } else {
        rule.left = Number(word, 1);
    }
}

std::string UnknownAction(const std::string& name) {
    std::set<std::string> known;
    for (const ActionName& action : kActions) known.insert(action.name);
    for (const OptionName& option : kOptions) known.insert(option.name);
    return "unknown action " + Quoted(name) + DidYouMean(name, known);
}

// The filter is all before the first action or option.
Rule Parse(const std::string& text) {
    Rule rule;
    rule.text = text;
    rule.random.seed(1);
    size_t end = text.size();
    bool acts = false;
    for (const Word& word : WordsOf(text)) {
        const ActionName* action = FindAction(word.name);
        const bool option = word.hasValue && IsOption(word.name);
        if (action == nullptr && !option) {
            if (end != text.size()) throw Failure(kUsage, UnknownAction(word.name));
            continue;
        }
        end = std::min(end, word.position);
        if (option) {
            ReadOption(word, rule);
            continue;
        }
        if (std::exchange(acts, true)) throw Failure(kUsage, "a rule has one action; add another rule");
        ReadAction(*action, word, rule);
    }
    if (!acts) throw Failure(kUsage, "no action; write, for example, \"op:SetChannel delay=2s\"");
    if (rule.action == Action::Answer && rule.onReply) throw Failure(kUsage, "a reply has no answer; use set");
    rule.filter = Filter(text.substr(0, end));
    return rule;
}

template <typename Names>
std::string Listed(const Names& names) {
    std::string text;
    for (const auto& name : names) {
        const std::string usage = name.usage;
        text += "  " + usage + std::string(usage.size() < 16 ? 16 - usage.size() : 1, ' ') + "  " + name.purpose + "\n";
    }
    return text;
}

}  // namespace

Rule ParseRule(const std::string& text) {
    try {
        return Parse(text);
    } catch (const Failure& e) {
        throw Failure(kUsage, "rule " + Quoted(text) + ": " + e.what());
    }
}

std::string RuleActions() {
    return Listed(kActions);
}

std::string RuleOptions() {
    return Listed(kOptions);
}

}  // namespace hbbtv::traffic
