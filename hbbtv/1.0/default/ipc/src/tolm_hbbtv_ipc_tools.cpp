#include "ipc/src/tolm_hbbtv_ipc_tools.h"

#include <cstdio>

void TolmHbbtvIpcTools::AddPointerValue(const void* p, const std::string& key, Json::Value& obj) {
    char text[112] = "";
    if (p != nullptr) snprintf(text, sizeof(text), "%p", p);
    obj[key] = text;
}

int TolmHbbtvIpcTools::ParsePointerValue(const Json::Value& obj, const std::string& key, void** out) {
    if (out == nullptr || !obj.isObject()) return -1;
    const Json::Value* member = obj.find(key.data(), key.data() + key.size());
    if (member == nullptr || !member->isString()) return -1;
    sscanf(member->asCString(), "%p", out);
    return 0;
}
