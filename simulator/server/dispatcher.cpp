#include "server/dispatcher.h"

#include <exception>

#include "common/text/json.h"
#include "core/error.h"
#include "wire/message.h"

namespace hbbtv::sim {

namespace {

// Messages of the interface nest at most two levels deep.
constexpr int kDeepestNesting = 32;

}  // namespace

const Operation& Dispatcher::Find(const Json::Value& request) const {
    const FamilyAddress& address = mFamily->Address();
    const Arguments members(request);
    if (address.type && members.Int("type") != *address.type) {
        throw Refused("member \"type\" is " + std::to_string(members.Int("type")) + ", this family's is " +
                      std::to_string(*address.type));
    }
    const int code = members.Int(address.codeMember.c_str());
    const auto range = mFamily->Operations().equal_range(code);
    const Operation* found = nullptr;
    for (auto entry = range.first; entry != range.second; ++entry) {
        const Operation& operation = entry->second;
        if (!operation.mark.empty() && members.Has(operation.mark.c_str())) return operation;
        if (operation.mark.empty()) found = &operation;
    }
    if (found == nullptr) throw Refused("there is no operation " + std::to_string(code));
    return *found;
}

Json::Value Dispatcher::Parsed(const std::string& text) {
    try {
        return ParseJson(text, kDeepestNesting);
    } catch (const BadJson& e) {
        throw Refused(std::string(e.what()) + ": " + Excerpt(text));
    }
}

// A message may have any content, so every exception that it can cause is caught here.
Json::Value Dispatcher::Answer(const std::string& text, std::string& operation, std::string& arguments) {
    Json::Value reply(Json::objectValue);
    operation = "?";
    try {
        const Json::Value request = Parsed(text);
        if (!request.isObject()) throw Refused("not a JSON object: " + Excerpt(text));
        if (mJournal.Tracing()) arguments = Readable(request, mFamily->Address().codeMember);
        const Operation& found = Find(request);
        operation = found.name;
        found.handler(Arguments(request), reply);
        if (!reply.isMember("ret")) reply["ret"] = 0;
    } catch (const std::exception& e) {
        Journal::Log(mFamily->Address().name + ": " + (operation == "?" ? "request" : operation) +
                     " refused: " + e.what());
        reply = Json::Value(Json::objectValue);
        reply["ret"] = -1;
    }
    return reply;
}

std::optional<Frame> Dispatcher::Handle(const Frame& message) {
    if (message.type != kOneWay && message.type != kRequest) return std::nullopt;
    if (mSilent) {
        mJournal.Request(mFamily->Address().name, "", "not answered (stop-answering)", {});
        return std::nullopt;
    }
    const auto start = std::chrono::steady_clock::now();
    std::string operation;
    std::string arguments;
    const Json::Value reply = Answer(message.payload, operation, arguments);
    const bool wanted = message.type == kRequest;
    mJournal.Request(operation, arguments, wanted ? "< " + Readable(reply) : "one-way",
                     std::chrono::steady_clock::now() - start);
    if (!wanted) return std::nullopt;
    return Frame{kReply, message.port, WireText(reply)};
}

}  // namespace hbbtv::sim
