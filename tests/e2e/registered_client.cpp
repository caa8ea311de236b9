// A client process for the tests: registers a callback with the given family, prints "registered", then a line for each
// event, "METHOD ARGUMENTS", until it is killed. "unregister" on standard input unregisters the callback.

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "common/text/json.h"
#include "package/bindings.h"

namespace {

struct Call {
    const char* interface;
    const char* method;
    const char* arguments;
};

struct Registration {
    const char* family;
    std::vector<Call> begin;
    Call end;
    int status = 0;  // of the first call
};

const Registration kRegistrations[] = {
    {"application_manager",
     {{"IApplicationManager", "RegisterCallback", R"([1, "@listen", 2748])"},
      {"IApplicationManager", "RegisterCallback", R"([4, "@listen", 2748])"},
      {"IApplicationManager", "RegisterCallback", R"([8, "@listen", 2748])"}},
     {"IApplicationManager", "UnregisterCallback", "[8, 2748]"}},
    {"av_control",
     {{"IAVControl", "RegisterCallback", R"(["@listen", 2748])"}},
     {"IAVControl", "UnregisterCallback", "[]"}},
    {"channel_config",
     {{"IChannelConfig", "RegisterCallback", R"(["@listen", 2748])"}},
     {"IChannelConfig", "UnregisterCallback", "[]"}},
    {"configuration",
     {{"IConfiguration", "RegisterCallback", R"(["@listen"])"}},
     {"IConfiguration", "UnregisterCallback", R"(["@listen"])"}},
    {"further_configuration",
     {{"IConfiguration", "RegisterCallback", R"(["@listen"])"}},
     {"IConfiguration", "UnregisterCallback", R"(["@listen"])"},
     -1},
    {"dsmcc", {{"IDsmcc", "RegisterCallback", R"(["@listen"])"}}, {"IDsmcc", "UnregisterCallback", "[]"}},
    {"mtm", {{"IMtm", "RegisterCallback", R"(["@listen"])"}}, {"IMtm", "UnregisterCallback", "[]"}},
    {"search_manager",
     {{"ISearchManager", "SearchManager_RegisterCallback", R"([1, "@listen", 2748])"}},
     {"ISearchManager", "SearchManager_Destroy", "[1]"}},
    {"video_broadcast",
     {{"IVideoBroadcast", "RegisterCallback", R"([4096, "@listen", 2748])"}},
     {"IVideoBroadcast", "UnregisterCallback", "[4096]"}},
};

// A browser replies with status 0 and -13, unless it does not reply ("mtm_silent"). A client of a family with
// "_hanging" does not return.
class Printer : public hbbtv::EventSink {
  public:
    explicit Printer(const std::string& kind)
        : mHangs(kind.find("_hanging") != std::string::npos), mSilent(kind == "mtm_silent") {}

    Json::Value Take(const char*, const char* method, Json::Value arguments) override {
        printf("%s %s\n", method, hbbtv::WriteJson(arguments).c_str());
        fflush(stdout);
        while (mHangs) pause();
        if (mSilent) return NoAnswer();
        Json::Value results(Json::arrayValue);
        results.append(0);
        results.append(-13);
        return results;
    }

  private:
    const bool mHangs;
    const bool mSilent;
};

using Service = android::sp<android::hidl::base::V1_0::IBase>;

// The service may still be starting; the test kills this process after its timeout.
Service Find(const hbbtv::InterfaceBinding& binding) {
    Service service = binding.find();
    for (; service == nullptr; service = binding.find()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return service;
}

// Returns the status, 0 for a method without one, or -1000 if the call fails.
int Run(const Call& call, hbbtv::EventSink& sink) {
    const hbbtv::InterfaceBinding& binding = *hbbtv::AllBindings().at(call.interface);
    static const Service service = Find(binding);
    for (const hbbtv::MethodBinding& method : binding.methods) {
        if (std::string(method.name) != call.method) continue;
        const hbbtv::CallOutcome outcome = method.invoke(*service, hbbtv::ParseJson(call.arguments), sink);
        return !outcome.answered ? -1000 : outcome.results.empty() ? 0 : outcome.results[0].asInt();
    }
    return -1000;
}

// "mtm_hanging" is a browser as well. Without a name, a video/broadcast object.
const Registration& RegistrationOf(const std::string& kind) {
    for (const Registration& registration : kRegistrations) {
        const std::string family = registration.family;
        if (kind == family || kind.rfind(family + "_", 0) == 0) return registration;
    }
    return std::end(kRegistrations)[-1];
}

}  // namespace

int main(int argc, char** argv) {
    const std::string kind = argc > 1 ? argv[1] : "video_broadcast";
    const Registration& registration = RegistrationOf(kind);
    static Printer printer(kind);
    for (const Call& call : registration.begin) {
        if (Run(call, printer) == registration.status) continue;
        printf("the registration failed\n");
        return 1;
    }
    printf("registered\n");
    fflush(stdout);
    for (std::string command; std::getline(std::cin, command);) {
        printf(Run(registration.end, printer) != -1000 ? "unregistered\n" : "the call failed\n");
        fflush(stdout);
    }
    return 0;
}
