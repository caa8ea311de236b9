#include "common/text/json.h"

#include <json/reader.h>
#include <json/writer.h>

#include <cstdio>
#include <memory>

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

}  // namespace

BadJson::BadJson(unsigned line, unsigned column, const std::string& reason)
    : std::runtime_error("not valid JSON: line " + std::to_string(line) + ", column " + std::to_string(column) + ": " +
                         reason),
      mLine(line),
      mColumn(column),
      mReason(reason) {}

Json::Value ParseJson(const std::string& text, int deepest) {
    Json::CharReaderBuilder builder;
    builder["collectComments"] = false;
    builder["allowComments"] = false;
    builder["allowTrailingCommas"] = false;
    builder["failIfExtra"] = true;
    builder["rejectDupKeys"] = true;
    builder["stackLimit"] = deepest;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    std::string errors;
    bool good = false;
    try {
        good = reader->parse(text.data(), text.data() + text.size(), &root, &errors);
    } catch (const Json::Exception&) {
        // The reader throws for one reason only.
        throw BadJson(1, 1, "it nests deeper than " + std::to_string(deepest) + " levels");
    }
    if (!good) throw FirstError(errors);
    return root;
}

std::string WriteJson(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

}  // namespace hbbtv
