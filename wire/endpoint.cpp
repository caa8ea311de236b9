#include "wire/endpoint.h"

#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <tuple>

#include "common/failure.h"
#include "common/local_socket.h"
#include "common/process.h"

namespace hbbtv {

namespace {

Endpoint MakeEndpoint(const WireFamily& family, bool ofPlatform) {
    const Json::Value& entry = family.protocol["endpoints"][ofPlatform ? "requests" : "events"];
    return {family.name, ofPlatform, entry["key"].asInt(), entry["port"].asInt(), entry["socket"].asString()};
}

pid_t ProcessOf(int fd) {
    ucred peer{};
    socklen_t size = sizeof(peer);
    return getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 ? peer.pid : 0;
}

}  // namespace

std::vector<Endpoint> AllEndpoints() {
    std::vector<Endpoint> endpoints;
    for (const WireFamily& family : WireFamilies()) {
        endpoints.push_back(MakeEndpoint(family, true));
        if (family.protocol["endpoints"].isMember("events")) endpoints.push_back(MakeEndpoint(family, false));
    }
    std::sort(endpoints.begin(), endpoints.end(), [](const Endpoint& a, const Endpoint& b) {
        return std::make_tuple(!a.ofPlatform, a.key) < std::make_tuple(!b.ofPlatform, b.key);
    });
    return endpoints;
}

Endpoint RequestsOf(const WireFamily& family) {
    return MakeEndpoint(family, true);
}

Endpoint EventsOf(const WireFamily& family) {
    if (!family.protocol["endpoints"].isMember("events")) {
        throw Failure(kUsage, "family " + family.name + " has no events");
    }
    return MakeEndpoint(family, false);
}

std::string DefaultDirectory() {
    const char* directory = std::getenv("TMPDIR");
    return directory != nullptr ? directory : "/tmp";
}

std::string PathOf(const std::string& directory, const Endpoint& endpoint) {
    return directory + "/" + endpoint.socket;
}

std::string LongestFileName() {
    std::string longest;
    for (const Endpoint& endpoint : AllEndpoints()) {
        const std::string name = endpoint.socket + "_port_" + std::to_string(endpoint.port);
        if (name.size() > longest.size()) longest = name;
    }
    return longest;
}

std::string Finding::InWords() const {
    switch (state) {
        case State::Serving:
            return "serving";
        case State::Stale:
            return "stale";
        case State::Missing:
            return "missing";
        case State::Forbidden:
            return "forbidden";
        case State::NoSocket:
            return "no socket";
        case State::Unreachable:
            return "unreachable";
    }
    return "";
}

Finding LookAt(const std::string& path) {
    Finding finding;
    struct stat file {};
    if (path.size() > kLongestSocketPath) {
        finding.state = Finding::State::Unreachable;
        finding.reason = "the path is longer than " + std::to_string(kLongestSocketPath) + " bytes";
        return finding;
    }
    if (stat(path.c_str(), &file) != 0) {
        finding.state = errno == EACCES ? Finding::State::Forbidden : Finding::State::Missing;
        return finding;
    }
    finding.mode = file.st_mode & 07777;
    if (!S_ISSOCK(file.st_mode)) {
        finding.state = Finding::State::NoSocket;
        return finding;
    }
    const Descriptor fd(ConnectTo(path));
    if (fd.Get() >= 0 || errno == EAGAIN) {
        finding.state = Finding::State::Serving;
        finding.full = fd.Get() < 0;
        if (fd.Get() >= 0) finding.process = ProcessOf(fd.Get());
        if (finding.process != 0) finding.peer = DescribeProcess(finding.process);
    } else if (errno == ECONNREFUSED) {
        finding.state = Finding::State::Stale;
    } else if (errno == EACCES) {
        finding.state = Finding::State::Forbidden;
    } else {
        finding.state = Finding::State::Unreachable;
        finding.reason = std::strerror(errno);
    }
    return finding;
}

}  // namespace hbbtv
