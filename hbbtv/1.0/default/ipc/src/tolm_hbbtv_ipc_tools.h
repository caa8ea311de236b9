// Pointers (handles of platform objects, contexts of callbacks) as strings in JSON.
#pragma once

#include <json/json.h>

#include <string>

class TolmHbbtvIpcTools {
  public:
    // Appends the pointer in the C library's "%p" form, or nothing for null.
    static void AppendPointer(const void* p, std::string& to);

    // Sets obj[key] to the pointer in this form.
    static void AddPointerValue(const void* p, const std::string& key, Json::Value& obj);

    // Reads obj[key] into *out. Returns -1 if `out` is null or the member is not a string, and 0 otherwise: a string
    // that is not a pointer leaves *out unchanged. A number that is too large for a pointer loses its high half.
    static int ParsePointerValue(const Json::Value& obj, const std::string& key, void** out);
};
