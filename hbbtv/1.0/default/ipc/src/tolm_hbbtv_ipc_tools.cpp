#include "ipc/src/tolm_hbbtv_ipc_tools.h"

#include <cstdint>
#include <cstdio>

// Not by snprintf(), which takes longer than the rest of a request's text.
void TolmHbbtvIpcTools::AppendPointer(const void* p, std::string& to) {
    const auto number = reinterpret_cast<uintptr_t>(p);
    if (number == 0) return;
    unsigned shift = 4 * (2 * sizeof(number) - 1);
    while (number >> shift == 0) shift -= 4;
    to += "0x";
    for (; shift > 0; shift -= 4) to += "0123456789abcdef"[number >> shift & 0xf];
    to += "0123456789abcdef"[number & 0xf];
}

void TolmHbbtvIpcTools::AddPointerValue(const void* p, const std::string& key, Json::Value& obj) {
    std::string text;
    AppendPointer(p, text);
    obj[key] = text;
}

int TolmHbbtvIpcTools::ParsePointerValue(const Json::Value& obj, const std::string& key, void** out) {
    if (out == nullptr || !obj.isObject()) return -1;
    const Json::Value* member = obj.find(key.data(), key.data() + key.size());
    if (member == nullptr || !member->isString()) return -1;
    // Not "%p": of a number that a 32-bit process cannot hold, C libraries make different pointers. All of them keep
    // the low half of an integer.
    unsigned long long number = 0;
    int end = 0;
    if (sscanf(member->asCString(), "%llx", &number) == 1) {
        *out = reinterpret_cast<void*>(static_cast<uintptr_t>(number));
    } else if (sscanf(member->asCString(), " (nil)%n", &end) == 0 && end > 0) {  // null as some C libraries print it
        *out = nullptr;
    }
    return 0;
}
