#include "wire/values.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string_view>

#include "common/nearest_name.h"
#include "common/text/json.h"
#include "common/text/pointer_text.h"
#include "common/text/quote.h"
#include "common/text/utf8.h"

namespace hbbtv {

namespace {

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

[[noreturn]] void OutOfRange(const Type& type, const std::string& word) {
    throw BadValue(word + " is out of range: " + type.name + " is " + Range(type));
}

Json::Value Number(const Type& type, bool negative, uint64_t magnitude, const std::string& word) {
    if (!Fits(type, negative, magnitude)) OutOfRange(type, word);
    if (!type.isSigned) return static_cast<Json::UInt64>(magnitude);
    return static_cast<Json::Int64>(negative ? ~magnitude + 1 : magnitude);
}

// Returns whether the word has the form of an integer, and its parts.
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
        throw BadValue(Quoted(word) + " is not an integer: write " + type.name + " as 4096 or 0x1000");
    }
    if (tooLarge) OutOfRange(type, word);
    return Number(type, negative, magnitude, word);
}

Json::Value EnumeratorOf(const Type& type, const std::string& word) {
    std::set<std::string> names;
    for (const Enumerator& enumerator : type.enumerators) {
        if (enumerator.name == word) return static_cast<Json::Int64>(enumerator.value);
        names.insert(enumerator.name);
    }
    bool negative = false;
    bool tooLarge = false;
    uint64_t magnitude = 0;
    if (ReadMagnitude(word, negative, magnitude, tooLarge)) return Integer(type, word);
    throw BadValue(type.name + " has no enumerator " + Quoted(word) + DidYouMean(word, names, kShortList));
}

Json::Value Boolean(const std::string& word) {
    if (word == "true" || word == "1") return true;
    if (word == "false" || word == "0") return false;
    throw BadValue(Quoted(word) + " is neither true nor false");
}

Json::Value Real(const std::string& word) {
    char* end = nullptr;
    const double number = std::strtod(word.c_str(), &end);
    if (word.empty() || *end != '\0' || !std::isfinite(number)) throw BadValue(Quoted(word) + " is not a number");
    return number;
}

Json::Value Document(const std::string& word) {
    try {
        return ParseJson(word);
    } catch (const BadJson& e) {
        throw BadValue(e.what());
    }
}

Json::Value Elements(const Type& type, const std::string& word) {
    if (!word.empty() && word[0] == '[') return FromJsonValue(type, Document(word));
    Json::Value values(Json::arrayValue);
    if (word.empty()) return values;
    std::stringstream words(word + (word.back() == ',' ? "," : ""));
    for (std::string element; std::getline(words, element, ',');) values.append(FromWord(*type.element, element));
    return values;
}

Json::Value StructFromJson(const Type& type, const Json::Value& value) {
    if (!value.isObject()) throw BadValue(type.name + " must be a JSON object");
    std::set<std::string> names;
    for (const Parameter& field : type.fields) names.insert(field.name);
    for (const std::string& name : value.getMemberNames()) {
        if (names.count(name) != 0) continue;
        throw BadValue(type.name + " has no field " + Quoted(name) + DidYouMean(name, names, kShortList));
    }
    Json::Value fields(Json::objectValue);
    for (const Parameter& field : type.fields) {
        if (!value.isMember(field.name)) throw BadValue(type.name + " requires the field " + Quoted(field.name));
        fields[field.name] = FromJsonValue(*field.type, value[field.name]);
    }
    return fields;
}

[[noreturn]] void WrongJson(const Type& type, const Json::Value& value) {
    throw BadValue(WriteJson(value) + " is not a valid " + type.name);
}

std::string CharactersOf(const std::string& bytes) {
    std::string text;
    for (const char c : bytes) AppendUtf8(text, static_cast<unsigned char>(c));
    return text;
}

// As in a play.
std::string QuotedBytes(const std::string& bytes) {
    std::string text = "\"";
    for (const char c : bytes) {
        char escaped[8];
        std::snprintf(escaped, sizeof(escaped), "\\x%02x", static_cast<unsigned char>(c));
        const bool plain = c >= ' ' && c <= '~' && c != '"' && c != '\\';
        text += plain ? std::string(1, c) : escaped;
    }
    return text + "\"";
}

std::string BytesOf(const Type& type, const Json::Value& value) {
    const std::string text = value.asString();
    std::string bytes;
    for (size_t i = 0, length = 0; i < text.size(); i += length) {
        uint32_t code = 0;
        length = Utf8Length(std::string_view(text).substr(i), code);
        if (length == 0 || code > 0xFF) WrongJson(type, value);
        bytes += static_cast<char>(code);
    }
    return bytes;
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
            return FromJsonValue(type, Document(word));
        case Type::Kind::Enum:
            return EnumeratorOf(type, word);
        case Type::Kind::Callback:
            if (word == "@listen") return "@listen";
            if (word == "null") return Json::Value();
            throw BadValue(Quoted(word) + " is not a valid " + type.name +
                           ": write @listen to print the calls that arrive, or null");
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
            return type.bytes ? BytesOf(type, value) : value;
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
            return type.bytes ? QuotedBytes(value.asString()) : Quoted(value.asString());
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
            return handle ? HandleText(static_cast<uint64_t>(value.asInt64())) : value.asString();
        default:
            return WriteJson(value);
    }
}

Json::Value ForPrograms(const Type& type, const Json::Value& value, bool numbers) {
    if (type.bytes) return CharactersOf(value.asString());
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

}  // namespace hbbtv
