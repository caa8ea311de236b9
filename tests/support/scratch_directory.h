// A test's own directory for its sockets and files. The constructor sets TMPDIR and HIDL_HOST_DIR to it, for this
// process and for those it starts; the destructor removes it.
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

    // Returns the path of a file in the directory.
    std::string operator/(const std::string& name) const { return mPath + "/" + name; }

  private:
    std::string mPath;
};

// Returns one for all tests of this program, for tests that share the library's instances: these read TMPDIR once.
const ScratchDirectory& DirectoryOfThisProgram();

}  // namespace hbbtv::test
