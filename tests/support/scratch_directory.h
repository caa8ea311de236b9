// A directory of a test's own, in which its sockets and files live. It is what TMPDIR and HIDL_HOST_DIR name from then
// on, for this process and for those it starts, and it is gone at the end.
#pragma once

#include <string>

namespace hbbtv::test {

class ScratchDirectory {
  public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    const std::string& Path() const { return mPath; }

    // Path of a file in the directory.
    std::string operator/(const std::string& name) const { return mPath + "/" + name; }

  private:
    std::string mPath;
};

}  // namespace hbbtv::test
