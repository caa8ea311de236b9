#include "ipc/src/tolm_adaptor_call.h"

#include "ipc/src/tolm_hbbtv_ipc_tools.h"
#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_ipc_key_converter.h"
#include "ipc/tolm_log.h"
#include "ipc/tolm_reply_timeout.h"

namespace tolm {

namespace {

std::vector<unsigned char> RequestText(const Family& family, const Method& method,
                                       std::initializer_list<Member> members) {
    ObjectText request;
    if (family.type) request.Add(Int("type", *family.type));
    request.Add(Int(family.codeKey, method.code));
    for (const Member& member : members) request.Add(member);
    return request.AsDocument();
}

void LogLate(const Family& family, const Method& method) {
    const std::string message = "no reply to request " + std::to_string(method.code) + " of " +
                                TolmIpcKeyConverter::GetInstance()->GetSocketName(family.requests) + " within " +
                                std::to_string(ReplyTimeout().count()) + " ms, the connection is closed";
    LogAt(method.place, ANDROID_LOG_WARN, family.tag, message.c_str());
}

}  // namespace

Target ToInt(const char* key, int& to) {
    return {key, &to, [](const Json::Value& object, const char* k, void* out) {
                *static_cast<int*>(out) = ReadInt(object, k);
                return true;
            }};
}

Target ToUInt(const char* key, unsigned& to) {
    return {key, &to, [](const Json::Value& object, const char* k, void* out) {
                *static_cast<unsigned*>(out) = ReadUInt(object, k);
                return true;
            }};
}

Target ToIntBits(const char* key, unsigned& to) {
    return {key, &to, [](const Json::Value& object, const char* k, void* out) {
                *static_cast<unsigned*>(out) = static_cast<unsigned>(ReadInt(object, k));
                return true;
            }};
}

Target ToInt64(const char* key, int64_t& to) {
    return {key, &to, [](const Json::Value& object, const char* k, void* out) {
                *static_cast<int64_t*>(out) = ReadInt64(object, k);
                return true;
            }};
}

Target ToUInt64(const char* key, uint64_t& to) {
    return {key, &to, [](const Json::Value& object, const char* k, void* out) {
                *static_cast<uint64_t*>(out) = ReadUInt64(object, k);
                return true;
            }};
}

Target ToBool(const char* key, bool& to) {
    return {key, &to, [](const Json::Value& object, const char* k, void* out) {
                *static_cast<bool*>(out) = ReadBool(object, k);
                return true;
            }};
}

Target ToFlag(const char* key, bool& to) {
    return {key, &to, [](const Json::Value& object, const char* k, void* out) {
                *static_cast<bool*>(out) = ReadInt(object, k) != 0;
                return true;
            }};
}

Target ToReal(const char* key, double& to) {
    return {key, &to, [](const Json::Value& object, const char* k, void* out) {
                *static_cast<double*>(out) = ReadReal(object, k);
                return true;
            }};
}

Target ToText(const char* key, std::string& to) {
    return {key, &to, [](const Json::Value& object, const char* k, void* out) {
                *static_cast<std::string*>(out) = ReadText(object, k);
                return true;
            }};
}

Target ToPointer(const char* key, void*& to) {
    return {key, &to, [](const Json::Value& object, const char* k, void* out) {
                return TolmHbbtvIpcTools::ParsePointerValue(object, k, static_cast<void**>(out)) == 0;
            }};
}

Target ToNumberedInts(const char* countKey, std::vector<int>& to) {
    return {countKey, &to, [](const Json::Value& object, const char* k, void* out) {
                const int count = ReadInt(object, k);
                if (count > kMostNumbered) return false;
                for (int i = 0; i < count; ++i) {
                    static_cast<std::vector<int>*>(out)->push_back(ReadInt(object, NumberedKey(i).c_str()));
                }
                return true;
            }};
}

bool Read(const Json::Value& object, std::initializer_list<Target> targets) {
    bool all = true;
    for (const Target& target : targets) all = target.read(object, target.key, target.to) && all;
    return all;
}

TolmAdaptorClient::TolmAdaptorClient(const Family& family)
    : TolmBaseClient(family.requests, family.port), mFamily(family) {}

int TolmAdaptorClient::Call(const Method& method, std::initializer_list<Member> request,
                            std::initializer_list<Target> results) {
    LogScope scope(mFamily.tag, method.place);
    MemoryClaim claim;
    Json::Value reply;
    bool late = false;
    const int status =
        SendIpc(RequestText(mFamily, method, request), {method.code, method.place.function}, reply, claim, late);
    if (late) LogLate(mFamily, method);
    return status == 0 && !Read(reply, results) ? -1 : status;
}

int TolmAdaptorClient::Post(const Method& method, std::initializer_list<Member> request,
                            void (*logFailure)(const Method& method)) {
    LogScope scope(mFamily.tag, method.place);
    const int status = SendIpcWithNoRet(RequestText(mFamily, method, request), {method.code, method.place.function});
    if (status != 0 && logFailure != nullptr) logFailure(method);
    return status;
}

}  // namespace tolm
