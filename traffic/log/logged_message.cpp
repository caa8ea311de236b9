#include "traffic/log/logged_message.h"

#include <cstdlib>
#include <cstring>
#include <sstream>

#include "common/text/json.h"

namespace hbbtv::traffic {

namespace {

constexpr const char* kPlace = "[tolm](";
constexpr const char* kSent = ": send msg:";
constexpr const char* kReceived = ": recv msg:";

bool StartsWith(const std::string& text, size_t at, const char* part) {
    return text.compare(at, std::strlen(part), part) == 0;
}

// Returns the end of the JSON value at a place: npos if the text ends before it.
size_t EndOfValue(const std::string& text, size_t begin) {
    int depth = 0;
    for (size_t at = begin; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '"') {
            for (++at; at < text.size() && text[at] != '"'; ++at) at += text[at] == '\\' ? 1 : 0;
            if (at >= text.size()) return std::string::npos;
        } else if (c == '{' || c == '[') {
            ++depth;
        } else if (c == '}' || c == ']') {
            if (--depth <= 0) return at + 1;
        } else if (depth == 0 && c == '\n') {
            return at;
        }
    }
    return std::string::npos;
}

// Reads the members of a styled object that are on a line of their own: \t"ret" : 0,
Json::Value MembersOf(const std::string& text) {
    Json::Value members(Json::objectValue);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("\t\"", 0) != 0) continue;
        const bool whole = line.back() == ',';
        if (whole) line.pop_back();
        // The last line of what is cut may be a part of a number or of a word.
        if (!whole && lines.eof()) continue;
        try {
            const Json::Value member = ParseJson("{" + line + "}");
            for (const std::string& key : member.getMemberNames()) members[key] = member[key];
        } catch (const BadJson&) {
            // The beginning of a list or an object.
        }
    }
    return members;
}

LoggedDocument DocumentOf(const std::string& text) {
    LoggedDocument document;
    document.text = text;
    try {
        const Json::Value whole = ParseJson(text);
        if (whole.isObject()) document.members = whole;
    } catch (const BadJson&) {
        document.members = MembersOf(text);
    }
    return document;
}

// Moves past the blanks and line breaks between documents.
void SkipBlanks(const std::string& text, size_t& at) {
    while (at < text.size() && (text[at] == '\n' || text[at] == ' ')) ++at;
}

// Reads a document at a place and moves behind it. Returns false if it is cut.
bool TakeDocument(const std::string& text, size_t& at, LoggedDocument& document) {
    const size_t end = EndOfValue(text, at);
    document = DocumentOf(text.substr(at, end == std::string::npos ? end : end - at));
    at = end == std::string::npos ? text.size() : end;
    SkipBlanks(text, at);
    return end != std::string::npos;
}

// "in m_ipc_id(1f) port(3)"
bool TakeSocket(const std::string& text, size_t at, LoggedMessage& message) {
    constexpr const char* kKey = "in m_ipc_id(";
    if (!StartsWith(text, at, kKey)) return false;
    char* end = nullptr;
    message.key = static_cast<int>(std::strtol(text.c_str() + at + std::strlen(kKey), &end, 16));
    if (std::strncmp(end, ") port(", 7) != 0) return false;
    message.port = static_cast<int>(std::strtol(end + 7, &end, 10));
    return *end == ')';
}

}  // namespace

bool BeginsMessage(const std::string& text) {
    if (text.rfind(kPlace, 0) != 0) return false;
    const size_t place = text.find(": ");
    return place != std::string::npos && (StartsWith(text, place, kSent) || StartsWith(text, place, kReceived));
}

bool ContinuesMessage(const std::string& text) {
    if (text.empty()) return false;
    return std::strchr("\t{}[]", text[0]) != nullptr || text.rfind(", out_msg:", 0) == 0 ||
           text.rfind(" and out_msg:", 0) == 0 || text.rfind(" in m_ipc_id(", 0) == 0 || text == "null";
}

LoggedMessage ReadLoggedMessage(const std::string& text) {
    LoggedMessage message;
    const size_t place = text.find(": ");
    message.received = StartsWith(text, place, kReceived);
    // A one-way message has a function of its own; the lines of all others have the reply, too.
    const std::string function = text.substr(0, place);
    const bool oneWay = function.size() > 9 && function.compare(function.size() - 9, 9, "WithNoRet") == 0;
    size_t at = place + std::strlen(kSent);
    if (!TakeDocument(text, at, message.message)) return message;
    for (const char* separator : {", out_msg:", "and out_msg:"}) {
        if (!StartsWith(text, at, separator)) continue;
        at += std::strlen(separator);
        if (!TakeDocument(text, at, message.reply.emplace())) return message;
        break;
    }
    message.whole = message.received ? TakeSocket(text, at, message) : message.reply || oneWay;
    return message;
}

}  // namespace hbbtv::traffic
