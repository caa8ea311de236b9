// Writes the inputs that the targets begin with: one of each kind, from protocol/ and the HIDL package.
//
//     fuzz_seeds DIRECTORY      a folder for each target, and the dictionary "words"
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>

#include "common/frame.h"
#include "common/text/json.h"
#include "file_seeds.h"
#include "input.h"
#include "package_values.h"
#include "parcels.h"
#include "services.h"
#include "usual_messages.h"

namespace hbbtv::fuzz {

namespace {

namespace host = android::hardware::host;

class Folder {
  public:
    Folder(const std::string& directory, const char* target) : mPath(directory + "/" + target) {
        std::filesystem::create_directories(mPath);
    }

    void Add(const std::string& input) {
        std::ofstream file(mPath + "/seed-" + std::to_string(++mCount), std::ios::binary);
        file << input;
    }

  private:
    const std::string mPath;
    int mCount = 0;
};

void WriteFrames(Folder folder) {
    const std::string request = Encode({kRequest, 7, "{\"type\":3,\"method\":16}"});
    folder.Add(request);
    folder.Add(request + Encode({kReply, 7, "{\"ret\":0}"}) + Encode({kOneWay, -1, std::string(3000, 'x')}));
    folder.Add(Encode({kRequest, 7, ""}) + request);
    folder.Add(request.substr(0, request.size() - 1));
    folder.Add(std::string("\xff\xff\xff\xff", 4) + request);
}

// Texts that are nearly JSON.
const std::vector<std::string> kOddTexts{"+56",
                                         "[01, -0, 1., 1e5]",
                                         "[1,]",
                                         "{\"a\": 1, \"a\": 2}",
                                         "/* a */ 1 // b",
                                         "nul",
                                         "\"\\ud800\\u0041\"",
                                         "[[[[]]]]",
                                         "1e999",
                                         "{\"a\" 1}"};

void WriteMessages(Folder json, Folder replies, Folder events) {
    for (const std::string& text : kOddTexts) json.Add(text);
    for (const WireFamily& family : WireFamilies()) {
        for (const Json::Value& event : family.protocol["events"]) {
            const std::string text = WriteJson(UsualEvent(family, event));
            json.Add(text);
            for (const Json::Value& form : event["forms"]) {
                events.Add(family.name + " - " + form.asString() + " answers\n" + text);
            }
        }
    }
    for (const std::string& name : MethodNames()) {
        const Package::QualifiedMethod method = Package::Get().FindMethod(name);
        const Json::Value* const operation = OperationOf(method);
        const std::string reply = operation == nullptr ? "{\"ret\":0}" : WriteJson(UsualReply(*operation));
        replies.Add(name + " " + WriteJson(UsualValues(method.method->arguments)) + "\n" + reply);
    }
}

// The codes of the methods that every interface has: 0x0f and three letters.
const std::vector<uint32_t> kMethodsOfAll{256067662, 256131655, 256136003, 256398152, 256462420,
                                          256660548, 256921159, 257049926, 257120595, 257250372};

void WriteStubs(Folder folder) {
    for (const std::string& name : MethodNames()) {
        const size_t dot = name.find('.');
        const RecordedCall call = RecordCall(ServiceOf(name.substr(0, dot)), name.substr(dot + 1));
        folder.Add(name + (call.oneWay ? " one-way" : "") + "\n" + call.body);
    }
    for (const Service& client : Clients()) {
        for (const Method& method : Package::Get().FindInterface(client.interface).methods) {
            const std::string body = DescribeCall(client.interface, method.name).body;
            folder.Add(client.interface + "." + method.name + "\n" + body);
            folder.Add(client.interface + "." + method.name + " one-way\n" + body);
        }
    }
    Parcel parcel;
    parcel.writeInterfaceToken("android.hidl.base@1.0::IBase");
    for (const uint32_t code : kMethodsOfAll) {
        folder.Add("IChannel." + std::to_string(code) + "\n" + BodyOf(parcel));
    }
}

std::string FrameOf(host::FrameType type, uint64_t node, uint32_t code, uint64_t id, const std::string& body) {
    host::FrameHead head{};
    head.type = static_cast<uint32_t>(type);
    head.node = node;
    head.code = code;
    head.id = id;
    return fuzz::FrameOf(head, body);
}

std::string LookupOf(const std::string& interface) {
    const std::string name = Package::Get().name + "::" + interface + "/default";
    Parcel parcel;
    parcel.writeText(name.data(), name.size());
    return FrameOf(host::FrameType::kLookup, 0, 0, 1, BodyOf(parcel));
}

// A client that calls methods of a service, registers if it can, and answers what it is then called for.
void WriteSessions(Folder folder) {
    for (const Service& service : Services()) {
        std::string bytes = LookupOf(service.interface);
        uint64_t id = 1;
        for (const Method& method : Package::Get().FindInterface(service.interface).methods) {
            if (method.name.find("Unregister") != std::string::npos) continue;
            const bool registers = method.name.find("Register") != std::string::npos;
            if (!registers && id > 5) continue;
            const RecordedCall call = RecordCall(service, method.name);
            bytes +=
                FrameOf(call.oneWay ? host::FrameType::kOneway : host::FrameType::kCall, 1, call.code, ++id, call.body);
        }
        const WireFamily* const family = Package::Get().FamilyOf(Package::Get().FindInterface(service.interface));
        bytes += "\nevents " + family->name + "\n";
        Parcel results;
        results.writeInt32(0);
        results.writeInt32(0);
        results.writeInt32(1);
        for (uint64_t answer = 1; answer <= 6; ++answer) {
            bytes += FrameOf(host::FrameType::kReply, 0, 0, answer, BodyOf(results));
        }
        folder.Add(bytes + FrameOf(host::FrameType::kRelease, 1, 0, 1, ""));
    }
}

// Requests of a family after those that create objects. "@0" is the first handle that a reply had.
void WriteRequests(Folder folder) {
    const std::string prelude =
        "channel_config {\"type\":19,\"method\":3}\nchannel_config {\"type\":19,\"method\":2}\n"
        "video_broadcast {\"type\":3,\"method\":0,\"context\":\"0x1\"}\n";
    for (const WireFamily& family : WireFamilies()) {
        std::string requests = prelude;
        int handle = 0;
        for (const Json::Value& operation : family.protocol["operations"]) {
            Json::Value request = UsualRequest(family, operation);
            for (const Json::Value& member : operation["request"]) {
                const std::string key = member["key"].asString();
                if (member["type"] == "pointer" && request.isMember(key)) {
                    request[key] = "@" + std::to_string(handle++ % 3);
                }
            }
            requests += family.name + " " + WriteJson(request) + "\n";
        }
        folder.Add(requests);
    }
    folder.Add(prelude +
               "!zap next\n!zap 5\n!key VK_RED\n!signal lost\n!signal back\n!tuner taken\n"
               "!set countryId FRA\n!get\n!apps\n!components\n!select audio 1\n!hide 2\n!remove 3\n"
               "!carousel-change a\n!parental-rating dvb-si 12\n!fail 3\n!record\n");
}

void WriteHttp(Folder folder) {
    const std::string head =
        " HTTP/1.1\r\nHost: 127.0.0.1:40123\r\nUser-Agent: Mozilla/5.0\r\nSec-Fetch-Site: same-origin\r\n";
    folder.Add("GET /0123456789abcdef/" + head + "\r\n");
    folder.Add("GET /0123456789abcdef/events" + head + "Last-Event-ID: 17\r\nAccept: text/event-stream\r\n\r\n");
    folder.Add("POST /0123456789abcdef/ask" + head + "Content-Type: application/json\r\nContent-Length: 2\r\n\r\n{}");
    folder.Add("POST /ask HTTP/1.0\r\nTransfer-Encoding: chunked\r\nOrigin: null\r\n\r\n0\r\n\r\n");
}

void WriteRelay(Folder folder) {
    const auto chunk = [](bool toCaller, const std::string& bytes) {  // of at most 128 bytes
        return static_cast<char>((bytes.size() - 1) * 2 + (toCaller ? 1 : 0)) + bytes;
    };
    const std::string request = Encode({kRequest, 2, R"({"c_handle":"0x1000","method":13,"type":12})"});
    const std::string reply = Encode({kReply, 2, R"({"name":"arte","ret":0})"});
    const std::string exchange =
        chunk(false, request.substr(0, 20)) + chunk(false, request.substr(20)) + chunk(true, reply);
    for (const char* rule : {"", "op:GetName drop", "on=reply set=name:1", "p=0.5 seed=7 corrupt=3", "answer={}", "cut",
                             "family:channel & !event delay=2s count=3", "remove all"}) {
        folder.Add(std::string(rule) + "\n" + exchange + exchange);
    }
    folder.Add("duplicate\n" + exchange + chunk(true, reply) + chunk(false, "these bytes are not a message"));
    folder.Add("hold\n" + chunk(false, Encode({kOneWay, 2, "[]"}) + Encode({77, 2, ""})) + chunk(true, "cut"));
}

// The names that messages have, for libFuzzer's own mutations.
void WriteWords(const std::string& file) {
    std::set<std::string> words;
    for (const WireFamily& family : WireFamilies()) {
        words.insert(family.name);
        const auto add = [&](const Json::Value& members) {
            for (const Json::Value& member : members) words.insert(member["key"].asString());
        };
        for (const Json::Value& operation : family.protocol["operations"]) {
            add(operation["request"]);
            add(operation["reply"]);
        }
        for (const Json::Value& event : family.protocol["events"]) add(event["members"]);
    }
    std::ofstream out(file);
    for (const std::string& word : words) out << WriteJson(word) << "\n";
}

void WriteAll(const std::string& directory) {
    WriteFrames({directory, "frames"});
    WriteMessages({directory, "json"}, {directory, "replies"}, {directory, "events"});
    WriteStubs({directory, "stubs"});
    WriteSessions({directory, "session"});
    WriteRequests({directory, "simulator"});
    WriteHttp({directory, "http"});
    WriteRelay({directory, "relay"});
    Folder files(directory, "files");
    for (const std::string& input : FileSeeds()) files.Add(input);
    Folder values(directory, "values");
    for (const std::string& input : ValueSeeds()) values.Add(input);
    Folder traffic(directory, "traffic");
    for (const std::string& input : TrafficSeeds()) traffic.Add(input);
    WriteWords(directory + "/words");
}

}  // namespace

}  // namespace hbbtv::fuzz

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: fuzz_seeds DIRECTORY\n");
        return 2;
    }
    hbbtv::fuzz::ScratchDirectory();
    hbbtv::fuzz::WriteAll(argv[1]);
    return 0;
}
