// What people write for hbbtvctl: values, arguments of a method and plays. The first line is the kind, the rest what
// was written.
#include <map>

#include "cli/arguments.h"
#include "common/duration.h"
#include "common/failure.h"
#include "common/text/json.h"
#include "common/text/pointer_text.h"
#include "common/text/quote.h"
#include "common/text/utf8.h"
#include "input.h"
#include "json_mutation.h"
#include "play/language/parser.h"
#include "wire/values.h"

namespace hbbtv::fuzz {

namespace {

// Every value has a form for programs that reads as the same value.
void CheckForms(const Type& type, const Json::Value& value) {
    ForPeople(type, value, false);
    // Handles are of this type.
    if (type.name == "int64_t") ForPeople(type, value, true);
    for (const bool numbers : {false, true}) {
        FUZZ_CHECK(WriteJson(FromJsonValue(type, ForPrograms(type, value, numbers))) == WriteJson(value));
    }
}

// The types that the package has: a type of any other name is a mistake of the program.
const std::map<std::string, std::shared_ptr<const Type>>& AllTypes() {
    static const auto* const types = [] {
        auto* const all = new std::map<std::string, std::shared_ptr<const Type>>;
        for (const Interface& interface : Package::Get().interfaces) {
            for (const Method& method : interface.methods) {
                for (const Parameter& argument : method.arguments) all->emplace(argument.type->name, argument.type);
                for (const Parameter& result : method.results) all->emplace(result.type->name, result.type);
            }
        }
        return all;
    }();
    return *types;
}

void ReadValue(const std::string& typeName, const std::string& word) {
    const auto found = AllTypes().find(typeName);
    if (found == AllTypes().end() || found->second->kind == Type::Kind::Callback) return;
    const std::shared_ptr<const Type>& type = found->second;
    try {
        CheckForms(*type, FromWord(*type, word));
    } catch (const BadValue& e) {
        FUZZ_CHECK(*e.what() != '\0');
    }
}

// Values that name a file or standard input are not fuzzed.
bool ReadsFile(const std::string& word) {
    const std::string value = word.substr(word.find('=') + 1);
    for (const std::string& each : {word, value}) {
        if (each == "-" || (each.rfind('@', 0) == 0 && each.rfind("@@", 0) != 0)) return true;
    }
    return false;
}

void ReadCall(const std::string& name, const ctl::GivenArguments& given) {
    const Method& method = *Package::Get().FindMethod(name).method;
    const Json::Value values = ctl::ReadArguments(name, method.arguments, given, true);
    FUZZ_CHECK(values.size() == method.arguments.size());
    for (const Parameter& argument : method.arguments) {
        if (argument.type->kind != Type::Kind::Callback) CheckForms(*argument.type, values[argument.name]);
    }
}

void ReadArguments(const std::string& method, const std::string& text) {
    ctl::GivenArguments given;
    given.words = LinesOf(text);
    for (const std::string& word : given.words) {
        if (ReadsFile(word)) return;
    }
    ReadCall(method, given);
}

void ReadObject(const std::string& method, const std::string& text) {
    if (ReadsFile(text)) return;
    ctl::GivenArguments given;
    given.json = text;
    ReadCall(method, given);
}

void ReadTexts(const std::string& text) {
    if (const auto duration = ParseDuration(text)) {
        FUZZ_CHECK(CheckDuration(text).empty() && duration->count() >= 0);
        std::string shown = FormatDuration(*duration);
        shown.erase(shown.find(' '), 1);
        FUZZ_CHECK(ParseDuration(shown) == duration);
    }
    if (const auto pointer = ParsePointer(text)) FUZZ_CHECK(ParsePointer(PointerText(*pointer)) == pointer);
    for (const char c : Quoted(text)) FUZZ_CHECK(static_cast<unsigned char>(c) >= 0x20 && c != 0x7f);
    FUZZ_CHECK(ValidUtf8(ValidUtf8(text)) == ValidUtf8(text));
}

void Read(const std::vector<std::string>& line, const std::string& text) {
    const std::string& kind = line[0];
    if (kind == "play") ctl::ParseScript("play", text, {"directory", "vb"});
    if (kind == "duration" || kind == "pointer" || kind == "utf8") ReadTexts(text);
    if (line.size() < 2) return;
    if (kind == "type") ReadValue(line[1], text);
    if (kind == "arguments") ReadArguments(line[1], text);
    if (kind == "object") ReadObject(line[1], text);
}

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hbbtv::fuzz;
    const Addressed input = Split(data, size);
    const std::vector<std::string> line = Words(input.line);
    if (line.empty()) return -1;
    try {
        Read(line, input.rest);
    } catch (const hbbtv::Failure& e) {
        FUZZ_CHECK(e.Code() == hbbtv::kUsage && *e.what() != '\0');
    }
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t mostBytes, unsigned seed) {
    using namespace hbbtv::fuzz;
    Random random(seed);
    const Addressed input = Split(data, size);
    if (Below(random, 32) == 0) return Store(MutatedBytes(input.line + "\n" + input.rest, mostBytes), data, mostBytes);
    const size_t room = std::max(mostBytes, input.line.size() + 1) - input.line.size() - 1;
    return Store(input.line + "\n" + MutatedJson(input.rest, room, random), data, mostBytes);
}
