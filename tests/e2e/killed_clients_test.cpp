// Events reach the process of a registered client until it ends; the service continues to run, and serves the next one.

#include <gtest/gtest.h>

#include <string>

#include "event_connection.h"
#include "scratch_directory.h"
#include "system.h"
#include "wire/endpoint.h"

namespace hbbtv::test {

namespace {

struct Registration {
    const char* family;
    const char* event;
    const char* printed;     // by the client
    const char* unregister;  // what the platform is sent when the client has ended; null: nothing
};

void PrintTo(const Registration& registration, std::ostream* out) {
    *out << registration.family;
}

class KilledClients : public testing::TestWithParam<Registration> {};

TEST_P(KilledClients, AreCalledUntilTheyEndAndTheNextOneIsServed) {
    const auto& [family, event, printed, unregister] = GetParam();
    ScratchDirectory directory;
    FakePlatform platform(RequestsOf(FindFamily(family)).socket, R"({"ret": 0})");
    ServiceProcess service;
    ASSERT_NE(FindVideoBroadcast(), nullptr);
    RegisteredClient client(family);
    ASSERT_TRUE(client.Registered()) << client.Output();
    const Endpoint endpoint = EventsOf(FindFamily(family));
    EventConnection events(PathOf(directory.Path(), endpoint), endpoint.port);
    ASSERT_TRUE(events.Send({event}));
    EXPECT_TRUE(client.WaitForOutput(printed)) << client.Output();

    const size_t requests = platform.Frames().size();
    client.Kill();
    if (unregister != nullptr) {
        ASSERT_TRUE(platform.WaitForFrames(requests + 1));
        EXPECT_EQ(platform.Frames().back().payload, unregister);
    }
    // The event is dropped.
    ASSERT_TRUE(events.Send({event}));
    EXPECT_EQ(platform.Frames().size(), requests + (unregister != nullptr ? 1 : 0));

    RegisteredClient next(family);
    ASSERT_TRUE(next.Registered()) << next.Output();
    ASSERT_TRUE(events.Send({event}));
    EXPECT_TRUE(next.WaitForOutput(printed)) << next.Output();
}

const Registration kRegistrations[] = {
    {"av_control", R"({"method": 1, "component_type": 1, "component_index": 5})", "onComponentSelect [1,1,5]\n",
     nullptr},
    {"channel_config", R"({"event": 0, "reserved": "A"})", R"(OnChannelConfigEvent [0,{"reserved":65},2748])",
     "{\n\t\"method\" : 1,\n\t\"type\" : 19\n}\n"},
    {"dsmcc", R"({"method": 4, "event": 3, "context": "0xabc", "url": "dvb://1", "filePath": "/f"})",
     R"(OnDsmccFileEvent [1,"","/f",2748])", nullptr},
    {"search_manager", R"({"event": 0, "state": 3, "searchHandle": "0x9d20"})",
     R"(OnSearchManagerEvent [0,{"searchHandle":40224,"state":3},2748])", nullptr},
};

INSTANTIATE_TEST_SUITE_P(Of, KilledClients, testing::ValuesIn(kRegistrations),
                         [](const auto& registration) { return std::string(registration.param.family); });

}  // namespace

}  // namespace hbbtv::test
