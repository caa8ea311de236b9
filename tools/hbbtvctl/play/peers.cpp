#include "play/peers.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include "common/duration.h"
#include "common/failure.h"
#include "common/local_socket.h"
#include "common/text/json.h"
#include "common/text/quote.h"
#include "service/registration.h"
#include "wire/endpoint.h"
#include "wire/message.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

// A little longer than the peer's own timeout, whose message is more precise.
constexpr Milliseconds kMargin{1000};

const char* const kControlSocket = "/hbbtv_sim_control";

class DeathOfService : public android::hardware::hidl_death_recipient {
  public:
    explicit DeathOfService(Arrivals& arrivals) : mArrivals(arrivals) {}
    void serviceDied(uint64_t, const android::wp<android::hidl::base::V1_0::IBase>&) override {
        mArrivals.ServiceDied();
    }

  private:
    Arrivals& mArrivals;
};

// Runs `work` on its own thread, so that a signal ends the wait. Everything that it refers to must outlive it.
template <typename Result>
Result Interruptibly(Milliseconds limit, const std::string& what, const std::function<Result()>& work) {
    struct Outcome {
        Result result;
        std::optional<Failure> failure;
    };
    const auto outcome = std::make_shared<Outcome>();
    InTime(limit + kMargin, what, [outcome, work] {
        try {
            outcome->result = work();
        } catch (const Failure& e) {
            outcome->failure = e;
        }
    });
    if (outcome->failure) throw Failure(*outcome->failure);
    return outcome->result;
}

// Returns the answer to the line, without its line end.
std::string Converse(const std::string& path, const std::string& line, Milliseconds limit) {
    const Descriptor socket(ConnectTo(path));
    if (socket.Get() < 0) {
        throw Failure(kUnavailable, path + ": no simulated platform answers: " + std::strerror(errno) +
                                        "; start hbbtv-sim with this directory");
    }
    const std::string text = line + "\n";
    if (send(socket.Get(), text.data(), text.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(text.size())) {
        throw Failure(kPeerLost, path + ": the simulated platform did not take the line");
    }
    std::string answer;
    while (answer.find('\n') == std::string::npos) {
        pollfd entry{socket.Get(), POLLIN, 0};
        if (poll(&entry, 1, static_cast<int>(limit.count())) == 0) {
            throw Failure(kTimeout, path + ": no answer within " + FormatDuration(limit));
        }
        char bytes[4096];
        const ssize_t count = recv(socket.Get(), bytes, sizeof(bytes), 0);
        if (count > 0) answer.append(bytes, static_cast<size_t>(count));
        if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) {
            throw Failure(kPeerLost, path + ": the simulated platform went away without an answer");
        }
    }
    return answer.substr(0, answer.find('\n'));
}

}  // namespace

Peers::Peers(Settings settings, Arrivals& arrivals)
    : mSettings(std::move(settings)), mArrivals(arrivals), mDeath(new DeathOfService(arrivals)) {}

ServiceCaller& Peers::ServiceOf(const Interface& interface) {
    std::unique_ptr<ServiceCaller>& service = mServices[interface.name];
    if (service == nullptr) {
        auto found = std::make_unique<ServiceCaller>(interface, mSettings.timeout);
        if (!found->Service()->linkToDeath(mDeath, 0).withDefault(false)) mArrivals.ServiceDied();
        service = std::move(found);
    }
    return *service;
}

void Peers::CheckOtherClients(const Package::QualifiedMethod& method) {
    if (!Registers(*method.method)) return;
    ctl::CheckOtherClients(ServiceOf(*method.interface), mSettings.takeOver, mSettings.timeout);
}

Json::Value Peers::Call(const Package::QualifiedMethod& method, const Json::Value& arguments) {
    return ServiceOf(*method.interface).Call(*method.method, arguments, mArrivals);
}

bool Peers::Has(const Interface& interface) const {
    try {
        ServiceCaller(interface, mSettings.timeout);
        return true;
    } catch (const Failure& e) {
        if (e.Code() == kUnavailable) return false;
        throw;
    }
}

Json::Value Peers::Exchange(const std::string& socket, int port, const Json::Value& message, bool withReply) {
    const std::string path = mSettings.directory + "/" + socket;
    std::shared_ptr<WireConnection> connection = mConnections[path];
    if (connection == nullptr) connection = std::make_shared<WireConnection>(path);
    mConnections.erase(path);  // stored again if the exchange succeeds
    const std::string bytes = Encode({withReply ? kRequest : kOneWay, port, WireText(message)});
    const auto reply =
        Interruptibly<std::string>(mSettings.timeout, path, [connection, bytes, withReply, limit = mSettings.timeout] {
            connection->Send(bytes, limit);
            return withReply ? connection->Receive(limit).payload : std::string();
        });
    mConnections[path] = connection;
    if (!withReply) return Json::Value();
    try {
        return ParseJson(reply);
    } catch (const BadJson& e) {
        throw Failure(kInvalidReply,
                      path + ": the reply is " + e.what() + "; it begins " + Quoted(reply.substr(0, 200)));
    }
}

std::string Peers::Tell(const std::string& line) const {
    const std::string path = mSettings.directory + kControlSocket;
    return Interruptibly<std::string>(mSettings.timeout, path,
                                      [path, line, limit = mSettings.timeout] { return Converse(path, line, limit); });
}

}  // namespace hbbtv::ctl
