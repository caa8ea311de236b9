#include "recording_client.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "package/description.h"

namespace hbbtv::test {

namespace {

void WriteTo(std::ostream& line, const Type& type, const Json::Value& value, bool inStruct) {
    switch (type.kind) {
        case Type::Kind::Struct:
            for (const Parameter& field : type.fields) {
                line << (&field == &type.fields.front() ? "" : " ");
                WriteTo(line, *field.type, value[field.name], true);
            }
            break;
        case Type::Kind::Vector:
            if (type.element->kind == Type::Kind::Text) {
                for (Json::ArrayIndex i = 0; i < value.size(); ++i) line << (i == 0 ? "[" : " ") << value[i].asString();
                line << (value.empty() ? "[]" : "]");
            } else {
                for (const Json::Value& byte : value) line << static_cast<char>(byte.asUInt());
            }
            break;
        case Type::Kind::Text:
            line << (inStruct ? "'" : "") << value.asString() << (inStruct ? "'" : "");
            break;
        case Type::Kind::Bool:
            line << value.asBool();
            break;
        case Type::Kind::Real:
            line << value.asDouble();
            break;
        default:
            line << value.asInt64();
    }
}

}  // namespace

std::string CallLine(const char* interface, const char* method, const Json::Value& arguments) {
    std::ostringstream line;
    line << method;
    const std::vector<Parameter>& parameters = Package::Get().FindInterface(interface).Find(method)->arguments;
    for (size_t i = 0; i < parameters.size(); ++i) {
        line << ' ';
        WriteTo(line, *parameters[i].type, arguments[static_cast<Json::ArrayIndex>(i)], false);
    }
    return line.str();
}

Json::Value Recorder::Take(const char* interface, const char* method, Json::Value arguments) {
    Note(CallLine(interface, method, arguments));
    return Json::Value(Json::arrayValue);
}

void Recorder::Note(const std::string& line) {
    std::lock_guard<std::mutex> lock(mMutex);
    mCalls.push_back(line);
}

std::vector<std::string> Recorder::Calls() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mCalls;
}

std::vector<android::sp<Recorder::Recipient>> Recorder::Linked() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mLinked;
}

void Recorder::WhenLinked(std::function<void()> hook) {
    std::lock_guard<std::mutex> lock(mMutex);
    mWhenLinked = std::move(hook);
}

void Recorder::WhenUnlinked(std::function<void()> hook) {
    std::lock_guard<std::mutex> lock(mMutex);
    mWhenUnlinked = std::move(hook);
}

uint64_t Recorder::Cookie() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mCookie;
}

bool Recorder::Link(const android::sp<Recipient>& recipient, uint64_t cookie) {
    std::unique_lock<std::mutex> lock(mMutex);
    mLinked.push_back(recipient);
    mCookie = cookie;
    const auto hook = std::exchange(mWhenLinked, nullptr);
    lock.unlock();
    if (hook) hook();
    return true;
}

bool Recorder::Unlink(const android::sp<Recipient>& recipient) {
    std::unique_lock<std::mutex> lock(mMutex);
    const auto linked = std::find(mLinked.begin(), mLinked.end(), recipient);
    if (linked == mLinked.end()) return false;
    mLinked.erase(linked);
    const auto hook = std::exchange(mWhenUnlinked, nullptr);
    lock.unlock();
    if (hook) hook();
    return true;
}

}  // namespace hbbtv::test
