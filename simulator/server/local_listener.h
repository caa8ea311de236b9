// One served socket file: claims the path, accepts connections, and removes the file at the end.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace hbbtv::sim {

class EventLoop;

class LocalListener {
  public:
    // `onAccept` gets and owns the descriptor of every new connection. A stale file at the path is replaced. Throws
    // Fatal, among others if a process answers on the path or the file is not a socket.
    LocalListener(EventLoop& loop, const std::string& path, std::function<void(int)> onAccept);
    ~LocalListener();
    LocalListener(const LocalListener&) = delete;
    LocalListener& operator=(const LocalListener&) = delete;

    const std::string& Path() const { return mPath; }

  private:
    struct Acceptor;
    void AcceptNext();

    std::string mPath;
    std::function<void(int)> mOnAccept;
    std::unique_ptr<Acceptor> mAcceptor;
};

}  // namespace hbbtv::sim
