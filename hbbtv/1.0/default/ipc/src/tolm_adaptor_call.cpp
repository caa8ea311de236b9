#include "ipc/src/tolm_adaptor_call.h"

#include "ipc/src/tolm_hbbtv_ipc_tools.h"
#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_ipc_key_converter.h"
#include "ipc/tolm_log.h"
#include "ipc/tolm_reply_timeout.h"

namespace tolm {

namespace {

Member MemberOf(const char* key, Member::Kind kind) {
    Member member{};
    member.key = key;
    member.kind = kind;
    return member;
}

std::string NumberedKey(size_t index) {
    return ("k" + std::to_string(index)).substr(0, 3);
}

// If several values have the same name, the last one counts.
void AddNumberedInts(const Member& member, Json::Value& object) {
    size_t index = 0;
    for (const int value : *member.asInts) object[NumberedKey(index++)] = value;
}

void AddNumberedPointers(const Member& member, Json::Value& object) {
    size_t index = 0;
    for (const void* pointer : *member.asPointers) {
        TolmHbbtvIpcTools::AddPointerValue(pointer, member.key + std::to_string(index++), object);
    }
}

void Add(const Member& member, Json::Value& object) {
    const Json::StaticString key(member.key);
    switch (member.kind) {
        case Member::Kind::kInt:
            object[key] = member.asInt;
            break;
        case Member::Kind::kUInt:
            object[key] = member.asUInt;
            break;
        case Member::Kind::kBool:
            object[key] = member.asBool;
            break;
        case Member::Kind::kReal:
            object[key] = member.asReal;
            break;
        case Member::Kind::kText:
            object[key] = *member.asText;
            break;
        case Member::Kind::kPointer:
            TolmHbbtvIpcTools::AddPointerValue(member.asPointer, member.key, object);
            break;
        case Member::Kind::kNumberedInts:
            AddNumberedInts(member, object);
            break;
        case Member::Kind::kNumberedPointers:
            AddNumberedPointers(member, object);
            break;
        case Member::Kind::kArray:
            object[key] = *member.asArray;
            break;
    }
}

Json::Value Request(const Family& family, const Method& method, std::initializer_list<Member> members) {
    Json::Value request(Json::objectValue);
    if (family.type) request[Json::StaticString("type")] = *family.type;
    request[Json::StaticString(family.codeKey)] = method.code;
    for (const Member& member : members) Add(member, request);
    return request;
}

void LogLate(const Family& family, const Method& method) {
    const std::string message = "no reply to request " + std::to_string(method.code) + " of " +
                                TolmIpcKeyConverter::GetInstance()->GetSocketName(family.requests) + " within " +
                                std::to_string(ReplyTimeout().count()) + " ms, the connection is closed";
    LogAt(method.place, ANDROID_LOG_WARN, family.tag, message.c_str());
}

}  // namespace

Member Int(const char* key, int value) {
    Member member = MemberOf(key, Member::Kind::kInt);
    member.asInt = value;
    return member;
}

Member UInt(const char* key, unsigned value) {
    Member member = MemberOf(key, Member::Kind::kUInt);
    member.asUInt = value;
    return member;
}

Member Bool(const char* key, bool value) {
    Member member = MemberOf(key, Member::Kind::kBool);
    member.asBool = value;
    return member;
}

Member Real(const char* key, double value) {
    Member member = MemberOf(key, Member::Kind::kReal);
    member.asReal = value;
    return member;
}

Member Text(const char* key, const std::string& value) {
    Member member = MemberOf(key, Member::Kind::kText);
    member.asText = &value;
    return member;
}

Member Pointer(const char* key, const void* value) {
    Member member = MemberOf(key, Member::Kind::kPointer);
    member.asPointer = value;
    return member;
}

Member NumberedInts(const std::vector<int>& values) {
    Member member = MemberOf("k", Member::Kind::kNumberedInts);
    member.asInts = &values;
    return member;
}

Member NumberedPointers(const char* key, const std::vector<void*>& values) {
    Member member = MemberOf(key, Member::Kind::kNumberedPointers);
    member.asPointers = &values;
    return member;
}

Member Array(const char* key, const Json::Value& elements) {
    Member member = MemberOf(key, Member::Kind::kArray);
    member.asArray = &elements;
    return member;
}

Json::Value Object(std::initializer_list<Member> members) {
    Json::Value object(Json::objectValue);
    for (const Member& member : members) Add(member, object);
    return object;
}

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
    const int status = SendIpc(Request(mFamily, method, request), reply, claim, late);
    if (late) LogLate(mFamily, method);
    return status == 0 && !Read(reply, results) ? -1 : status;
}

int TolmAdaptorClient::Post(const Method& method, std::initializer_list<Member> request,
                            void (*logFailure)(const Method& method)) {
    LogScope scope(mFamily.tag, method.place);
    const int status = SendIpcWithNoRet(Request(mFamily, method, request));
    if (status != 0 && logFailure != nullptr) logFailure(method);
    return status;
}

}  // namespace tolm
