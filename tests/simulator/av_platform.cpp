// The fixture around programmes, components and AV control: see av_platform.h.
#include "av_platform.h"

namespace hbbtv::test {

const char* const kProgrammes = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE tv SYSTEM "xmltv.dtd">
<tv>
  <channel id="one"><display-name>One</display-name></channel>
  <channel id="two"><display-name>Two</display-name></channel>
  <programme channel="one" start="20200101000000 +0000" stop="20370101000000 +0000">
    <title lang="de">Long Day</title>
    <sub-title>The Start</sub-title>
    <desc>It begins.</desc>
    <category>News</category>
    <rating system="FSK"><value>12</value></rating>
  </programme>
  <programme channel="one" start="20370101000000 +0000" stop="20370101010000 +0000"><title>The End</title></programme>
  <programme channel="two" start="20370101000000 +0000" stop="20370101010000 +0000"><title>Later</title></programme>
</tv>
)";

namespace {

struct Address {
    const char* socket;
    int port;
    int type;
};

Address AddressOf(int family) {
    static const Address kAddresses[] = {{"service_plugin_to_hbbtv_program", 13, 5},
                                         {"service_plugin_to_hbbtv_av_com", 14, 11},
                                         {"service_plugin_to_hbbtv_av_ctrl", 19, 2}};
    return kAddresses[family];
}

}  // namespace

void AvPlatform::Begin(const std::string& programmes, std::vector<std::string> options) {
    if (!programmes.empty()) {
        WriteFile(mDirectory / "guide.xml", programmes);
        options.insert(options.end(), {"--programmes", mDirectory / "guide.xml"});
    }
    options.insert(options.end(), {"--tune-time", "0ms"});
    mClients.clear();
    StopServingEvents();
    Start(options);
}

RawClient& AvPlatform::Client(To family) {
    auto& client = mClients[family];
    if (!client) client = std::make_unique<RawClient>(mDirectory / AddressOf(static_cast<int>(family)).socket);
    return *client;
}

std::string AvPlatform::Request(To family, int method, const Members& members) {
    Json::Value request;
    request["type"] = AddressOf(static_cast<int>(family)).type;
    request["method"] = method;
    for (const auto& member : members) request[member.first] = member.second;
    return request.toStyledString();
}

Json::Value AvPlatform::Ask(To family, int method, const Members& members) {
    const int port = AddressOf(static_cast<int>(family)).port;
    Client(family).Send(2, port, Request(family, method, members));
    const auto reply = Client(family).Receive();
    if (!reply) {
        ADD_FAILURE() << "no reply to method " << method << "\n" << mSimulator->Output();
        return Json::Value(Json::objectValue);
    }
    EXPECT_EQ(reply->type, 3);
    EXPECT_EQ(reply->port, port);
    return Parsed(reply->text);
}

void AvPlatform::Send(To family, int method, const Members& members) {
    Client(family).Send(1, AddressOf(static_cast<int>(family)).port, Request(family, method, members));
}

std::string AvPlatform::ProgrammeOf(const std::string& vb, unsigned index) {
    return AskOf(vb, kGetProgrammeByIndex, {{"index", index}})["programme"].asString();
}

std::string AvPlatform::ComponentOf(const std::string& vb, int type, unsigned index) {
    return AskOf(vb, kGetComponent, {{"comType", type}, {"index", index}})["component"].asString();
}

std::string AvPlatform::Presenting(int sid) {
    const std::string vb = NewObject();
    Tune(vb, sid);
    return vb;
}

void AvPlatform::Tune(const std::string& vb, int sid) {
    EXPECT_EQ(SetChannel(vb, Channel(vb, sid)), 0);
    EventsUntil("PlayState 2 0");
}

}  // namespace hbbtv::test
