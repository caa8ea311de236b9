#include "traffic/web/web_session.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "common/failure.h"
#include "common/text/json.h"
#include "traffic/web/page.h"
#include "wire/check.h"
#include "wire/connection.h"
#include "wire/endpoint.h"
#include "wire/message.h"

namespace hbbtv::traffic {

namespace {

constexpr size_t kPartBytes = 256u << 10;  // of a stream, sent at once
constexpr Milliseconds kPatience{3000};
constexpr size_t kLongestCommand = 1000;
constexpr size_t kLongestAnswer = 64u << 10;

HttpResponse JsonResponse(const Json::Value& value) {
    return {200, "application/json", WriteJson(value)};
}

Json::Value Problem(const std::string& text) {
    Json::Value value(Json::objectValue);
    value["problem"] = text;
    return value;
}

const std::string& PlatformOf(const WebSettings& settings) {
    return settings.platform.empty() ? settings.directory : settings.platform;
}

std::string SimulatorPath(const std::string& directory) {
    return directory + "/hbbtv_sim_control";
}

bool HasSimulator(const std::string& directory) {
    return LookAt(SimulatorPath(directory)).state == Finding::State::Serving;
}

// Sends a line to a simulator, and returns the line with which it answers.
Json::Value Command(const std::string& directory, const std::string& command) {
    if (command.empty() || command.size() > kLongestCommand || command.find('\n') != std::string::npos) {
        return Problem("not a command");
    }
    const Descriptor socket(ConnectTo(SimulatorPath(directory)));
    const std::string line = command + "\n";
    if (socket.Get() < 0 ||
        send(socket.Get(), line.data(), line.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(line.size())) {
        return Problem("no simulator in " + directory);
    }
    std::string answer;
    while (answer.find('\n') == std::string::npos && answer.size() < kLongestAnswer) {
        pollfd ready{socket.Get(), POLLIN, 0};
        if (poll(&ready, 1, static_cast<int>(kPatience.count())) <= 0) return Problem("the simulator does not answer");
        char bytes[4096];
        const ssize_t count = recv(socket.Get(), bytes, sizeof(bytes), 0);
        if (count <= 0) return Problem("the simulator has ended");
        answer.append(bytes, static_cast<size_t>(count));
    }
    Json::Value value(Json::objectValue);
    value["answer"] = answer.substr(0, answer.find('\n'));
    return value;
}

Json::Value StateOf(const char* what, uint64_t count) {
    Json::Value value(Json::objectValue);
    value[what] = static_cast<Json::UInt64>(count);
    return value;
}

std::string StateEvent(const Json::Value& state) {
    return "event: state\ndata: " + WriteJson(state) + "\n\n";
}

HttpHandlers HandlersOf(WebSession* session, HttpResponse (WebSession::*get)(const std::string&) const,
                        HttpResponse (WebSession::*post)(const std::string&, const std::string&) const,
                        StreamPart (WebSession::*stream)(uint64_t) const, std::string (WebSession::*tick)() const) {
    return {[=](const std::string& path) { return (session->*get)(path); },
            [=](const std::string& path, const std::string& json) { return (session->*post)(path, json); },
            [=](uint64_t position) { return (session->*stream)(position); }, [=] { return (session->*tick)(); }};
}

}  // namespace

WebSession::WebSession(const WebSettings& settings)
    : mSettings(settings),
      mServer(settings.port,
              HandlersOf(this, &WebSession::Get, &WebSession::Post, &WebSession::Stream, &WebSession::Tick)) {}

void WebSession::Add(const Record& record) {
    mRing.Add(record);
    mServer.Notify();
}

HttpResponse WebSession::Get(const std::string& path) const {
    if (!path.empty()) return {404, "text/plain; charset=utf-8", "Not Found\n"};
    return {200, "text/html; charset=utf-8", LivePage({mSettings.head, true, HasSimulator(PlatformOf(mSettings))})};
}

// Sends a request that changes nothing, and returns the reply. A page must not do more than look.
Json::Value WebSession::Ask(const std::string& question, const Json::Value& members) const {
    const size_t dot = question.find('.');
    const WireFamily& family = FindFamily(question.substr(0, dot));
    const Json::Value* operation = dot == std::string::npos ? nullptr : family.Operation(question.substr(dot + 1));
    if (operation == nullptr) return Problem("unknown operation \"" + question + "\"");
    if ((*operation)["effect"] != "none") return Problem(question + " changes something; a page only asks");
    const Json::Value request = MakeRequest(family, *operation, members);
    for (const std::string& problem : CheckRequest(family, *operation, request)) return Problem(problem);
    const Endpoint endpoint = RequestsOf(family);
    WireConnection connection(PathOf(mSettings.directory, endpoint));
    connection.Send(Encode({kRequest, endpoint.port, WireText(request)}), kPatience);
    Record record;
    record.message.json = request;
    Identify(record, endpoint.socket);
    record.reply.emplace().json = ParseJson(connection.Receive(kPatience).payload);
    if (mSettings.redact) mSettings.redact(record);
    Json::Value answer(Json::objectValue);
    answer["reply"] = record.reply->json;
    return answer;
}

HttpResponse WebSession::Post(const std::string& path, const std::string& json) const {
    try {
        const Json::Value wish = ParseJson(json);
        if (!wish.isObject()) return JsonResponse(Problem("not an object"));
        if (path == "ask" && wish["operation"].isString()) {
            return JsonResponse(Ask(wish["operation"].asString(), wish["members"]));
        }
        if (path == "simulator" && wish["command"].isString()) {
            return JsonResponse(Command(PlatformOf(mSettings), wish["command"].asString()));
        }
    } catch (const std::exception& e) {
        return JsonResponse(Problem(e.what()));
    }
    return {404, "text/plain; charset=utf-8", "Not Found\n"};
}

StreamPart WebSession::Stream(uint64_t position) const {
    const RecordRing::Part records = mRing.After(position, kPartBytes);
    StreamPart part{"", records.position};
    if (records.missing > 0) part.text = StateEvent(StateOf("missing", records.missing));
    uint64_t number = records.position - records.lines.size();
    for (const auto& line : records.lines) {
        part.text += "id: " + std::to_string(++number) + "\nevent: record\ndata: " + *line + "\n\n";
    }
    return part;
}

std::string WebSession::Tick() const {
    const std::vector<Record> open = mSettings.open ? mSettings.open() : std::vector<Record>();
    const uint64_t now = TimeStamp().Monotonic();
    Json::Value state = StateOf("open", open.size());
    if (!open.empty()) {
        const uint64_t begun = open.front().time.Monotonic();
        state["oldest"] = open.front().family + "." + open.front().operation;
        state["oldest_us"] = static_cast<Json::UInt64>(now > begun ? now - begun : 0);
    }
    return StateEvent(state);
}

}  // namespace hbbtv::traffic
