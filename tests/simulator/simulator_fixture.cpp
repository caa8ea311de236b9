#include "simulator_fixture.h"

#include <signal.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "wait_for.h"
#include "wire/endpoint.h"
#include "wire/message.h"

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

std::string ServiceText(int number, const std::string& name, const std::string& members) {
    const std::string text = std::to_string(number);
    return R"({"name": ")" + name + R"(", "network": "sat", "onid": 1, "tsid": 1, "sid": )" + text +
           R"(, "type": "TV", "number": )" + text + (members.empty() ? "" : ", " + members) +
           R"(, "components": [{"type": "video", "tag": 1, "pid": 1, "encoding": "MPEG2_SD_25"}]})";
}

std::string LineUpText(const std::string& services) {
    return R"({"networks": [{"id": "sat", "name": "Satellite", "delivery": "DVB_S", "nid": 1}], "services": [)" +
           services + "]}";
}

std::string LineUpOf(int count) {
    std::string services;
    for (int i = 1; i <= count; ++i) services += (i == 1 ? "" : ",") + ServiceText(i, "S" + std::to_string(i));
    return LineUpText(services);
}

void SimulatorFixture::Start(const std::vector<std::string>& options) {
    const std::string lineUp = mDirectory / "small.json";
    WriteFile(lineUp, mLineUp);
    mOptions = options;
    std::vector<std::string> all = options;
    for (const auto& [option, value] : {std::pair("--line-up", lineUp), std::pair("--tune-time", std::string("0ms"))}) {
        if (std::count(options.begin(), options.end(), option) == 0) all.insert(all.end(), {option, value});
    }
    mClients.clear();
    mSimulator = Launch(all);
    ASSERT_TRUE(mSimulator->WaitForOutput("ready\n")) << mSimulator->Output();
    ASSERT_TRUE(ClientOf().Connected());
    mLibraries["video_broadcast"];
    for (const auto& library : mLibraries) ServeEvents(library.first);
}

void SimulatorFixture::Restart() {
    EXPECT_EQ(Stop(), 0) << mSimulator->Output();
    Start(std::vector<std::string>(mOptions));
}

std::unique_ptr<ChildProcess> SimulatorFixture::Launch(const std::vector<std::string>& options) {
    std::vector<std::string> command{HBBTV_SIM_PROGRAM};
    command.insert(command.end(), options.begin(), options.end());
    return std::make_unique<ChildProcess>(command);
}

SimulatorFixture::Outcome SimulatorFixture::Run(const std::vector<std::string>& options) {
    const auto program = Launch(options);
    const auto code = program->WaitForExit();
    return {code.value_or(-1000), program->Output()};
}

void SimulatorFixture::ExpectEnd(const std::vector<std::string>& options, int exitCode, const std::string& text) {
    const Outcome outcome = Run(options);
    EXPECT_EQ(outcome.exitCode, exitCode) << outcome.output;
    EXPECT_NE(outcome.output.find(text), std::string::npos) << text << " in\n" << outcome.output;
}

int SimulatorFixture::Stop() {
    mSimulator->Signal(SIGTERM);
    return mSimulator->WaitForExit().value_or(-1000);
}

std::string SimulatorFixture::Tell(const std::string& line) {
    const Outcome outcome = Run({"--tell", line});
    EXPECT_NE(outcome.exitCode, -1000);
    return outcome.output.substr(0, outcome.output.find('\n'));
}

void SimulatorFixture::ExpectSaid(const std::string& text, int times) const {
    const auto said = [&] {
        const std::string output = mSimulator->Output();
        int count = 0;
        for (size_t at = output.find(text); at != std::string::npos; at = output.find(text, at + 1)) ++count;
        return count;
    };
    WaitFor([&] { return said() >= times; });
    EXPECT_EQ(said(), times) << text << " in\n" << mSimulator->Output();
}

Operation SimulatorFixture::Named(const std::string& operation) const {
    return Operation(operation.find('.') == std::string::npos ? mFamily + "." + operation : operation);
}

Members SimulatorFixture::WithObject(const std::string& object, const std::string& operation, Members members) const {
    members[Named(operation).ObjectKey()] = object;
    return members;
}

Json::Value SimulatorFixture::Ask(const std::string& operation, const Members& members) {
    const Operation named = Named(operation);
    const Json::Value reply = AnswerTo(named.Family().name, WireText(named.Request(members)));
    named.CheckReply(reply);
    return reply;
}

Json::Value SimulatorFixture::Get(const std::string& operation, const Members& members) {
    const Json::Value reply = Ask(operation, members);
    EXPECT_EQ(reply["ret"], 0) << operation << "\n" << mSimulator->Output();
    return Named(operation).OnlyResult(reply);
}

std::string SimulatorFixture::Handle(const std::string& operation, const Members& members) {
    const Json::Value result = Get(operation, members);
    EXPECT_TRUE(result.isString()) << operation;
    return result.asString();
}

void SimulatorFixture::ExpectValues(const std::string& object, const std::string& values) {
    const Json::Value expected = Parsed(values);
    EXPECT_FALSE(expected.empty());
    for (const std::string& getter : expected.getMemberNames()) {
        EXPECT_EQ(GetOf(object, getter), expected[getter]) << getter;
    }
}

void SimulatorFixture::ExpectValues(const std::string& values) {
    const Json::Value expected = Parsed(values);
    EXPECT_FALSE(expected.empty());
    for (const std::string& getter : expected.getMemberNames()) EXPECT_EQ(Get(getter), expected[getter]) << getter;
}

void SimulatorFixture::ExpectTaken(const std::string& object, const std::string& values) {
    const Json::Value given = Parsed(values);
    EXPECT_FALSE(given.empty());
    for (const std::string& setter : given.getMemberNames()) {
        EXPECT_EQ(RetOf(object, setter, {{Named(setter).ValueKey(), given[setter]}}), 0) << setter;
    }
}

void SimulatorFixture::ExpectTaken(const std::string& values) {
    const Json::Value given = Parsed(values);
    EXPECT_FALSE(given.empty());
    for (const std::string& setter : given.getMemberNames()) {
        EXPECT_EQ(Ret(setter, {{Named(setter).ValueKey(), given[setter]}}), 0) << setter;
    }
}

void SimulatorFixture::Send(const std::string& operation, const Members& members) {
    const std::string family = Named(operation).Family().name;
    ClientOf(family).Send(kOneWay, RequestPort(family), RequestText(operation, members));
}

std::string SimulatorFixture::RawText(const std::string& operation, const Members& members) const {
    Json::Value request = Named(operation).Request({});
    for (const auto& [key, value] : members) request[key] = value;
    return WireText(request);
}

Json::Value SimulatorFixture::AskRaw(const std::string& operation, const Members& members) {
    return AnswerTo(Named(operation).Family().name, RawText(operation, members));
}

void SimulatorFixture::SendRaw(const std::string& operation, const Members& members) {
    const std::string family = Named(operation).Family().name;
    ClientOf(family).Send(kOneWay, RequestPort(family), RawText(operation, members));
}

Json::Value SimulatorFixture::AskCode(const std::string& family, const Json::Value& code, const Members& members) {
    return AnswerTo(family, WireText(RawRequest(FindFamily(family), code, members)));
}

Json::Value SimulatorFixture::AnswerTo(const std::string& family, const std::string& text) {
    RawClient& client = ClientOf(family);
    client.Send(kRequest, RequestPort(family), text);
    const auto reply = client.Receive();
    if (!reply) {
        ADD_FAILURE() << "no reply to " << text << " of " << family << "\n" << mSimulator->Output();
        return Json::Value(Json::objectValue);
    }
    EXPECT_EQ(reply->type, kReply);
    EXPECT_EQ(reply->port, RequestPort(family));
    return Parsed(reply->payload);
}

Members SimulatorFixture::Fitting(const std::string& operation, const Members& members) const {
    Members fitting;
    for (const auto& member : members) {
        if (Named(operation).Has(member.first)) fitting.insert(member);
    }
    return fitting;
}

void SimulatorFixture::ExpectRefused(const std::vector<std::string>& operations,
                                     const std::vector<std::string>& objects, const Members& members) {
    for (const std::string& operation : operations) {
        for (const std::string& object : objects) {
            EXPECT_EQ(RetOf(object, operation, Fitting(operation, members)), -1) << operation << " of " << object;
        }
    }
}

void SimulatorFixture::ExpectRequestsRefused(const std::vector<std::string>& operations, const Members& members) {
    for (const std::string& operation : operations) {
        EXPECT_EQ(Ret(operation, Fitting(operation, members)), -1) << operation;
    }
}

void SimulatorFixture::ExpectOtherCodesRefused(const std::string& family, const std::string& object, Members members) {
    if (!object.empty()) members[Operation(OperationsOf(family).back()).ObjectKey()] = object;
    for (const int code : CodesWithoutOperation(family)) {
        EXPECT_EQ(AskCode(family, code, members)["ret"], -1) << family << " " << code;
    }
}

std::string SimulatorFixture::RequestText(const std::string& operation, const Members& members) const {
    return WireText(Named(operation).Request(members));
}

std::string SimulatorFixture::RequestSocket(const std::string& family) const {
    return mDirectory / RequestsOf(FindFamily(family)).socket;
}

int SimulatorFixture::RequestPort(const std::string& family) {
    return RequestsOf(FindFamily(family)).port;
}

RawClient& SimulatorFixture::ClientOf(const std::string& family) {
    auto& client = mClients[family];
    if (!client) client = std::make_unique<RawClient>(RequestSocket(family));
    return *client;
}

void SimulatorFixture::ServeEvents(const std::string& family) {
    auto& library = mLibraries[family];
    library.reset();
    library = std::make_unique<LibraryStandIn>(EventSocket(family));
}

std::string SimulatorFixture::EventSocket(const std::string& family) const {
    return mDirectory / EventsOf(FindFamily(family)).socket;
}

Event SimulatorFixture::NextEventOf(const std::string& family) {
    const auto message = LibraryOf(family).Next();
    if (!message) {
        ADD_FAILURE() << "no event of " << family << "\n" << mSimulator->Output();
        return {};
    }
    EXPECT_EQ(message->port, EventsOf(FindFamily(family)).port);
    return ReadEvent(family, *message);
}

std::string ContentOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

void WriteFile(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
}

}  // namespace hbbtv::test
