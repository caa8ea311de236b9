// Any reply of the platform to any method. The first line is the method and, optionally, its arguments as an array; the
// rest is the reply.
#include <cstring>

#include "common/failure.h"
#include "common/text/json.h"
#include "input.h"
#include "ipc/src/tolm_json_text.h"
#include "json_mutation.h"
#include "package/caller.h"
#include "package_values.h"
#include "played_platform.h"
#include "services.h"

namespace hbbtv::fuzz {

namespace {

struct Call {
    std::string method;
    Json::Value arguments;
};

Call ReadCall(const std::string& line) {
    const size_t blank = std::min(line.find(' '), line.size());
    Call call{line.substr(0, blank), Json::Value()};
    try {
        call.arguments = ParseJson(line.substr(blank));
    } catch (const BadJson&) {
        // Usual ones are used instead.
    }
    return call;
}

bool IsReply(const std::string& text) {
    Json::Value document;
    return tolm::ParseJson({text.begin(), text.end()}, document) && document.isObject() && document["ret"].isInt();
}

void Exchange(const Package::QualifiedMethod& method, const Json::Value& arguments, const std::string& reply) {
    PlayedPlatform& platform = PlayedPlatform::Get();
    const size_t before = platform.CountOfRequests();
    platform.AnswerWith(reply);
    const Service& service = ServiceOf(method.interface->name);
    const CallOutcome outcome = CallMethod(*service.object, service.interface, method.method->name,
                                           FittingValues(method.method->arguments, arguments));
    FUZZ_CHECK(outcome.answered);
    FUZZ_CHECK(outcome.answers == 1 || method.method->results.empty());
    if (platform.CountOfRequests() == before || method.method->results.empty()) return;
    FUZZ_CHECK(IsReply(reply) || StatusOf(*method.method, outcome.results) == -1);
}

std::string AnyMethod(Random& random) {
    return MethodNames()[Below(random, MethodNames().size())];
}

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    hbbtv::fuzz::ScratchDirectory();
    hbbtv::fuzz::Services();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hbbtv::fuzz;
    const Addressed input = Split(data, size);
    const Call call = ReadCall(input.line);
    try {
        const hbbtv::Package::QualifiedMethod method = hbbtv::Package::Get().FindMethod(call.method);
        if (method.interface->callback) return -1;
        Exchange(method, call.arguments, input.rest);
    } catch (const hbbtv::Failure&) {
        return -1;  // another name
    }
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t mostBytes, unsigned seed) {
    using namespace hbbtv::fuzz;
    Random random(seed);
    Addressed input = Split(data, size);
    Call call = ReadCall(input.line);
    const size_t which = Below(random, 8);
    if (which == 0) call = {AnyMethod(random), Json::Value()};
    std::string arguments = call.arguments.isNull() ? "" : hbbtv::WriteJson(call.arguments);
    if (which == 1 || which == 2) arguments = MutatedJson(arguments.empty() ? "[1]" : arguments, mostBytes, random);
    if (which > 2) input.rest = MutatedJson(input.rest, mostBytes, random);
    return Store(call.method + " " + arguments + "\n" + input.rest, data, mostBytes);
}
