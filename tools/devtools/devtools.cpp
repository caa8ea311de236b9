#include "devtools/devtools.h"

#include <array>
#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/write.hpp>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "common/failure.h"
#include "common/text/json.h"

namespace hbbtv::devtools {

namespace {

constexpr Milliseconds kTimeToClose{3000};
constexpr size_t kAtOnce = 65536;
constexpr int kDeepest = 500;  // of a message of Chromium

const char* const kEnded = "Chromium has ended";

}  // namespace

// The two pipes. Exists as long as a function of the loop refers to it.
class DevTools::Connection : public std::enable_shared_from_this<Connection> {
  public:
    Connection(Loop& loop, int commands, int answers)
        : mLoop(loop), mCommands(loop.Context(), commands), mAnswers(loop.Context(), answers) {}

    void SetHandlers(OnEvent onEvent, OnEnd onEnd) {
        mOnEvent = std::move(onEvent);
        mOnEnd = std::move(onEnd);
    }

    void Forget() {
        SetHandlers(nullptr, nullptr);
        mOpen.clear();
    }

    void Read();
    void Send(const std::string& session, const std::string& method, const Json::Value& params, OnAnswer onAnswer,
              Milliseconds limit);
    void Close();

    bool IsOpen() const { return mAnswers.is_open(); }

  private:
    void Write();
    void TakeMessages();
    void TakeMessage(const std::string& text);
    void Finish(int id, const Answer& answer);
    void End();

    Loop& mLoop;
    asio::posix::stream_descriptor mCommands;
    asio::posix::stream_descriptor mAnswers;
    std::array<char, kAtOnce> mBytes;
    std::string mReceived;
    std::string mBeingWritten;
    std::string mToWrite;
    int mLastId = 0;
    std::map<int, OnAnswer> mOpen;  // commands without an answer yet
    OnEvent mOnEvent;
    OnEnd mOnEnd;
};

void DevTools::Connection::Read() {
    mAnswers.async_read_some(asio::buffer(mBytes),
                             [self = shared_from_this()](const asio::error_code& error, size_t count) {
                                 if (!self->IsOpen()) return;
                                 if (error) return self->mLoop.Post([self] { self->End(); });
                                 self->mReceived.append(self->mBytes.data(), count);
                                 self->TakeMessages();
                                 if (self->IsOpen()) self->Read();
                             });
}

// Posted one by one, because a function that a message calls may run the loop.
void DevTools::Connection::TakeMessages() {
    size_t begin = 0;
    for (size_t end; (end = mReceived.find('\0', begin)) != std::string::npos; begin = end + 1) {
        mLoop.Post([self = shared_from_this(), text = mReceived.substr(begin, end - begin)] {
            if (self->IsOpen()) self->TakeMessage(text);
        });
    }
    mReceived.erase(0, begin);
}

void DevTools::Connection::TakeMessage(const std::string& text) {
    Json::Value message;
    try {
        message = ParseJson(text, kDeepest);
    } catch (const BadJson&) {
        return;  // not of this protocol
    }
    if (!message.isObject()) return;
    if (message.isMember("id")) {
        const Json::Value& error = message["error"];
        Finish(message["id"].asInt(), {message["result"], error.isObject() ? error["message"].asString() : ""});
    } else if (mOnEvent) {
        mOnEvent(message["sessionId"].asString(), message["method"].asString(), message["params"]);
    }
}

void DevTools::Connection::Finish(int id, const Answer& answer) {
    const auto found = mOpen.find(id);
    if (found == mOpen.end()) return;
    const OnAnswer onAnswer = std::move(found->second);
    mOpen.erase(found);
    if (onAnswer) onAnswer(answer);
}

void DevTools::Connection::Send(const std::string& session, const std::string& method, const Json::Value& params,
                                OnAnswer onAnswer, Milliseconds limit) {
    const int id = ++mLastId;
    mOpen[id] = std::move(onAnswer);
    if (!IsOpen()) {
        mLoop.Post([self = shared_from_this(), id] { self->Finish(id, {Json::Value(), kEnded}); });
        return;
    }
    Json::Value message;
    message["id"] = id;
    message["method"] = method;
    message["params"] = params;
    if (session != kBrowserSession) message["sessionId"] = session;
    mToWrite += WriteJson(message);
    mToWrite += '\0';
    if (mBeingWritten.empty()) Write();
    mLoop.After(limit, [weak = weak_from_this(), id, method, limit] {
        const std::shared_ptr<Connection> self = weak.lock();
        if (self) self->Finish(id, {Json::Value(), method + ": no answer within " + FormatDuration(limit)});
    });
}

void DevTools::Connection::Write() {
    std::swap(mBeingWritten, mToWrite);
    asio::async_write(mCommands, asio::buffer(mBeingWritten),
                      [self = shared_from_this()](const asio::error_code& error, size_t) {
                          self->mBeingWritten.clear();
                          if (!error && self->IsOpen() && !self->mToWrite.empty()) self->Write();
                      });
}

void DevTools::Connection::Close() {
    asio::error_code ignored;
    mAnswers.close(ignored);
    mCommands.close(ignored);
    Forget();
}

// Posted, so that it follows the messages that have been received.
void DevTools::Connection::End() {
    if (!IsOpen()) return;
    const OnEnd onEnd = mOnEnd;
    std::map<int, OnAnswer> open;
    std::swap(open, mOpen);
    Close();
    for (const auto& command : open) {
        if (command.second) command.second({Json::Value(), kEnded});
    }
    if (onEnd) onEnd();
}

DevTools::DevTools(Loop& loop, const ChromiumOptions& options)
    : mLoop(loop),
      mProcess(options),
      mConnection(std::make_shared<Connection>(loop, mProcess.TakeCommands(), mProcess.TakeAnswers())) {
    mConnection->Read();
}

void DevTools::Forget() {
    mConnection->Forget();
}

DevTools::~DevTools() {
    Forget();
    if (mConnection->IsOpen()) {
        Send(kBrowserSession, "Browser.close");
        mLoop.RunUntil([this] { return !mConnection->IsOpen(); }, kTimeToClose);
    }
    mConnection->Close();
    mProcess.WaitForEnd(kTimeToClose);
}

void DevTools::SetHandlers(OnEvent onEvent, OnEnd onEnd) {
    mConnection->SetHandlers(std::move(onEvent), std::move(onEnd));
}

void DevTools::Send(const std::string& session, const std::string& method, const Json::Value& params, OnAnswer onAnswer,
                    Milliseconds limit) {
    mConnection->Send(session, method, params, std::move(onAnswer), limit);
}

Json::Value DevTools::Command(const std::string& session, const std::string& method, const Json::Value& params,
                              Milliseconds limit) {
    const auto answer = std::make_shared<std::optional<Answer>>();
    Send(
        session, method, params, [answer](const Answer& came) { *answer = came; }, limit);
    if (!mLoop.RunUntil([&] { return answer->has_value(); }, limit))
        throw Failure(kTimeout, "Chromium: " + method + ": no answer within " + FormatDuration(limit));
    if ((*answer)->Ok()) return (*answer)->result;
    const std::string& error = (*answer)->error;
    throw Failure(error == kEnded ? kPeerLost : kInvalidReply, "Chromium: " + method + ": " + error);
}

bool DevTools::Running() const {
    return mConnection->IsOpen();
}

pid_t DevTools::Pid() const {
    return mProcess.Pid();
}

std::string DevTools::Messages(size_t begin) const {
    return mProcess.Messages(begin);
}

std::string DevTools::LastMessage() const {
    return mProcess.LastMessage();
}

}  // namespace hbbtv::devtools
