// Any event of the platform to any family, with a client that has registered for all. The first line is the family, the
// port, "one-way" or "request", and how the client behaves; the rest is the event.
#include "common/failure.h"
#include "common/text/json.h"
#include "input.h"
#include "json_mutation.h"
#include "package_values.h"
#include "played_platform.h"
#include "services.h"
#include "wire/endpoint.h"

namespace hbbtv::fuzz {

namespace {

const std::vector<std::string> kManners{"answers", "does-not-answer", "dies"};

struct Target {
    std::string family;
    std::string port;  // a number, or "-" for that of the family
    std::string form;
    std::string manner;
};

Target ReadTarget(const std::string& line) {
    std::vector<std::string> words = Words(line);
    words.resize(4);
    return {words[0], words[1], words[2], words[3]};
}

void Deliver(const Target& target, const std::string& event) {
    const Endpoint endpoint = EventsOf(FindFamily(target.family));
    const int port = target.port == "-" ? endpoint.port : std::atoi(target.port.c_str());
    UsualClient::Get().Behave(target.manner == kManners[1]   ? UsualClient::Manner::kDoesNotAnswer
                              : target.manner == kManners[2] ? UsualClient::Manner::kDies
                                                             : UsualClient::Manner::kAnswers);
    PlayedPlatform& platform = PlayedPlatform::Get();
    if (target.form != "request") return platform.Send(endpoint.key, port, event);
    const std::string reply = platform.SendAndWait(endpoint.key, port, event);
    if (!reply.empty()) ParseJson(reply);
}

std::string AnyFamily(Random& random) {
    std::vector<std::string> names;
    for (const WireFamily& family : WireFamilies()) {
        if (family.protocol["endpoints"].isMember("events")) names.push_back(family.name);
    }
    return names[Below(random, names.size())];
}

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    hbbtv::fuzz::ScratchDirectory();
    hbbtv::fuzz::RegisterClient();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hbbtv::fuzz;
    const Addressed input = Split(data, size);
    try {
        Deliver(ReadTarget(input.line), input.rest);
    } catch (const hbbtv::Failure&) {
        return -1;  // another name
    }
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t mostBytes, unsigned seed) {
    using namespace hbbtv::fuzz;
    Random random(seed);
    Addressed input = Split(data, size);
    Target target = ReadTarget(input.line);
    const size_t which = Below(random, 16);
    if (which == 0) target.family = AnyFamily(random);
    if (which == 1) target.form = target.form == "request" ? "one-way" : "request";
    if (which == 2) target.manner = kManners[Below(random, kManners.size())];
    if (which == 3) target.port = Below(random, 2) == 0 ? "-" : std::to_string(Below(random, 20));
    if (which > 3) input.rest = MutatedJson(input.rest, mostBytes, random);
    return Store(target.family + " " + target.port + " " + target.form + " " + target.manner + "\n" + input.rest, data,
                 mostBytes);
}
