// Pointers (handles of platform objects, contexts of callbacks) as text in JSON.
#pragma once

#include <json/json.h>

#include <string>

class TolmHbbtvIpcTools {
  public:
    // Sets obj[key] to the pointer in the C library's "%p" form, null to the empty text.
    static void AddPointerValue(const void* p, const std::string& key, Json::Value& obj);

    // Reads obj[key] into *out. -1 when `out` is null or the member is no text, else 0: a text that is no pointer
    // leaves *out as it was.
    static int ParsePointerValue(const Json::Value& obj, const std::string& key, void** out);
};
