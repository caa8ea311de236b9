#include "chromium/console.h"

#include <cstdio>

#include "common/text/json.h"
#include "common/text/printable.h"

namespace hbbtv::browser {

namespace {

// "http://host/page.js:12:3". Lines and columns begin with 0 in the protocol.
std::string Place(const std::string& url, const Json::Value& line, const Json::Value& column) {
    if (url.empty()) return "";
    std::string place = url + ":" + std::to_string(line.asInt() + 1);
    if (column.isIntegral()) place += ":" + std::to_string(column.asInt() + 1);
    return place;
}

std::string PlaceOf(const Json::Value& trace) {
    const Json::Value& frame = trace["callFrames"][0];
    return frame.isNull() ? "" : Place(frame["url"].asString(), frame["lineNumber"], frame["columnNumber"]);
}

// As a console shows a value.
std::string Shown(const Json::Value& value) {
    if (value.isMember("value"))
        return value["value"].isString() ? value["value"].asString() : WriteJson(value["value"]);
    if (value.isMember("unserializableValue")) return value["unserializableValue"].asString();
    if (value.isMember("description")) return value["description"].asString();
    return value["type"].asString();
}

std::string Exception(const Json::Value& details) {
    const Json::Value& thrown = details["exception"];
    return thrown.isObject() ? Shown(thrown) : details["text"].asString();
}

}  // namespace

bool Console::Take(const std::string& method, const Json::Value& params) {
    if (method == "Runtime.consoleAPICalled") {
        std::string text;
        for (const Json::Value& value : params["args"]) text += (text.empty() ? "" : " ") + Shown(value);
        Print(params["type"].asString(), text, PlaceOf(params["stackTrace"]));
        return true;
    }
    if (method == "Runtime.exceptionThrown") {
        const Json::Value& details = params["exceptionDetails"];
        Print("error", Exception(details),
              Place(details["url"].asString(), details["lineNumber"], details["columnNumber"]));
        return true;
    }
    if (method == "Log.entryAdded") {
        const Json::Value& entry = params["entry"];
        Print(entry["level"].asString(), entry["text"].asString(),
              Place(entry["url"].asString(), entry["lineNumber"], Json::Value()));
        return true;
    }
    return false;
}

void Console::Print(const std::string& level, const std::string& text, const std::string& place) const {
    if (!mShown) return;
    const std::string line = level + ": " + text + (place.empty() ? "" : "  (" + place + ")");
    std::printf("%s\n", Printable(line).c_str());
    std::fflush(stdout);
}

}  // namespace hbbtv::browser
