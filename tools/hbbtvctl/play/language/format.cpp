#include "play/language/format.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <ctime>
#include <sstream>

#include "common/text/json.h"
#include "common/text/quote.h"
#include "package/description.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

constexpr size_t kMostCharacters = 60;
constexpr size_t kWidestColumn = 200;

const Type* EnumNamed(const std::string& name) {
    for (const auto& type : Package::Get().types) {
        if (type->name == name && type->kind == Type::Kind::Enum) return type.get();
    }
    return nullptr;
}

bool AllDigits(const std::string& text) {
    return !text.empty() && text.size() < 4 && text.find_first_not_of("0123456789") == std::string::npos;
}

bool IsWidth(const std::string& form) {
    const std::string digits = form.substr(form.rfind('>', 0) == 0 ? 1 : 0);
    return AllDigits(digits) && std::stoul(digits) <= kWidestColumn;
}

bool IsForm(const std::string& form) {
    for (const char* known : {"hex", "time", "date", "minutes", "name"}) {
        if (form == known) return true;
    }
    return form.rfind('?', 0) == 0 || IsWidth(form) || EnumNamed(form) != nullptr;
}

std::string Hexadecimal(int64_t number) {
    char text[24];
    std::snprintf(text, sizeof(text), "0x%08llx", static_cast<unsigned long long>(number));
    return text;
}

std::string LocalTime(int64_t seconds, const char* how) {
    const std::time_t time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    char text[40] = "";
    if (localtime_r(&time, &parts) != nullptr) std::strftime(text, sizeof(text), how, &parts);
    return text;
}

bool Continues(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

std::string Padded(const std::string& text, const std::string& form) {
    const bool right = form[0] == '>';
    const size_t width = std::stoul(form.substr(right ? 1 : 0));
    const auto length =
        static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return !Continues(c); }));
    const std::string blanks(width > length ? width - length : 0, ' ');
    return right ? blanks + text : text + blanks;
}

bool IsNothing(const Json::Value& value) {
    return value.isNull() || value == Json::Value(false) || value == Json::Value("") ||
           (value.isNumeric() && value.asDouble() == 0);
}

std::string Plain(const Json::Value& value) {
    return value.isString() ? value.asString() : WriteJson(value);
}

Json::Value MemberOf(const Json::Value& value, const std::string& member) {
    if (!value.isObject() || !value.isMember(member)) throw BadValue(WriteJson(value) + " has no " + Quoted(member));
    return value[member];
}

// Formats a value; forms after the first get a string.
Json::Value InForm(const Json::Value& value, const std::string& form,
                   const std::function<std::string(int64_t)>& nameOf) {
    if (form[0] == '?') return IsNothing(value) ? "" : form.substr(1);
    if (IsWidth(form)) return Padded(OneLine(Plain(value)), form);
    if (!value.isIntegral()) return value;
    const int64_t number = value.isUInt64() ? static_cast<int64_t>(value.asUInt64()) : value.asInt64();
    if (form == "hex") return Hexadecimal(number);
    if (form == "time") return LocalTime(number, "%H:%M");
    if (form == "date") return LocalTime(number, "%Y-%m-%d %H:%M");
    if (form == "minutes") return std::to_string(number / 60);
    if (form == "name") {
        const std::string name = nameOf(number);
        return name.empty() ? Hexadecimal(number) : name;
    }
    return ForPrograms(*EnumNamed(form), value, false);
}

Format::Piece ReadPiece(const std::string& text, const std::string& field) {
    Format::Piece piece{text, "", {}, {}};
    std::istringstream parts(field);
    std::getline(parts, piece.name, ':');
    for (std::string form; std::getline(parts, form, ':');) {
        if (!IsForm(form)) {
            throw BadValue(Quoted(form) +
                           " is not a form of a value: use hex, time, date, minutes, name, ?TEXT, a width as in " +
                           "20 or >20, or an enumeration of the package");
        }
        piece.forms.push_back(form);
    }
    std::istringstream path(piece.name);
    std::getline(path, piece.name, '.');
    for (std::string member; std::getline(path, member, '.');) piece.members.push_back(member);
    const bool word = std::all_of(piece.name.begin(), piece.name.end(),
                                  [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
    if (piece.name.empty() || !word) throw BadValue("\"{$" + field + "}\" does not name a value");
    return piece;
}

}  // namespace

bool Format::HasNames() const {
    return std::any_of(pieces.begin(), pieces.end(), [](const Piece& piece) { return !piece.name.empty(); });
}

Format ReadFormat(const std::string& text) {
    Format format;
    size_t at = 0;
    while (true) {
        const size_t open = text.find("{$", at);
        if (open == std::string::npos) break;
        const size_t close = text.find('}', open);
        if (close == std::string::npos) throw BadValue("\"{$\" without its \"}\"");
        format.pieces.push_back(ReadPiece(text.substr(at, open - at), text.substr(open + 2, close - open - 2)));
        at = close + 1;
    }
    format.pieces.push_back({text.substr(at), "", {}, {}});
    return format;
}

std::string Filled(const Format& format, const std::function<Json::Value(const std::string&)>& valueOf,
                   const std::function<std::string(int64_t)>& nameOf) {
    std::string text;
    for (const Format::Piece& piece : format.pieces) {
        text += piece.text;
        if (piece.name.empty()) continue;
        Json::Value value = valueOf(piece.name);
        for (const std::string& member : piece.members) value = MemberOf(value, member);
        for (const std::string& form : piece.forms) value = InForm(value, form, nameOf);
        text += Plain(value);
    }
    return text;
}

std::string OneLine(const std::string& text) {
    std::string line;
    size_t characters = 0;
    for (size_t at = 0; at < text.size() && line.size() < 4 * kMostCharacters; ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (!Continues(text[at]) && ++characters > kMostCharacters) break;
        const bool upperControl =
            byte == 0xc2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xa0;
        line += byte < 0x20 || byte == 0x7f || upperControl ? '.' : text[at];
        if (upperControl) ++at;
    }
    return line;
}

}  // namespace hbbtv::ctl
