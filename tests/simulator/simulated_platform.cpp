// The fixture around the real program: see simulated_platform.h.
#include "simulated_platform.h"

#include <json/reader.h>
#include <json/writer.h>
#include <signal.h>

#include <fstream>
#include <sstream>

namespace hbbtv::test {

const char* const kOddServices =
    R"({"name": "Scrambled", "network": "sat", "onid": 1, "tsid": 1, "sid": 3, "type": "TV", "number": 3,
         "access": "scrambled",
         "components": [{"type": "video", "tag": 1, "pid": 301, "encoding": "MPEG2_SD_25", "encrypted": true}]},
        {"name": "Dark", "network": "sat", "onid": 1, "tsid": 1, "sid": 4, "type": "TV", "number": 4,
         "reception": "none",
         "components": [{"type": "video", "tag": 1, "pid": 401, "encoding": "MPEG2_SD_25"}]},
        {"name": "Locked", "network": "sat", "onid": 1, "tsid": 1, "sid": 5, "type": "TV", "number": 5,
         "access": "locked",
         "components": [{"type": "video", "tag": 1, "pid": 501, "encoding": "MPEG2_SD_25"}]},)";

const std::string kSmallLineUp = R"({
    "networks": [{"id": "sat", "name": "Satellite", "position": "19.2E", "delivery": "DVB_S", "nid": 1}],
    "services": [
        {"name": "One", "network": "sat", "onid": 1, "tsid": 1, "sid": 1, "type": "TV", "number": 1,
         "components": [{"type": "video", "tag": 1, "pid": 101, "encoding": "MPEG2_SD_25"},
                        {"type": "audio", "tag": 2, "pid": 102, "encoding": "MPEG1_L2", "language": "deu"}]},
        {"name": "Two", "network": "sat", "onid": 1, "tsid": 1, "sid": 2, "type": "TV", "definition": "HD", "number": 2,
         "components": [{"type": "video", "tag": 1, "pid": 201, "encoding": "AVC_HD_25"},
                        {"type": "audio", "tag": 2, "pid": 202, "encoding": "MPEG1_L2", "language": "deu"},
                        {"type": "audio", "tag": 3, "pid": 203, "encoding": "AC3", "language": "fra", "channels": 5},
                        {"type": "audio", "tag": 4, "pid": 204, "encoding": "MPEG1_L2", "language": "deu",
                         "audioDescription": true},
                        {"type": "subtitle", "tag": 5, "pid": 205, "encoding": "DVB-SUBT", "language": "deu"}]},
        )" + std::string(kOddServices) +
                                 R"(
        {"name": "Hidden", "network": "sat", "onid": 1, "tsid": 1, "sid": 9, "type": "TV", "listed": false,
         "components": [{"type": "video", "tag": 1, "pid": 901, "encoding": "MPEG2_SD_25"}]}
    ]
})";

Json::Value Parsed(const std::string& text) {
    Json::Value document;
    std::string errors;
    std::istringstream stream(text);
    if (!Json::parseFromStream(Json::CharReaderBuilder(), stream, &document, &errors)) {
        ADD_FAILURE() << "not JSON: " << text;
        return Json::Value(Json::objectValue);
    }
    return document;
}

std::string ContentOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
}

std::unique_ptr<ChildProcess> SimulatedPlatform::Launch(const std::vector<std::string>& options) {
    std::vector<std::string> command{HBBTV_SIM_PROGRAM};
    command.insert(command.end(), options.begin(), options.end());
    return std::make_unique<ChildProcess>(command);
}

void SimulatedPlatform::Start(std::vector<std::string> options) {
    const std::string lineUp = mDirectory / "small.json";
    WriteFile(lineUp, mLineUp);
    options.insert(options.begin(), {"--line-up", lineUp});
    mClients.clear();
    mSimulator = Launch(options);
    ASSERT_TRUE(mSimulator->WaitForOutput("ready\n")) << mSimulator->Output();
    ASSERT_TRUE(Client().Connected());
    ServeEvents();
}

int SimulatedPlatform::Stop() {
    mSimulator->Signal(SIGTERM);
    return mSimulator->WaitForExit().value_or(-1000);
}

void SimulatedPlatform::ServeEvents() {
    mLibrary = std::make_unique<LibraryStandIn>(mEventSocket);
}

namespace {

std::string Request(const Endpoint& endpoint, int code, const std::map<std::string, Json::Value>& members) {
    Json::Value request;
    if (endpoint.type) request["type"] = *endpoint.type;
    request[endpoint.code] = code;
    for (const auto& member : members) request[member.first] = member.second;
    return request.toStyledString();
}

}  // namespace

RawClient& SimulatedPlatform::ClientOf(const Endpoint& endpoint) {
    auto& client = mClients[endpoint.socket];
    if (!client) client = std::make_unique<RawClient>(mDirectory / endpoint.socket);
    return *client;
}

Json::Value SimulatedPlatform::AnswerTo(const Endpoint& endpoint, const std::string& text) {
    RawClient& client = ClientOf(endpoint);
    client.Send(kRequest, endpoint.port, text);
    const auto reply = client.Receive();
    if (!reply) {
        ADD_FAILURE() << "no reply to " << text << " at " << endpoint.socket << "\n" << mSimulator->Output();
        return Json::Value(Json::objectValue);
    }
    EXPECT_EQ(reply->type, kReply);
    EXPECT_EQ(reply->port, endpoint.port);
    return Parsed(reply->payload);
}

Json::Value SimulatedPlatform::AskAt(const Endpoint& endpoint, int code, const Members& members) {
    return AnswerTo(endpoint, Request(endpoint, code, members));
}

std::string SimulatedPlatform::HandleAt(const Endpoint& endpoint, int code, const char* member,
                                        const Members& members) {
    const Json::Value reply = AskAt(endpoint, code, members);
    EXPECT_EQ(reply["ret"], 0) << "code " << code << "\n" << mSimulator->Output();
    EXPECT_TRUE(reply[member].isString()) << "code " << code;
    return reply[member].asString();
}

void SimulatedPlatform::SendAt(const Endpoint& endpoint, int code, const Members& members) {
    ClientOf(endpoint).Send(kOneWay, endpoint.port, Request(endpoint, code, members));
}

Json::Value SimulatedPlatform::Ask(int method, const Members& members) {
    return AskAt(kToVideoBroadcast, method, members);
}

Json::Value SimulatedPlatform::AskOf(const std::string& vb, int method, Members members) {
    members["vb_handle"] = vb;
    return Ask(method, members);
}

std::string SimulatedPlatform::NewObject(const std::string& context) {
    const std::string vb = Ask(kCreate, {{"context", context}})["vb_handle"].asString();
    EXPECT_EQ(RetOf(vb, kRegisterCallback, {{"context", context}}), 0);
    return vb;
}

std::string SimulatedPlatform::Channel(const std::string& vb, int sid) {
    static const std::map<int, std::string> names{{1, "One"},  {2, "Two"},    {3, "Scrambled"},
                                                  {4, "Dark"}, {5, "Locked"}, {9, "Hidden"}};
    const Json::Value reply =
        AskOf(vb, kCreateChannel2,
              {{"idType", 11}, {"onid", 1}, {"tsid", 1}, {"sid", sid}, {"sourceId", 0}, {"ipBroadcastId", ""}});
    EXPECT_EQ(reply["ret"], 0);
    const std::string handle = reply["channel"].asString();
    mChannelNames[handle] = names.count(sid) != 0 ? names.at(sid) : "Unknown";
    return handle;
}

int SimulatedPlatform::SetChannel(const std::string& vb, const std::string& channel) {
    return RetOf(vb, kSetChannel, {{"channel", channel}, {"trickPlay", false}, {"url", ""}});
}

int SimulatedPlatform::State(const std::string& vb) {
    return AskOf(vb, kGetPlayState)["state"].asInt();
}

std::string SimulatedPlatform::Tell(const std::string& line) {
    const auto program = Launch({"--tell", line});
    EXPECT_TRUE(program->WaitForExit().has_value());
    const std::string answer = program->Output();
    return answer.substr(0, answer.find('\n'));
}

Frame SimulatedPlatform::NextMessage(LibraryStandIn& library, int port) {
    const auto message = library.Next();
    if (!message) {
        ADD_FAILURE() << "no message came\n" << mSimulator->Output();
        return {kOneWay, port, "{}"};
    }
    EXPECT_EQ(message->port, port);
    return *message;
}

Json::Value SimulatedPlatform::NextEventOf(LibraryStandIn& library, int port) {
    const Frame event = NextMessage(library, port);
    EXPECT_EQ(event.type, kOneWay);
    return Parsed(event.payload);
}

Json::Value SimulatedPlatform::NextEventJson() {
    const Json::Value event = NextEventOf(*mLibrary, 7);
    EXPECT_EQ(event["type"], "videobroadcast");
    return event;
}

std::string SimulatedPlatform::EventText(const Json::Value& event) const {
    const auto channel = [&](const char* member) {
        const std::string handle = event[member].asString();
        if (handle.empty()) return std::string("none");
        const auto known = mChannelNames.find(handle);
        return known == mChannelNames.end() ? "?" + handle : known->second;
    };
    std::ostringstream text;
    switch (event["event"].asInt()) {
        case 0:
            text << "ChannelError " << channel("channelHandle") << " " << event["errorState"].asInt();
            break;
        case 1:
            text << "PlayState " << event["state"].asInt() << " " << event["error"].asInt();
            break;
        case 2:
            EXPECT_EQ(event["channelHandle"], event["viewerChannelHandle"]);
            text << "ChannelChanged " << channel("channelHandle") << " " << event["quiet"].asInt();
            break;
        case 3:
            text << "FullScreen " << event["isFullScreen"].asInt();
            break;
        case 6:
            text << "PlaySpeed " << event["speed"].asDouble();
            break;
        case 8:
            text << "Recording " << event["state"].asInt();
            break;
        case 11:
            text << "SelectedComponent " << event["componentType"].asInt();
            break;
        case 16:
            text << "StreamEvent " << event["eventName"].asString() << " " << event["status"].asString();
            break;
        default:
            text << "event " << event["event"].asInt();
    }
    return text.str();
}

std::string SimulatedPlatform::NextEvent() {
    return EventText(NextEventJson());
}

std::vector<std::string> SimulatedPlatform::EventsUntil(const std::string& last) {
    std::vector<std::string> events;
    do {
        events.push_back(NextEvent());
    } while (events.back() != last && !HasFailure());
    return events;
}

std::vector<std::string> SimulatedPlatform::EventsSoFar(const std::string& vb) {
    const bool full = AskOf(vb, kGetFullScreen)["fullscreen"].asBool();
    EXPECT_EQ(RetOf(vb, kSetFullScreen, {{"fullscreen", !full}}), 0);
    std::vector<std::string> events = EventsUntil(full ? "FullScreen 0" : "FullScreen 1");
    events.pop_back();
    return events;
}

std::string SimulatedPlatform::ObjectIn(const std::string& state, const std::string& context) {
    const std::string vb = NewObject(context);
    Channel(vb, 1);
    if (state == "connecting") {
        EXPECT_EQ(SetChannel(vb, Channel(vb, 5)), 0);
        EventsUntil("PlayState 1 3");
        EXPECT_EQ(State(vb), 1);
    }
    if (state == "presenting" || state == "stopped") {
        EXPECT_EQ(SetChannel(vb, Channel(vb, 1)), 0);
        EventsUntil("PlayState 2 0");
        EXPECT_EQ(State(vb), 2);
    }
    if (state == "stopped") {
        EXPECT_EQ(RetOf(vb, kStop), 0);
        EXPECT_EQ(NextEvent(), "PlayState 3 0");
        EXPECT_EQ(State(vb), 3);
    }
    return vb;
}

}  // namespace hbbtv::test
