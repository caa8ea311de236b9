#include "played_platform.h"

#include <android/log.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "common/text/json.h"
#include "input.h"
#include "ipc/tolm_ipc_factory.h"

namespace hbbtv::fuzz {

namespace {

std::vector<unsigned char> BytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

class PlayedClient : public tolm::TolmIpcClient {
  public:
    bool Send(const std::vector<unsigned char>& message) override { return PlayedPlatform::Get().Take(message); }
    bool SendSync(const std::vector<unsigned char>& message, std::vector<unsigned char>& reply) override {
        return PlayedPlatform::Get().Exchange(message, reply);
    }
};

class PlayedServer : public tolm::TolmIpcServer {
  public:
    PlayedServer(TolmIpcKeyId key, tolm::TolmIpcServerDelegate* receiver) : mKey(key), mReceiver(receiver) {}
    ~PlayedServer() override { PlayedPlatform::Get().Serve(mKey, nullptr); }
    void Start() override { PlayedPlatform::Get().Serve(mKey, mReceiver); }

  private:
    const TolmIpcKeyId mKey;
    tolm::TolmIpcServerDelegate* const mReceiver;
};

}  // namespace

// Never destroyed: the library's adaptors are not either.
PlayedPlatform& PlayedPlatform::Get() {
    static PlayedPlatform* const platform = new PlayedPlatform;
    return *platform;
}

void PlayedPlatform::AnswerWith(const std::optional<std::string>& reply) {
    std::lock_guard<std::mutex> lock(mMutex);
    mReply = reply;
}

bool PlayedPlatform::Take(const std::vector<unsigned char>& request) {
    try {
        FUZZ_CHECK(ParseJson(std::string(request.begin(), request.end())).isObject());
    } catch (const BadJson& e) {
        FUZZ_CHECK(!"a request is valid JSON");
    }
    return true;
}

bool PlayedPlatform::Exchange(const std::vector<unsigned char>& request, std::vector<unsigned char>& reply) {
    Take(request);
    ++mRequests;
    std::lock_guard<std::mutex> lock(mMutex);
    if (!mReply) return false;
    reply.insert(reply.end(), mReply->begin(), mReply->end());
    return true;
}

void PlayedPlatform::Serve(TolmIpcKeyId key, tolm::TolmIpcServerDelegate* receiver) {
    std::lock_guard<std::mutex> lock(mMutex);
    mReceivers[key] = receiver;
}

tolm::TolmIpcServerDelegate* PlayedPlatform::ReceiverOf(int key) {
    std::lock_guard<std::mutex> lock(mMutex);
    const auto found = mReceivers.find(key);
    return found == mReceivers.end() ? nullptr : found->second;
}

void PlayedPlatform::Send(int key, int port, const std::string& event) {
    if (tolm::TolmIpcServerDelegate* receiver = ReceiverOf(key)) receiver->OnRecv(BytesOf(event), port);
}

std::string PlayedPlatform::SendAndWait(int key, int port, const std::string& event) {
    std::vector<unsigned char> reply;
    if (tolm::TolmIpcServerDelegate* receiver = ReceiverOf(key)) receiver->OnRecvSync(BytesOf(event), reply, port);
    return {reply.begin(), reply.end()};
}

}  // namespace hbbtv::fuzz

// The definitions below replace those of the libraries that the program links: a program's own ones come first.

namespace tolm {

std::unique_ptr<TolmIpcClient> TolmIpcFactory::CreateIpcClient(TolmIpcKeyId, int, TolmIpcType) {
    return std::make_unique<hbbtv::fuzz::PlayedClient>();
}

std::unique_ptr<TolmIpcServer> TolmIpcFactory::CreateIpcServer(TolmIpcKeyId key, TolmIpcServerDelegate* delegate,
                                                               TolmIpcType) {
    return std::make_unique<hbbtv::fuzz::PlayedServer>(key, delegate);
}

}  // namespace tolm

extern "C" int __android_log_print(int, const char*, const char* format, ...) {
    char line[1024];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(line, sizeof(line), format, arguments);
    va_end(arguments);
    static const bool shown = getenv("FUZZ_LOG") != nullptr;
    if (shown) std::fprintf(stderr, "%s\n", line);
    return length;
}

extern "C" int __android_log_is_loggable(int, const char*, int) {
    return 1;
}
