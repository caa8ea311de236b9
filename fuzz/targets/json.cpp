// Any text as a document: the library's parser with its limits, everything that reads members, the writer, and the
// strict parser of the tools.
#include <json/json.h>

#include "common/text/json.h"
#include "common/text/utf8.h"
#include "input.h"
#include "ipc/src/tolm_hbbtv_ipc_tools.h"
#include "ipc/src/tolm_json_text.h"
#include "json_mutation.h"

namespace hbbtv::fuzz {

namespace {

size_t CountOf(const Json::Value& value) {
    size_t count = 1;
    if (!value.isArray() && !value.isObject()) return count;
    for (const Json::Value& element : value) count += CountOf(element);
    return count;
}

void ReadMember(const Json::Value& object, const std::string& name) {
    const char* const key = name.c_str();
    const int64_t number = tolm::ReadInt(object, key);
    // A number that fits reads alike whatever its type.
    if (number > 0) FUZZ_CHECK(tolm::ReadInt64(object, key) == number);
    if (number > 0) FUZZ_CHECK(tolm::ReadUInt(object, key) == number);
    if (number > 0) FUZZ_CHECK(tolm::ReadBool(object, key));
    tolm::ReadUInt64(object, key);
    tolm::ReadReal(object, key);
    FUZZ_CHECK(tolm::ReadTexts(object, key).size() <= CountOf(object));
    const std::string text = tolm::ReadText(object, key);
    void* pointer = nullptr;
    if (TolmHbbtvIpcTools::ParsePointerValue(object, name, &pointer) != 0) return;
    Json::Value written(Json::objectValue);
    TolmHbbtvIpcTools::AddPointerValue(pointer, name, written);
    void* again = nullptr;
    FUZZ_CHECK(TolmHbbtvIpcTools::ParsePointerValue(written, name, &again) == 0 && again == pointer);
}

void ReadAll(const Json::Value& value) {
    for (const char* const name : {"ret", "", "k0"}) ReadMember(value, name);
    if (value.isObject()) {
        for (const std::string& name : value.getMemberNames()) ReadMember(value, name.c_str());
    }
    if (!value.isArray() && !value.isObject()) return;
    for (const Json::Value& element : value) ReadAll(element);
}

bool IsUtf8(const std::string& text) {
    return ValidUtf8(text) == text;
}

void Write(const Json::Value& document, bool isUtf8) {
    const std::vector<unsigned char> bytes = tolm::ToStyledBytes(document);
    FUZZ_CHECK(std::string(bytes.begin(), bytes.end()) == document.toStyledString());
    Json::Value again;
    FUZZ_CHECK(tolm::ParseJson(bytes, again));
    // Bytes that are not UTF-8 are written as a replacement character, and names may become alike.
    if (isUtf8) FUZZ_CHECK(CountOf(again) == CountOf(document));
}

// What the strict parser takes, the library takes, and both read the same.
void Compare(const std::string& text, bool parsed, const Json::Value& document) {
    try {
        const Json::Value strict = ParseJson(text);
        FUZZ_CHECK(parsed && WriteJson(strict) == WriteJson(document));
        if (IsUtf8(text)) FUZZ_CHECK(WriteJson(ParseJson(WriteJson(strict))) == WriteJson(strict));
    } catch (const BadJson&) {
        // Most texts are not JSON.
    }
}

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hbbtv::fuzz;
    const std::vector<unsigned char> bytes(data, data + size);
    const char* const begin = reinterpret_cast<const char*>(bytes.data());
    const std::string text(begin, size);
    Json::Value document;
    const bool parsed = tolm::ParseJson(bytes, document);
    Compare(text, parsed, document);
    const auto count = tolm::CountJsonValues(begin, begin + size);
    if (!parsed) return 0;
    FUZZ_CHECK(count && *count >= CountOf(document));
    ReadAll(document);
    Write(document, IsUtf8(text));
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t mostBytes, unsigned seed) {
    using namespace hbbtv::fuzz;
    Random random(seed);
    return Store(MutatedJson(std::string(reinterpret_cast<char*>(data), size), mostBytes, random), data, mostBytes);
}
