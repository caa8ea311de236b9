// Requests, viewer's commands and replies of the library, in any order, to one simulator. Each line is one of them:
//
//     FAMILY REQUEST      "@0" in it is the first handle that a reply had
//     !COMMAND
//     <REPLY              to the oldest event that waits for one
#include <deque>
#include <filesystem>
#include <fstream>

#include "all_families.h"
#include "common/text/json.h"
#include "core/error.h"
#include "core/event_loop.h"
#include "input.h"
#include "json_mutation.h"
#include "line_up.h"
#include "server/dispatcher.h"
#include "usual_messages.h"

namespace hbbtv::fuzz {

namespace {

using namespace sim;

constexpr size_t kMostLines = 60;

// The library's end of the events.
class Library : public EventSink {
  public:
    using Reply = std::function<void(const Json::Value& reply)>;

    void Send(const std::string&, const Json::Value& members) override { WriteJson(members); }
    void SendAndWait(const std::string&, const Json::Value& members, Reply reply) override {
        WriteJson(members);
        mWaiting.push_back(std::move(reply));
    }

    void Answer(const Json::Value& reply) {
        if (mWaiting.empty()) return;
        const Reply waiting = std::move(mWaiting.front());
        mWaiting.pop_front();
        waiting(reply);
    }

  private:
    std::deque<Reply> mWaiting;
};

class World {
  public:
    World() : mTv(ParseLineUp(kLineUp, "line-up"), 1, mState) {
        mSettings.tuneTime = mSettings.streamEventInterval = mSettings.pingInterval = std::chrono::milliseconds(0);
        mSettings.seed = 1;
        mSettings.carousel = ScratchDirectory() + "/carousel";
        const FamilySetup setup{mLoop, mTv, mSettings,
                                [this](const FamilyAddress&, const EventTable&) -> EventSink& { return mLibrary; },
                                ScratchDirectory()};
        for (auto& family : MakeFamilies(setup)) {
            const std::string name = family->Address().name;
            mFamilies[name] = std::make_unique<Dispatcher>(std::move(family), mJournal);
        }
    }

    void Take(const std::string& line) {
        if (line.empty()) return;
        if (line[0] == '!') {
            Execute(line.substr(1));
        } else if (line[0] == '<') {
            Answer(line.substr(1));
        } else {
            Request(line.substr(0, line.find(' ')), WithHandles(line.substr(std::min(line.find(' '), line.size()))));
        }
        mLoop.RunReady();
    }

  private:
    void Request(const std::string& family, const std::string& text) {
        const auto found = mFamilies.find(family);
        if (found == mFamilies.end()) return;
        const auto reply = found->second->Handle({kRequest, 1, text});
        FUZZ_CHECK(reply && reply->type == kReply && reply->port == 1);
        const Json::Value document = ParseJson(reply->payload);
        FUZZ_CHECK(document.isObject() && document["ret"].isInt());
        for (const Json::Value& member : document) {
            if (member.isString() && member.asString().rfind("0x", 0) == 0) mHandles.push_back(member.asString());
        }
    }

    void Execute(const std::string& line) {
        std::vector<std::string> words = Words(line);
        if (words.empty()) return;
        for (const auto& family : mFamilies) {
            const auto& commands = family.second->Served().Commands();
            const auto found = commands.find(words[0]);
            if (found == commands.end()) continue;
            try {
                found->second.run({words.begin() + 1, words.end()});
            } catch (const std::exception&) {
                // The answer begins with "error".
            }
            return;
        }
    }

    void Answer(const std::string& text) {
        Json::Value reply;
        try {
            reply = ParseJson(text);
        } catch (const BadJson&) {
            // The library sent no reply.
        }
        mLibrary.Answer(reply);
    }

    std::string WithHandles(std::string text) const {
        for (size_t at = text.find("\"@"); at != std::string::npos; at = text.find("\"@", at + 2)) {
            const size_t end = text.find('"', at + 1);
            if (end == std::string::npos || mHandles.empty()) return text;
            const auto number = static_cast<size_t>(std::atoi(text.c_str() + at + 2));
            text.replace(at + 1, end - at - 1, mHandles[number % mHandles.size()]);
        }
        return text;
    }

    EventLoop mLoop;
    Journal mJournal{false};
    Settings mSettings;
    StateStore mState{""};
    Tv mTv;
    Library mLibrary;
    std::map<std::string, std::unique_ptr<Dispatcher>> mFamilies;
    std::vector<std::string> mHandles;
};

std::string AnyRequest(Random& random) {
    const WireFamily& family = WireFamilies()[Below(random, WireFamilies().size())];
    const Json::Value& operations = family.protocol["operations"];
    const Json::Value& operation = operations[static_cast<Json::ArrayIndex>(Below(random, operations.size()))];
    Json::Value request = UsualRequest(family, operation);
    for (const Json::Value& member : operation["request"]) {
        const std::string key = member["key"].asString();
        if (!request.isMember(key)) continue;
        if (member["type"] == "pointer") request[key] = "@" + std::to_string(Below(random, 8));
        if (member["type"] == "int" || member["type"] == "uint") request[key] = static_cast<int>(Below(random, 4));
    }
    return family.name + " " + WriteJson(request);
}

std::string MutatedLine(const std::string& line, Random& random) {
    constexpr size_t kRoom = 2048;
    const size_t blank = line.find(' ');
    if (line.empty() || line[0] == '!' || blank == std::string::npos) return MutatedBytes(line, line.size() + 20);
    return line.substr(0, blank + 1) + MutatedJson(line.substr(blank + 1), kRoom, random);
}

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const std::string directory = hbbtv::fuzz::ScratchDirectory() + "/carousel";
    std::filesystem::create_directories(directory + "/b");
    std::ofstream(directory + "/a") << "A";
    std::ofstream(directory + "/b/c.html") << "C";
    std::ofstream(directory + "/carousel.json")
        << R"({"applications": [{"organisation": 19, "application": 501, "start": "b/c.html"}]})";
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hbbtv::fuzz;
    const std::vector<std::string> lines = LinesOf(std::string(reinterpret_cast<const char*>(data), size));
    if (lines.size() > kMostLines) return -1;
    World world;
    for (const std::string& line : lines) world.Take(line);
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t mostBytes, unsigned seed) {
    using namespace hbbtv::fuzz;
    Random random(seed);
    std::vector<std::string> lines = LinesOf(std::string(reinterpret_cast<const char*>(data), size));
    if (lines.empty()) lines.push_back(AnyRequest(random));
    const size_t at = Below(random, lines.size());
    const auto place = lines.begin() + static_cast<std::ptrdiff_t>(at);
    switch (Below(random, 8)) {
        case 0:
        case 1:
            lines.insert(place + 1, AnyRequest(random));
            break;
        case 2:
            lines.erase(place);
            break;
        case 3:
            lines.insert(place, lines[Below(random, lines.size())]);
            break;
        default:
            *place = MutatedLine(*place, random);
    }
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return Store(text, data, mostBytes);
}
