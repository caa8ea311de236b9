// Names of files that appear in, change in and leave a directory.
#pragma once

#include <set>
#include <string>

#include "common/local_socket.h"

namespace hbbtv::traffic {

class DirectoryWatch {
  public:
    explicit DirectoryWatch(const std::string& directory);

    // Readable when there are names; -1 if the directory cannot be watched.
    int Fd() const { return mFd.Get(); }

    // Returns the names since the last call. `all`: names have been lost, so that all files may have changed.
    std::set<std::string> Names(bool& all);

  private:
    Descriptor mFd;
};

}  // namespace hbbtv::traffic
