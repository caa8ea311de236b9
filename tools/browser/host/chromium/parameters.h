// Parameters of DevTools commands that several files need.
#pragma once

#include <json/value.h>

namespace hbbtv::browser {

// Where each page begins.
inline constexpr const char* kBlank = "about:blank";

inline Json::Value Object(const char* name, const Json::Value& value) {
    Json::Value object;
    object[name] = value;
    return object;
}

// Lets Chromium report pages and frames, which wait until they have been prepared.
inline Json::Value AutoAttach() {
    Json::Value params;
    params["autoAttach"] = true;
    params["waitForDebuggerOnStart"] = true;
    params["flatten"] = true;
    for (const char* type : {"page", "iframe"}) params["filter"].append(Object("type", type));
    params["filter"].append(Object("exclude", true));
    return params;
}

}  // namespace hbbtv::browser
