#include "family/arguments.h"

#include "common/text/pointer_text.h"
#include "core/error.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kLongestKept = 256u << 10;

}  // namespace

const Json::Value& Arguments::Member(const char* name, bool (Json::Value::*hasType)() const,
                                     const char* typeName) const {
    if (!mRequest.isMember(name)) throw Refused(std::string("member \"") + name + "\" is missing");
    const Json::Value& member = mRequest[name];
    if (!(member.*hasType)()) throw Refused(std::string("member \"") + name + "\" is not " + typeName);
    return member;
}

int Arguments::Int(const char* name) const {
    return Member(name, &Json::Value::isInt, "a 32-bit integer").asInt();
}

unsigned Arguments::UInt(const char* name) const {
    return Member(name, &Json::Value::isUInt, "an integer from 0 to 4294967295").asUInt();
}

bool Arguments::Bool(const char* name) const {
    return Member(name, &Json::Value::isBool, "true or false").asBool();
}

double Arguments::Real(const char* name) const {
    return Member(name, &Json::Value::isNumeric, "a number").asDouble();
}

std::string Arguments::Text(const char* name) const {
    return Member(name, &Json::Value::isString, "a string").asString();
}

std::string Arguments::ShortText(const char* name) const {
    std::string text = Text(name);
    if (text.size() > kLongestKept) throw Refused(std::string("member \"") + name + "\" is longer than 256 KiB");
    return text;
}

const Json::Value& Arguments::Objects(const char* name) const {
    const std::string refusal = std::string("member \"") + name + "\" is ";
    if (!mRequest.isMember(name)) throw Refused(refusal + "missing");
    const Json::Value& list = mRequest[name];
    if (!list.isArray() && !list.isNull()) throw Refused(refusal + "not a list");
    for (const Json::Value& item : list) {
        if (!item.isObject()) throw Refused(refusal + "not a list of objects");
    }
    return list;
}

uint64_t Arguments::Pointer(const char* name) const {
    const auto pointer = ParsePointer(Member(name, &Json::Value::isString, "a handle string").asString());
    if (!pointer) throw Refused(std::string("member \"") + name + "\" is not a handle string");
    return *pointer;
}

}  // namespace hbbtv::sim
