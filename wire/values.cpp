#include "wire/values.h"

#include <json/reader.h>
#include <json/writer.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "common/nearest_name.h"

namespace hbbtv {

namespace {

constexpr int kDeepestNesting = 100;

std::string Range(const Type& type) {
    if (type.isSigned) {
        const int64_t most = type.bits == 64 ? INT64_MAX : (int64_t{1} << (type.bits - 1)) - 1;
        return std::to_string(-most - 1) + " to " + std::to_string(most);
    }
    return "0 to " + std::to_string(type.bits == 64 ? UINT64_MAX : (uint64_t{1} << type.bits) - 1);
}

bool Fits(const Type& type, bool negative, uint64_t magnitude) {
    if (!type.isSigned) return !negative && (type.bits == 64 || magnitude >> type.bits == 0);
    const uint64_t most = (uint64_t{1} << (type.bits - 1)) - (negative ? 0 : 1);
    return magnitude <= most;
}

std::string Written(const Json::Value& value, bool utf8) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = utf8;
    return Json::writeString(builder, value);
}

[[noreturn]] void OutOfRange(const Type& type, const std::string& word) {
    throw BadValue(word + " is out of range: " + type.name + " is " + Range(type));
}

Json::Value Number(const Type& type, bool negative, uint64_t magnitude, const std::string& word) {
    if (!Fits(type, negative, magnitude)) OutOfRange(type, word);
    if (!type.isSigned) return static_cast<Json::UInt64>(magnitude);
    return static_cast<Json::Int64>(negative ? ~magnitude + 1 : magnitude);
}

// Whether the word is written like a whole number.
bool ReadMagnitude(const std::string& word, bool& negative, uint64_t& magnitude, bool& tooLarge) {
    negative = !word.empty() && word[0] == '-';
    const std::string digits = word.substr(negative ? 1 : 0);
    const bool hexadecimal = digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
    const std::string allowed = hexadecimal ? "0123456789abcdefABCDEF" : "0123456789";
    const std::string number = hexadecimal ? digits.substr(2) : digits;
    if (number.empty() || number.find_first_not_of(allowed) != std::string::npos) return false;
    errno = 0;
    magnitude = std::strtoull(number.c_str(), nullptr, hexadecimal ? 16 : 10);
    tooLarge = errno == ERANGE;
    return true;
}

Json::Value Integer(const Type& type, const std::string& word) {
    bool negative = false;
    bool tooLarge = false;
    uint64_t magnitude = 0;
    if (!ReadMagnitude(word, negative, magnitude, tooLarge)) {
        throw BadValue(Quoted(word) + " is no whole number: " + type.name + " is written as 4096 or 0x1000");
    }
    if (tooLarge) OutOfRange(type, word);
    return Number(type, negative, magnitude, word);
}

Json::Value EnumeratorOf(const Type& type, const std::string& word) {
    std::vector<std::string> names;
    for (const Enumerator& enumerator : type.enumerators) {
        if (enumerator.name == word) return static_cast<Json::Int64>(enumerator.value);
        names.push_back(enumerator.name);
    }
    bool negative = false;
    bool tooLarge = false;
    uint64_t magnitude = 0;
    if (ReadMagnitude(word, negative, magnitude, tooLarge)) return Integer(type, word);
    throw BadValue(type.name + " has no enumerator " + Quoted(word) + NearestOf(word, names));
}

Json::Value Boolean(const std::string& word) {
    if (word == "true" || word == "1") return true;
    if (word == "false" || word == "0") return false;
    throw BadValue(Quoted(word) + " is neither true nor false");
}

Json::Value Real(const std::string& word) {
    char* end = nullptr;
    const double number = std::strtod(word.c_str(), &end);
    if (word.empty() || *end != '\0' || !std::isfinite(number)) throw BadValue(Quoted(word) + " is no number");
    return number;
}

Json::Value Elements(const Type& type, const std::string& word) {
    if (!word.empty() && word[0] == '[') return FromJsonValue(type, ParseJson(word));
    Json::Value values(Json::arrayValue);
    if (word.empty()) return values;
    std::stringstream words(word + (word.back() == ',' ? "," : ""));
    for (std::string element; std::getline(words, element, ',');) values.append(FromWord(*type.element, element));
    return values;
}

Json::Value StructFromJson(const Type& type, const Json::Value& value) {
    if (!value.isObject()) throw BadValue(type.name + " is written as a JSON object");
    std::vector<std::string> names;
    for (const Parameter& field : type.fields) names.push_back(field.name);
    for (const std::string& name : value.getMemberNames()) {
        if (std::find(names.begin(), names.end(), name) != names.end()) continue;
        throw BadValue(type.name + " has no field " + Quoted(name) + NearestOf(name, names));
    }
    Json::Value fields(Json::objectValue);
    for (const Parameter& field : type.fields) {
        if (!value.isMember(field.name)) throw BadValue(type.name + " lacks its field " + Quoted(field.name));
        fields[field.name] = FromJsonValue(*field.type, value[field.name]);
    }
    return fields;
}

[[noreturn]] void WrongJson(const Type& type, const Json::Value& value) {
    throw BadValue(WriteJson(value) + " is no " + type.name);
}

Json::Value IntegerFromJson(const Type& type, const Json::Value& value) {
    if (value.isString()) {
        return type.kind == Type::Kind::Enum ? EnumeratorOf(type, value.asString()) : Integer(type, value.asString());
    }
    if (!value.isIntegral()) WrongJson(type, value);
    const bool negative = value.isInt64() && value.asInt64() < 0;
    const uint64_t magnitude = negative ? ~static_cast<uint64_t>(value.asInt64()) + 1 : value.asUInt64();
    return Number(type, negative, magnitude, WriteJson(value));
}

const Enumerator* Named(const Type& type, const Json::Value& value) {
    for (const Enumerator& enumerator : type.enumerators) {
        if (enumerator.value == value.asInt64()) return &enumerator;
    }
    return nullptr;
}

std::string Hexadecimal(const Json::Value& value) {
    char text[24];
    std::snprintf(text, sizeof(text), "0x%llx", static_cast<unsigned long long>(value.asInt64()));
    return text;
}

bool IsText(const Type& type, const Json::Value& bytes) {
    if (type.element->name != "uint8_t" || bytes.empty()) return false;
    for (const Json::Value& byte : bytes) {
        if (byte.asInt() < 0x20 || byte.asInt() > 0x7e) return false;
    }
    return true;
}

std::string VectorForPeople(const Type& type, const Json::Value& values, bool handle) {
    std::string text;
    if (IsText(type, values)) {
        for (const Json::Value& byte : values) text += static_cast<char>(byte.asInt());
        return Quoted(text) + " (" + std::to_string(values.size()) + " bytes)";
    }
    for (const Json::Value& value : values)
        text += (text.empty() ? "" : ", ") + ForPeople(*type.element, value, handle);
    return "[" + text + "]";
}

std::string StructForPeople(const Type& type, const Json::Value& value) {
    std::string text;
    for (const Parameter& field : type.fields) {
        text += (text.empty() ? "" : ", ") + field.name + " " + ForPeople(*field.type, value[field.name], false);
    }
    return "{" + text + "}";
}

}  // namespace

Json::Value FromWord(const Type& type, const std::string& word) {
    switch (type.kind) {
        case Type::Kind::Bool:
            return Boolean(word);
        case Type::Kind::Integer:
            return Integer(type, word);
        case Type::Kind::Real:
            return Real(word);
        case Type::Kind::Text:
            return word;
        case Type::Kind::Vector:
            return Elements(type, word);
        case Type::Kind::Struct:
            return FromJsonValue(type, ParseJson(word));
        case Type::Kind::Enum:
            return EnumeratorOf(type, word);
        case Type::Kind::Callback:
            if (word == "@listen") return "@listen";
            if (word == "null") return Json::Value();
            throw BadValue(Quoted(word) + " is no " + type.name +
                           ": write @listen to see what arrives, or null for none");
    }
    return Json::Value();
}

Json::Value FromJsonValue(const Type& type, const Json::Value& value) {
    switch (type.kind) {
        case Type::Kind::Bool:
            if (!value.isBool()) WrongJson(type, value);
            return value;
        case Type::Kind::Integer:
        case Type::Kind::Enum:
            return IntegerFromJson(type, value);
        case Type::Kind::Real:
            if (!value.isNumeric()) WrongJson(type, value);
            return value.asDouble();
        case Type::Kind::Text:
            if (!value.isString()) WrongJson(type, value);
            return value;
        case Type::Kind::Vector: {
            if (!value.isArray()) WrongJson(type, value);
            Json::Value values(Json::arrayValue);
            for (const Json::Value& element : value) values.append(FromJsonValue(*type.element, element));
            return values;
        }
        case Type::Kind::Struct:
            return StructFromJson(type, value);
        case Type::Kind::Callback:
            if (value.isNull()) return value;
            return FromWord(type, value.isString() ? value.asString() : WriteJson(value));
    }
    return Json::Value();
}

std::string ForPeople(const Type& type, const Json::Value& value, bool handle) {
    switch (type.kind) {
        case Type::Kind::Text:
            return Quoted(value.asString());
        case Type::Kind::Enum: {
            const Enumerator* enumerator = Named(type, value);
            const std::string number = value.asString();
            return enumerator == nullptr ? number : enumerator->name + " (" + number + ")";
        }
        case Type::Kind::Vector:
            return VectorForPeople(type, value, handle);
        case Type::Kind::Struct:
            return StructForPeople(type, value);
        case Type::Kind::Integer:
            return handle ? Hexadecimal(value) : value.asString();
        default:
            return WriteJson(value);
    }
}

Json::Value ForPrograms(const Type& type, const Json::Value& value, bool numbers) {
    if (type.kind == Type::Kind::Enum && !numbers) {
        const Enumerator* enumerator = Named(type, value);
        return enumerator == nullptr ? value : Json::Value(enumerator->name);
    }
    if (type.kind == Type::Kind::Vector) {
        Json::Value values(Json::arrayValue);
        for (const Json::Value& element : value) values.append(ForPrograms(*type.element, element, numbers));
        return values;
    }
    if (type.kind == Type::Kind::Struct) {
        Json::Value fields(Json::objectValue);
        for (const Parameter& field : type.fields) {
            fields[field.name] = ForPrograms(*field.type, value[field.name], numbers);
        }
        return fields;
    }
    return value;
}

Json::Value ParseJson(const std::string& text) {
    Json::CharReaderBuilder builder;
    builder["collectComments"] = false;
    builder["allowComments"] = false;
    builder["allowTrailingCommas"] = false;
    builder["failIfExtra"] = true;
    builder["rejectDupKeys"] = true;
    builder["stackLimit"] = kDeepestNesting;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    std::string errors;
    bool good = false;
    try {
        good = reader->parse(text.data(), text.data() + text.size(), &root, &errors);
    } catch (const Json::Exception&) {
        throw BadValue("the JSON nests deeper than " + std::to_string(kDeepestNesting) + " levels");
    }
    if (good) return root;
    // "* Line 1, Column 2\n  Missing '}'...": the first error is the one to mend.
    unsigned line = 1;
    unsigned column = 1;
    std::sscanf(errors.c_str(), "* Line %u, Column %u", &line, &column);
    const size_t begin = errors.find_first_not_of(" \n", errors.find('\n'));
    const std::string reason =
        begin == std::string::npos ? "it is empty" : errors.substr(begin, errors.find('\n', begin) - begin);
    throw BadValue("not JSON: line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + reason);
}

std::string WriteJson(const Json::Value& value) {
    return Written(value, false);
}

std::string Quoted(const std::string& text) {
    const Json::Value value(text.data(), text.data() + text.size());
    const std::string ascii = Written(value, false);
    // What is no UTF-8 has become \ufffd there; \u0080 to \u009f are control characters.
    const bool harmless = ascii.find("\\ufffd") == std::string::npos && ascii.find("\\u008") == std::string::npos &&
                          ascii.find("\\u009") == std::string::npos;
    std::string quoted = harmless ? Written(value, true) : ascii;
    for (size_t at = 0; (at = quoted.find('\x7f', at)) != std::string::npos;) quoted.replace(at, 1, "\\u007f");
    return quoted;
}

}  // namespace hbbtv
