#include "platform/services.h"

#include "common/failure.h"
#include "wire/values.h"

namespace hbbtv::browser {

namespace {

// Throws Failure for an unknown method. Each is looked up once.
Package::QualifiedMethod Find(const std::string& method) {
    static std::mutex mutex;
    static std::map<std::string, Package::QualifiedMethod> known;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = known.find(method);
    if (found != known.end()) return found->second;
    return known[method] = Package::Get().FindMethod(method);
}

// Throws Failure if one is missing or has another type.
Json::Value InOrder(const std::string& name, const Method& method, const Json::Value& arguments) {
    Json::Value values(Json::arrayValue);
    for (const Parameter& parameter : method.arguments) {
        if (!arguments.isMember(parameter.name))
            throw Failure(kUsage, name + ": missing argument \"" + parameter.name + "\"");
        try {
            values.append(FromJsonValue(*parameter.type, arguments[parameter.name]));
        } catch (const BadValue& e) {
            throw Failure(kUsage, name + ": argument \"" + parameter.name + "\": " + e.what());
        }
    }
    return values;
}

Json::Value ByName(const Method& method, const Json::Value& values) {
    Json::Value named(Json::objectValue);
    for (Json::ArrayIndex i = 0; i < method.results.size(); ++i) {
        const Parameter& result = method.results[i];
        named[result.name] = ForPrograms(*result.type, values[i], true);
    }
    return named;
}

}  // namespace

std::shared_ptr<ServiceCaller> Services::Of(const Interface& interface) {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mFound.find(interface.name);
        if (found != mFound.end()) return found->second;
    }
    // Without the lock, because a service that hangs answers late.
    auto caller = std::make_shared<ServiceCaller>(interface, mLimit);
    const std::lock_guard<std::mutex> lock(mMutex);
    return mFound[interface.name] = caller;
}

void Services::Forget() {
    const std::lock_guard<std::mutex> lock(mMutex);
    mFound.clear();
}

CallResult Services::Call(const std::string& name, const Json::Value& arguments) {
    CallResult result;
    try {
        const Package::QualifiedMethod method = Find(name);
        const Json::Value values = InOrder(name, *method.method, arguments);
        const std::shared_ptr<ServiceCaller> caller = Of(*method.interface);
        const CallOutcome outcome = caller->CallNow(*method.method, values, mSink);
        if (outcome.peerLost) Forget();
        caller->CheckAnswered(*method.method, outcome);
        result.results = ByName(*method.method, outcome.results);
    } catch (const Failure& e) {
        result.error = e.what();
    }
    return result;
}

}  // namespace hbbtv::browser
