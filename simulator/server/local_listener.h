// One served socket file: claims the path, accepts connections, and removes the file at the end.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace hbbtv::sim {

class EventLoop;

class LocalListener {
  public:
    // `onAccept` gets the descriptor of every new connection and owns it. A stale file at the path is replaced; a path
    // on which somebody answers, or that is no socket, is left alone. Throws Fatal.
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
