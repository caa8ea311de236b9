// The fields and words of filters: one row each.
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <set>

#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/json.h"
#include "common/text/pointer_text.h"
#include "common/text/quote.h"
#include "traffic/view/filter.h"
#include "traffic/view/filter_node.h"
#include "traffic/view/members.h"
#include "wire/protocol.h"

namespace hbbtv::traffic {

namespace {

using Test = std::function<bool(const Subject&)>;

struct NumberField {
    const char* name;
    const char* doc;
    std::optional<double> (*value)(const Record&);
};

template <typename T>
std::optional<double> AsNumber(const std::optional<T>& value) {
    return value ? std::optional<double>(static_cast<double>(*value)) : std::nullopt;
}

std::optional<double> Positive(uint64_t number) {
    return number == 0 ? std::nullopt : std::optional<double>(static_cast<double>(number));
}

const NumberField kNumbers[] = {
    {"ms", "duration until the reply in milliseconds",
     [](const Record& r) {
         return r.duration ? std::optional<double>(static_cast<double>(*r.duration) / 1000) : std::nullopt;
     }},
    {"status", "\"ret\" of the reply", [](const Record& r) { return AsNumber(r.status); }},
    {"code", "of the operation or the event", [](const Record& r) { return AsNumber(r.code); }},
    {"bytes", "of the messages, with their headers", [](const Record& r) { return Positive(BytesOf(r)); }},
    {"number", "of the record", [](const Record& r) { return Positive(r.number); }},
    {"connection", "number of the connection", [](const Record& r) { return Positive(r.connection); }},
};

struct TextField {
    const char* name;
    const char* doc;
    std::string (*value)(const Record&);
};

const TextField kTexts[] = {
    {"socket", "name of the socket", [](const Record& r) { return r.socket; }},
    {"kind", "exchange, connected, closed, damaged or note", [](const Record& r) { return NameOf(r.kind); }},
    {"rule", "rule that changed the exchange", [](const Record& r) { return r.rule; }},
    {"note", "note of the recorder", [](const Record& r) { return r.note; }},
};

struct WordField {
    const char* name;
    const char* doc;
    bool (*holds)(const Record&);
};

bool IsExchange(const Record& record) {
    return record.kind == Record::Kind::Exchange;
}

const WordField kWords[] = {
    {"event", "message of the platform", [](const Record& r) { return IsExchange(r) && r.event; }},
    {"request", "message of the library", [](const Record& r) { return IsExchange(r) && !r.event; }},
    {"one-way", "message that wants no reply", [](const Record& r) { return IsExchange(r) && !r.WantsReply(); }},
    {"open", "exchange without a reply so far", [](const Record& r) { return r.open; }},
    {"error", "status other than 0, no usable reply, or damaged bytes", IsError},
    {"damaged", "bytes that are not a message", [](const Record& r) { return r.kind == Record::Kind::Damaged; }},
    {"ruled", "exchange that a rule changed", [](const Record& r) { return !r.rule.empty(); }},
};

// Fields with tests of their own, and the two families of fields for members.
const std::pair<const char*, const char*> kOthers[] = {
    {"family", "name of the family or of its interface; * stands for any letters"},
    {"op", "name of an operation, an event or the client's method; * stands for any letters"},
    {"handle", "handle in any member"},
    {"app", "application, by its number"},
    {"tab", "tab of the browser, by its number"},
    {"pid", "process at either end"},
    {"process", "part of a process's name"},
    {"request.NAME", "member of the message"},
    {"reply.NAME", "member of the reply"},
};

// Compares a text with a pattern in which * stands for any characters.
bool Fits(const char* text, const char* pattern) {
    if (*pattern == '\0') return *text == '\0';
    if (*pattern != '*') return *text == *pattern && Fits(text + 1, pattern + 1);
    while (*++pattern == '*') {
    }
    for (;; ++text) {
        if (Fits(text, pattern)) return true;
        if (*text == '\0') return false;
    }
}

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

bool Holds(const std::string& comparison, double left, double right) {
    if (comparison == "!=") return left != right;
    if (comparison == ">") return left > right;
    if (comparison == "<") return left < right;
    if (comparison == ">=") return left >= right;
    if (comparison == "<=") return left <= right;
    return left == right;
}

std::optional<double> NumberIn(const std::string& text) {
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0]))) return std::nullopt;
    errno = 0;
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    return *end == '\0' && errno == 0 ? std::optional<double>(number) : std::nullopt;
}

// Refuses comparisons that a field does not have.
void Allow(const FilterWord& word, const std::set<std::string>& comparisons) {
    if (comparisons.count(word.comparison) > 0) return;
    FailAt(word.position, Quoted(word.field) + " cannot be compared by " + Quoted(word.comparison));
}

const std::set<std::string> kEquality{":", "=", "==", "!="};
const std::set<std::string> kOrder{":", "=", "==", "!=", "<", ">", "<=", ">="};
const std::set<std::string> kOfText{":", "=", "==", "!=", "~"};
const std::set<std::string> kAll{":", "=", "==", "!=", "<", ">", "<=", ">=", "~"};

FilterNode Made(Test test, bool needsPayloads = false) {
    FilterNode node;
    node.test = std::move(test);
    node.needsPayloads = needsPayloads;
    return node;
}

// Returns the test inverted if the comparison is "!=".
Test Equal(const FilterWord& word, Test test) {
    if (word.comparison != "!=") return test;
    return [test = std::move(test)](const Subject& subject) { return !test(subject); };
}

FilterNode NumberTest(const FilterWord& word, const NumberField& field) {
    Allow(word, kOrder);
    const std::optional<double> number = NumberIn(word.value);
    if (!number) FailAt(word.position, Quoted(word.value) + " is not a number");
    return Made([comparison = word.comparison, wanted = *number, value = field.value](const Subject& subject) {
        const std::optional<double> actual = value(subject.Of());
        return actual && Holds(comparison, *actual, wanted);
    });
}

FilterNode TextTest(const FilterWord& word, const TextField& field) {
    Allow(word, kOfText);
    const bool part = word.comparison == "~";
    Test test = [wanted = LowerCase(word.value), part, value = field.value](const Subject& subject) {
        const std::string actual = LowerCase(value(subject.Of()));
        return part ? Contains(actual, wanted) : Fits(actual.c_str(), wanted.c_str());
    };
    return Made(Equal(word, std::move(test)));
}

FilterNode FamilyTest(const FilterWord& word) {
    Allow(word, kEquality);
    std::string wanted = FoldedName(word.value);
    if (!Contains(wanted, "*")) {
        try {
            wanted = FoldedName(FindFamily(word.value).name);
        } catch (const Failure& e) {
            FailAt(word.position, e.what());
        }
    }
    return Made(Equal(word, [wanted](const Subject& subject) {
        return Fits(FoldedName(subject.Of().family).c_str(), wanted.c_str());
    }));
}

// Returns the names in protocol/ of an operation or an event: that of the wire, or those whose HIDL method has the
// name.
std::set<std::string> OperationsNamed(const std::string& wanted, std::set<std::string>& known) {
    std::set<std::string> names;
    for (const WireFamily& family : WireFamilies()) {
        for (const char* list : {"operations", "events"}) {
            for (const Json::Value& entry : family.protocol[list]) {
                for (const char* key : {"name", "method", "callback"}) {
                    if (!entry[key].isString()) continue;
                    known.insert(entry[key].asString());
                    if (Fits(FoldedName(entry[key].asString()).c_str(), wanted.c_str())) {
                        names.insert(entry["name"].asString());
                    }
                }
            }
        }
    }
    return names;
}

FilterNode OperationTest(const FilterWord& word) {
    Allow(word, kEquality);
    const std::string wanted = FoldedName(word.value);
    std::set<std::string> known;
    const std::set<std::string> names = OperationsNamed(wanted, known);
    if (names.empty() && !Contains(wanted, "*")) {
        FailAt(word.position,
               "unknown operation or event " + Quoted(word.value) + DidYouMean(word.value, known, kShortList));
    }
    return Made(Equal(word, [names, wanted](const Subject& subject) {
        const std::string& operation = subject.Of().operation;
        return names.count(operation) > 0 || Fits(FoldedName(operation).c_str(), wanted.c_str());
    }));
}

FilterNode HandleTest(const FilterWord& word) {
    Allow(word, kEquality);
    const bool digits = word.value.find_first_not_of("0123456789abcdefABCDEFxX") == std::string::npos;
    const std::optional<uint64_t> wanted = digits ? ParsePointer(word.value) : std::nullopt;
    if (!wanted) FailAt(word.position, Quoted(word.value) + " is not a handle, such as 0x1388f0af");
    return Made(Equal(word,
                      [low = static_cast<uint32_t>(*wanted)](const Subject& subject) {
                          const Record& record = subject.Of();
                          return HasHandle(record.message.json, low) ||
                                 (record.reply && HasHandle(record.reply->json, low));
                      }),
                true);
}

// Applications and tabs are numbers in members of one name.
FilterNode MemberOfAnySideTest(const FilterWord& word, const std::string& key) {
    Allow(word, kEquality);
    const std::optional<double> wanted = NumberIn(word.value);
    if (!wanted) FailAt(word.position, Quoted(word.value) + " is not a number");
    const auto is = [key, wanted = *wanted](const Json::Value& payload) {
        return payload.isObject() && payload[key].isNumeric() && payload[key].asDouble() == wanted;
    };
    return Made(Equal(word,
                      [is](const Subject& subject) {
                          const Record& record = subject.Of();
                          return is(record.message.json) || (record.reply && is(record.reply->json));
                      }),
                true);
}

FilterNode ProcessTest(const FilterWord& word) {
    Allow(word, kEquality);
    const std::string wanted = LowerCase(word.value);
    if (word.field == "process") {
        return Made(Equal(word, [wanted](const Subject& subject) {
            return Contains(LowerCase(subject.Of().library.name), wanted) ||
                   Contains(LowerCase(subject.Of().platform.name), wanted);
        }));
    }
    const std::optional<double> pid = NumberIn(wanted);
    if (!pid) FailAt(word.position, Quoted(word.value) + " is not a number");
    return Made(Equal(word, [wanted = *pid](const Subject& subject) {
        return subject.Of().library.pid == wanted || subject.Of().platform.pid == wanted;
    }));
}

std::string TextOf(const Json::Value& value) {
    return LowerCase(value.isString() ? value.asString() : WriteJsonAsUtf8(value));
}

// Compares as numbers if both are numbers, as handles if both are handles, else as text.
bool MemberHolds(const FilterWord& word, const Json::Value& value) {
    const std::optional<double> wanted = word.quoted ? std::nullopt : NumberIn(word.value);
    if (word.comparison == "~") return Contains(TextOf(value), LowerCase(word.value));
    if (wanted && value.isNumeric()) return Holds(word.comparison, value.asDouble(), *wanted);
    if (kEquality.count(word.comparison) == 0) return false;
    const std::optional<uint64_t> handle = HandleIn(value);
    const bool equal = handle ? handle == HandleIn(Json::Value(word.value))
                              : Fits(TextOf(value).c_str(), LowerCase(word.value).c_str());
    return equal == (word.comparison != "!=");
}

FilterNode MemberTest(const FilterWord& word, bool ofReply, const std::string& key) {
    Allow(word, kAll);
    return Made(
        [word, ofReply, key](const Subject& subject) {
            const Record& record = subject.Of();
            if (ofReply && !record.reply) return false;
            const Json::Value& payload = ofReply ? record.reply->json : record.message.json;
            return payload.isObject() && payload.isMember(key) && MemberHolds(word, payload[key]);
        },
        true);
}

FilterNode FieldTest(const FilterWord& word) {
    const std::string field = LowerCase(word.field);
    for (const NumberField& number : kNumbers) {
        if (field == number.name) return NumberTest(word, number);
    }
    for (const TextField& text : kTexts) {
        if (field == text.name) return TextTest(word, text);
    }
    if (field == "family") return FamilyTest(word);
    if (field == "op" || field == "operation") return OperationTest(word);
    if (field == "handle") return HandleTest(word);
    if (field == "app" || field == "tab") return MemberOfAnySideTest(word, field + "id");
    if (field == "pid" || field == "process") return ProcessTest(word);
    if (field.rfind("request.", 0) == 0) return MemberTest(word, false, word.field.substr(8));
    if (field.rfind("reply.", 0) == 0) return MemberTest(word, true, word.field.substr(6));
    std::set<std::string> known;
    for (const NumberField& number : kNumbers) known.insert(number.name);
    for (const TextField& text : kTexts) known.insert(text.name);
    for (const auto& [name, doc] : kOthers) known.insert(name);
    FailAt(word.position, "unknown field " + Quoted(word.field) + DidYouMean(word.field, known, known.size()) +
                              " (text with " + Quoted(word.comparison) + " in it has to be in quotes)");
}

template <typename Rows>
std::string Listed(const Rows& rows) {
    std::string text;
    for (const auto& row : rows) {
        const std::string name = row.name;
        text += "  " + name + std::string(name.size() < 14 ? 14 - name.size() : 1, ' ') + row.doc + "\n";
    }
    return text;
}

}  // namespace

void FailAt(size_t position, const std::string& problem) {
    throw Failure(kUsage, "filter, character " + std::to_string(position) + ": " + problem);
}

std::string LowerCase(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

const std::string& Subject::Text() const {
    if (mText) return *mText;
    std::string text = FullName(mRecord) + "\n" + mRecord.socket + "\n" + mRecord.note + "\n" + mRecord.rule + "\n" +
                       mRecord.library.name + "\n" + mRecord.platform.name + "\n";
    const auto add = [&text](const Message& message) {
        text += message.Readable() ? WriteJsonAsUtf8(message.json) : message.raw;
        text += "\n";
    };
    add(mRecord.message);
    if (mRecord.reply) add(*mRecord.reply);
    mText = LowerCase(text);
    return *mText;
}

FilterNode TestOf(const FilterWord& word) {
    if (!word.field.empty()) return FieldTest(word);
    if (!word.quoted) {
        for (const WordField& known : kWords) {
            if (LowerCase(word.value) == known.name) {
                return Made([holds = known.holds](const Subject& subject) { return holds(subject.Of()); });
            }
        }
    }
    return Made([wanted = LowerCase(word.value)](const Subject& subject) { return Contains(subject.Text(), wanted); },
                true);
}

std::string FilterHelp() {
    struct Row {
        const char* name;
        const char* doc;
    };
    std::vector<Row> rows;
    for (const auto& [name, doc] : kOthers) rows.push_back({name, doc});
    return "A filter combines words by & (or nothing), |, ! and parentheses. A word is a field with a value, a kind "
           "of\n"
           "record, or text that the record contains, in quotes if it has other characters than letters and digits.\n"
           "Fields are compared by : = != < > <= >= ~ (contains).\n\n"
           "Fields:\n" +
           Listed(rows) + Listed(kNumbers) + Listed(kTexts) + "\nKinds of records:\n" + Listed(kWords);
}

}  // namespace hbbtv::traffic
