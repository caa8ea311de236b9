#include "protocol_events.h"

#include <json/writer.h>

#include <algorithm>
#include <cctype>

#include "rows.h"
#include "wire/message.h"

namespace hbbtv::test {

namespace {

constexpr unsigned kContext = 0xabcd;

}  // namespace

ProtocolEvent::ProtocolEvent(const std::string& event)
    : mDefinition(UnderTest().Wire().FindEvent(event)),
      mValues(ValuesFor(mDefinition["members"], 100 * (mDefinition["code"].asInt() + 1), kAllBools)) {}

std::string ProtocolEvent::Text() const {
    Json::Value values = mValues;
    values["context"] = kContext;
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, MakeEvent(UnderTest().Wire(), mDefinition, values));
}

std::string ProtocolEvent::TestName() const {
    return TestNameOf(mDefinition["name"].asString());
}

std::string TestNameOf(const std::string& name) {
    std::string result;
    std::string word;
    for (const char c : name + " ") {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
            word += c;
            continue;
        }
        const auto upper = [](unsigned char l) { return std::isupper(l) != 0; };
        if (std::all_of(word.begin(), word.end(), upper)) {
            for (char& l : word) l = static_cast<char>(std::tolower(static_cast<unsigned char>(l)));
        }
        if (!word.empty()) word[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(word[0])));
        result += word;
        word.clear();
    }
    return result;
}

}  // namespace hbbtv::test
