#include "server/control_server.h"

#include <asio/buffer.hpp>
#include <asio/error.hpp>
#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/read.hpp>
#include <asio/read_until.hpp>
#include <asio/write.hpp>
#include <chrono>

#include "core/error.h"
#include "core/event_loop.h"

namespace hbbtv::sim {

namespace {

using Socket = asio::local::stream_protocol::socket;
using Answer = std::function<std::string(const std::string&)>;

constexpr size_t kLongestLine = 4096;

// How long Tell() waits for the answer.
constexpr std::chrono::seconds kPatience{5};

class ControlConnection : public std::enable_shared_from_this<ControlConnection> {
  public:
    ControlConnection(EventLoop& loop, int fd, Answer answer)
        : mSocket(loop.Context(), asio::local::stream_protocol(), fd), mAnswer(std::move(answer)) {}

    void Read() {
        asio::async_read_until(mSocket, asio::dynamic_buffer(mInput, kLongestLine), '\n',
                               [self = shared_from_this()](const asio::error_code& error, size_t count) {
                                   if (error) return;
                                   const std::string line = self->mInput.substr(0, count - 1);
                                   self->mInput.erase(0, count);
                                   self->Reply(self->mAnswer(line) + "\n");
                               });
    }

  private:
    void Reply(std::string text) {
        mOutput = std::move(text);
        asio::async_write(mSocket, asio::buffer(mOutput),
                          [self = shared_from_this()](const asio::error_code& error, size_t) {
                              if (!error) self->Read();
                          });
    }

    Socket mSocket;
    Answer mAnswer;
    std::string mInput;
    std::string mOutput;
};

}  // namespace

ControlServer::ControlServer(EventLoop& loop, const std::string& path, Answer answer)
    : mListener(loop, path,
                [&loop, answer](int fd) { std::make_shared<ControlConnection>(loop, fd, answer)->Read(); }) {}

std::string Tell(const std::string& path, const std::string& line) {
    asio::io_context context;
    Socket socket(context);
    asio::error_code error = asio::error::would_block;  // until it is done
    const std::string message = line + "\n";
    std::string answer;
    socket.async_connect(asio::local::stream_protocol::endpoint(path), [&](const asio::error_code& refused) {
        if (refused) throw Fatal(kTellFailed, "no simulator answers on " + path + ": " + refused.message());
        asio::async_write(socket, asio::buffer(message), [](const asio::error_code&, size_t) {});
        asio::async_read_until(socket, asio::dynamic_buffer(answer), '\n',
                               [&](const asio::error_code& failed, size_t) { error = failed; });
    });
    context.run_for(kPatience);
    if (error == asio::error::would_block) {
        throw Fatal(kTellFailed, "the simulator on " + path + " has not answered within " +
                                     std::to_string(kPatience.count()) + " s; it is stopped, or hangs");
    }
    if (error) throw Fatal(kTellFailed, "the simulator on " + path + " did not answer: " + error.message());
    answer.pop_back();
    return answer;
}

}  // namespace hbbtv::sim
