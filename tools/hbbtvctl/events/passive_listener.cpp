#include "events/passive_listener.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>

#include "common/failure.h"
#include "common/text/json.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "common/time_stamp.h"
#include "package/debug.h"

namespace hbbtv::ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr Milliseconds kForever{24 * 60 * 60 * 1000};

// The service drops what does not fit into the socket, so nothing in between may take long.
int PairOfSockets(int (&ends)[2]) {
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
        throw Failure(kUsage, std::string("cannot create a pair of sockets: ") + std::strerror(errno));
    }
    return ends[0];
}

const Json::Value& Parsed(const std::string& packet, Json::Value& document) {
    try {
        document = ParseJson(packet);
    } catch (const BadJson&) {
        throw Failure(kInvalidReply, "the service answers " + Quoted(packet) +
                                         "; were service and hbbtvctl built from the same package?");
    }
    return document;
}

}  // namespace

PassiveListener::PassiveListener(const ServiceCaller& service, const std::vector<std::string>& interfaces,
                                 Settings settings, Milliseconds limit)
    : mSettings(std::move(settings)), mSocket(PairOfSockets(mEnds)) {
    std::vector<std::string> options = interfaces;
    if (options.empty()) options.push_back("--all");
    options.push_back("--events");
    {
        const Descriptor other(mEnds[1]);
        PassForDebug(service, other.Get(), options, limit);
    }
    // The service has written something by now, or has closed its end.
    Json::Value first;
    if (!Parsed(Receive(), first)["listening"].asBool()) {
        throw Failure(kInvalidReply, "the service does not show events");
    }
}

std::string PassiveListener::Receive() {
    std::string packet(256 * 1024, '\0');
    const ssize_t size = recv(mSocket.Get(), packet.data(), packet.size(), 0);
    packet.resize(size > 0 ? static_cast<size_t>(size) : 0);
    return packet;
}

bool PassiveListener::Wants(const WireFamily& family, const Json::Value* event) const {
    if (mSettings.events.empty()) return true;
    for (const std::string& wanted : mSettings.events) {
        try {
            if (event != nullptr && &family.FindEvent(wanted) == event) return true;
        } catch (const Failure&) {
            continue;  // an event of another family
        }
    }
    return false;
}

bool PassiveListener::Print(const Json::Value& shown) const {
    const TimeStamp now;
    const WireFamily& family = FindFamily(shown["family"].asString());
    const Json::Value* const event = family.EventOf(shown["message"]);
    if (!Wants(family, event)) return false;
    Json::Value line = shown;
    line["family"] = family.name;
    line["event"] = event == nullptr ? Json::Value() : (*event)["name"];
    line["callback"] = event == nullptr ? Json::Value() : (*event)["callback"];
    now.AddTo(line);
    const std::string message =
        shown["message"].isNull() ? shown["bytes"].asString() + " bytes" : WriteJson(shown["message"]);
    const std::string name = event == nullptr ? "unknown event" : (*event)["callback"].asString();
    std::printf("%s\n", mSettings.json
                            ? WriteJson(line).c_str()
                            : Printable(now.Text() + "  " + family.name + "  " + name + "  " + message).c_str());
    return true;
}

void PassiveListener::Run(std::optional<Milliseconds> limit) {
    const Clock::time_point end = Clock::now() + limit.value_or(kForever);
    for (uint64_t count = 0; mSettings.count == 0 || count < mSettings.count;) {
        const auto left = std::chrono::duration_cast<Milliseconds>(end - Clock::now());
        if (left <= Milliseconds(0) || !WaitUntilReadable(mSocket.Get(), left)) {
            if (limit) return;
            continue;
        }
        const std::string packet = Receive();
        if (packet.empty()) throw Failure(kPeerLost, "the service has ended; check its log, and restart it");
        Json::Value document;
        const Json::Value& shown = Parsed(packet, document);
        if (shown.isMember("lost")) {
            std::fprintf(stderr, "hbbtvctl: %s messages lost, as they were not read in time\n",
                         shown["lost"].asString().c_str());
        } else if (Print(shown)) {
            ++count;
        }
        if (std::fflush(stdout) != 0) return;
    }
}

}  // namespace hbbtv::ctl
