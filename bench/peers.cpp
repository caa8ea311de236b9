// hbbtv-bench-peers: the same small call by other means on this machine, relative to the same floor as the library's.
// All processes run on one processor.

#include <rpc/rpc.h>
#include <sys/un.h>
#include <systemd/sd-bus.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "child_process.h"
#include "floor.h"
#include "report/measurement.h"
#include "report/table.h"
#include "roles.h"
#include "scratch_directory.h"

namespace hbbtv::bench {

namespace {

using test::ChildProcess;
using test::ScratchDirectory;

constexpr int kRounds = 9;
constexpr size_t kCalls = 3000;

constexpr char kFloorRole[] = "--as-floor";
constexpr char kBusRole[] = "--as-bus-service";
constexpr char kRpcRole[] = "--as-rpc-service";

std::string InDirectory(const char* name) {
    return std::string(std::getenv("TMPDIR")) + "/" + name;
}

// ---- The floor: one document each way ----

Json::Value FloorRequest() {
    Json::Value request(Json::objectValue);
    request["type"] = 3;
    request["method"] = 11;
    request["vb_handle"] = "0x1000";
    request["channel"] = "0x2000";
    request["trickPlay"] = false;
    request["url"] = "";
    return request;
}

int ServeFloor() {
    FloorServe(ListenOn(InDirectory("floor")), [](const Json::Value&) {
        Json::Value reply(Json::objectValue);
        reply["ret"] = 0;
        return reply;
    });
    return 0;
}

// ---- A message bus: through its daemon ----

constexpr char kBusName[] = "vantorel.bench";
constexpr char kBusPath[] = "/bench";

std::string BusAddress() {
    return "unix:path=" + InDirectory("bus");
}

std::vector<std::string> BusDaemon() {
    const std::string file = InDirectory("bus.conf");
    std::ofstream(file) << "<busconfig><type>session</type><listen>" << BusAddress()
                        << "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                           "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>\n";
    return {"dbus-daemon", "--nofork", "--config-file=" + file};
}

sd_bus* ConnectToBus() {
    Expect(test::WaitFor([] { return std::filesystem::exists(InDirectory("bus")); }), "starting the bus");
    sd_bus* bus = nullptr;
    const bool connected = sd_bus_new(&bus) >= 0 && sd_bus_set_address(bus, BusAddress().c_str()) >= 0 &&
                           sd_bus_set_bus_client(bus, 1) >= 0 && sd_bus_start(bus) >= 0;
    Expect(connected, "connecting to the bus");
    return bus;
}

int OnBusCall(sd_bus_message* call, void*, sd_bus_error*) {
    int64_t vb = 0;
    int64_t channel = 0;
    int trickPlay = 0;
    const char* url = nullptr;
    const int read = sd_bus_message_read(call, "xxbs", &vb, &channel, &trickPlay, &url);
    return read < 0 ? read : sd_bus_reply_method_return(call, "i", 0);
}

const sd_bus_vtable kBusTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("SetChannel", "xxbs", "i", OnBusCall, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

int ServeBus() {
    sd_bus* const bus = ConnectToBus();
    Expect(sd_bus_add_object_vtable(bus, nullptr, kBusPath, kBusName, kBusTable, nullptr) >= 0, "the bus's object");
    Expect(sd_bus_request_name(bus, kBusName, 0) >= 0, "the bus's name");
    while (sd_bus_process(bus, nullptr) > 0 || sd_bus_wait(bus, UINT64_MAX) >= 0) {
    }
    return 0;
}

bool CallOverBus(sd_bus* bus) {
    sd_bus_message* reply = nullptr;
    const int called = sd_bus_call_method(bus, kBusName, kBusPath, kBusName, "SetChannel", nullptr, &reply, "xxbs",
                                          int64_t{0x1000}, int64_t{0x2000}, 0, "");
    int status = -1;
    if (called >= 0) sd_bus_message_read(reply, "i", &status);
    sd_bus_message_unref(reply);
    return status == 0;
}

// ---- RPC: a connection to the service itself ----

constexpr unsigned long kProgram = 0x20001000;
constexpr unsigned long kVersion = 1;
constexpr unsigned long kSetChannel = 11;

struct RpcArguments {
    int64_t vb;
    int64_t channel;
    bool_t trickPlay;
    char* url;
};

bool_t Transfer(XDR* xdr, RpcArguments* arguments) {
    return xdr_int64_t(xdr, &arguments->vb) && xdr_int64_t(xdr, &arguments->channel) &&
           xdr_bool(xdr, &arguments->trickPlay) && xdr_string(xdr, &arguments->url, 1024);
}

void OnRpcCall(svc_req* request, SVCXPRT* transport) {
    if (request->rq_proc != kSetChannel) return svcerr_noproc(transport);
    RpcArguments arguments = {};
    if (!svc_getargs(transport, (xdrproc_t)Transfer, reinterpret_cast<char*>(&arguments))) {
        return svcerr_decode(transport);
    }
    int status = 0;
    svc_sendreply(transport, (xdrproc_t)xdr_int, reinterpret_cast<char*>(&status));
    svc_freeargs(transport, (xdrproc_t)Transfer, reinterpret_cast<char*>(&arguments));
}

int ServeRpc() {
    std::string path = InDirectory("rpc");
    SVCXPRT* const transport = svcunix_create(RPC_ANYSOCK, 0, 0, path.data());
    Expect(transport != nullptr && svc_register(transport, kProgram, kVersion, OnRpcCall, 0), "the RPC service");
    svc_run();
    return 0;
}

CLIENT* ConnectToRpc() {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof(address.sun_path), "%s", InDirectory("rpc").c_str());
    CLIENT* client = nullptr;
    Expect(test::WaitFor([&] {
               int fd = RPC_ANYSOCK;
               client = clntunix_create(&address, kProgram, kVersion, &fd, 0, 0);
               return client != nullptr;
           }),
           "the RPC service");
    return client;
}

bool CallRpc(CLIENT* client) {
    char url[] = "";
    RpcArguments arguments = {0x1000, 0x2000, false, url};
    int status = -1;
    const timeval limit = {10, 0};
    const clnt_stat called = clnt_call(client, kSetChannel, (xdrproc_t)Transfer, reinterpret_cast<char*>(&arguments),
                                       (xdrproc_t)xdr_int, reinterpret_cast<char*>(&status), limit);
    return called == RPC_SUCCESS && status == 0;
}

std::vector<Row> Measure() {
    Pin();
    const ScratchDirectory directory;
    ChildProcess floor(RoleCommand(kFloorRole));
    ChildProcess daemon(Shielded(BusDaemon()));
    ChildProcess busService(RoleCommand(kBusRole));
    ChildProcess rpcService(RoleCommand(kRpcRole));
    const int floorFd = ConnectTo(InDirectory("floor"));
    sd_bus* const bus = ConnectToBus();
    CLIENT* const client = ConnectToRpc();
    Expect(test::WaitFor([&] { return CallOverBus(bus); }), "a call over the bus");
    const Unit us = Unit::kMicroseconds;
    std::vector<Measurement> measurements = {
        {"small request, floor",
         us,
         "",
         {},
         [&] { return MicrosecondsEach(kCalls, [&] { FloorExchange(floorFd, FloorRequest()); }); }},
        {"message bus, through its daemon",
         us,
         "small request, floor",
         {},
         [&] { return MicrosecondsEach(kCalls, [&] { Expect(CallOverBus(bus), "a call over the bus"); }); }},
        {"RPC over a Unix socket",
         us,
         "small request, floor",
         {},
         [&] { return MicrosecondsEach(kCalls, [&] { Expect(CallRpc(client), "an RPC"); }); }},
    };
    Run(measurements, kRounds);
    clnt_destroy(client);
    sd_bus_flush_close_unref(bus);
    return RowsOf(measurements);
}

}  // namespace

}  // namespace hbbtv::bench

int main(int argc, char** argv) {
    using namespace hbbtv::bench;
    const std::string role = argc > 1 ? argv[1] : "";
    if (role == kFloorRole) return ServeFloor();
    if (role == kBusRole) return ServeBus();
    if (role == kRpcRole) return ServeRpc();
    if (!role.empty() && role != "--json") {
        std::cerr << "usage: hbbtv-bench-peers [--json]\n";
        return 2;
    }
    TakeInterrupts();
    const std::vector<Row> rows = Measure();
    role == "--json" ? PrintJson(rows) : PrintTable(rows);
    return Interrupted() ? 130 : 0;
}
