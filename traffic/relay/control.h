// The socket at which a relay answers other programs: each connection gets one JSON document.
#pragma once

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <functional>
#include <memory>
#include <string>

namespace hbbtv::traffic {

class Control {
  public:
    // `answer` returns the document. Only this user can connect. Throws Failure if the socket cannot be served.
    Control(asio::io_context& context, const std::string& path, std::function<std::string()> answer);

    // Removes the file.
    ~Control();
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

  private:
    void Await();

    const std::string mPath;
    const std::function<std::string()> mAnswer;
    asio::posix::stream_descriptor mListener;
};

}  // namespace hbbtv::traffic
