#include "scratch_directory.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace hbbtv::test {

ScratchDirectory::ScratchDirectory() {
    // Always below /tmp, never below an outer TMPDIR: a socket's path must fit into 107 characters.
    char path[] = "/tmp/hbbtv-test-XXXXXX";
    if (mkdtemp(path) == nullptr) {
        std::perror("mkdtemp /tmp/hbbtv-test-XXXXXX");
        std::abort();
    }
    mPath = path;
    setenv("TMPDIR", path, 1);
    setenv("HIDL_HOST_DIR", (mPath + "/hidl").c_str(), 1);
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

const ScratchDirectory& DirectoryOfThisProgram() {
    static const ScratchDirectory directory;
    return directory;
}

}  // namespace hbbtv::test
