#include "common/text/json.h"

#include <json/reader.h>
#include <json/writer.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string_view>

#include "common/text/quote.h"

namespace hbbtv {

namespace {

// Takes the first error of "* Line 1, Column 2\n  Missing '}'.\nSee Line ...\n": the one to fix.
BadJson FirstError(const std::string& errors) {
    unsigned line = 1;
    unsigned column = 1;
    std::sscanf(errors.c_str(), "* Line %u, Column %u", &line, &column);
    const size_t begin = errors.find_first_not_of(" \n", errors.find('\n'));
    std::string reason =
        begin == std::string::npos ? "it is empty" : errors.substr(begin, errors.find('\n', begin) - begin);
    while (!reason.empty() && reason.back() == '.') reason.pop_back();
    return BadJson(line, column, reason);
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Moves past digits. Returns whether there are any.
bool SkipDigits(std::string_view word, size_t& at) {
    const size_t begin = at;
    while (at < word.size() && IsDigit(word[at])) ++at;
    return at > begin;
}

bool IsNumber(std::string_view word) {
    size_t at = word[0] == '-' ? 1 : 0;
    const size_t first = at;
    if (!SkipDigits(word, at) || (word[first] == '0' && at > first + 1)) return false;
    if (at < word.size() && word[at] == '.' && !SkipDigits(word, ++at)) return false;
    if (at < word.size() && (word[at] == 'e' || word[at] == 'E')) {
        ++at;
        if (at < word.size() && (word[at] == '+' || word[at] == '-')) ++at;
        if (!SkipDigits(word, at)) return false;
    }
    return at == word.size();
}

// Returns whether a value is within more than `deepest` arrays and objects. jsoncpp throws at one, or ends the process
// if it was built without exceptions.
bool NestsDeeper(const std::string& text, int deepest) {
    int depth = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == ']' || c == '}') {
            --depth;
        } else if (c != ' ' && c != '\t' && c != '\r' && c != '\n' && c != ',' && c != ':') {
            if (depth >= deepest) return true;
            if (c == '[' || c == '{') ++depth;
            if (c != '"') continue;
            for (++at; at < text.size() && text[at] != '"'; ++at) at += text[at] == '\\' ? 1 : 0;
        }
    }
    return false;
}

// jsoncpp also takes numbers that JSON does not have, such as +1 and 01. `text` is a document that it has accepted.
void CheckNumbers(const std::string& text) {
    unsigned line = 1;
    size_t lineBegin = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\n') {
            ++line;
            lineBegin = at + 1;
        } else if (text[at] == '"') {
            for (++at; at < text.size() && text[at] != '"'; ++at) at += text[at] == '\\' ? 1 : 0;
        } else if (IsDigit(text[at]) || text[at] == '-' || text[at] == '+' || text[at] == '.') {
            const size_t end = std::min(text.find_first_of(",:]} \t\r\n", at), text.size());
            const std::string word = text.substr(at, end - at);
            const auto column = static_cast<unsigned>(at - lineBegin + 1);
            if (!IsNumber(word)) throw BadJson(line, column, Quoted(word) + " is not a number");
            at = end - 1;
        }
    }
}

// Creating a reader takes longer than reading a message.
Json::CharReader& StrictReader() {
    thread_local const std::unique_ptr<Json::CharReader> reader = [] {
        Json::CharReaderBuilder builder;
        builder["collectComments"] = false;
        builder["allowComments"] = false;
        builder["allowTrailingCommas"] = false;
        builder["failIfExtra"] = true;
        builder["rejectDupKeys"] = true;
        return std::unique_ptr<Json::CharReader>(builder.newCharReader());
    }();
    return *reader;
}

// Creating a writer takes longer than writing a message.
std::unique_ptr<Json::StreamWriter> Writer(bool utf8) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = utf8;
    return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

std::string Written(Json::StreamWriter& writer, const Json::Value& value) {
    std::ostringstream stream;
    writer.write(value, &stream);
    return stream.str();
}

}  // namespace

BadJson::BadJson(unsigned line, unsigned column, const std::string& reason)
    : std::runtime_error("not valid JSON: line " + std::to_string(line) + ", column " + std::to_string(column) + ": " +
                         reason),
      mLine(line),
      mColumn(column),
      mReason(reason) {}

Json::Value ParseJson(const std::string& text, int deepest) {
    if (NestsDeeper(text, deepest)) throw BadJson(1, 1, "it nests deeper than " + std::to_string(deepest) + " levels");
    Json::Value root;
    std::string errors;
    if (!StrictReader().parse(text.data(), text.data() + text.size(), &root, &errors)) throw FirstError(errors);
    CheckNumbers(text);
    return root;
}

std::string WriteJson(const Json::Value& value) {
    thread_local const auto writer = Writer(false);
    return Written(*writer, value);
}

std::string WriteJsonAsUtf8(const Json::Value& value) {
    thread_local const auto writer = Writer(true);
    return Written(*writer, value);
}

}  // namespace hbbtv
