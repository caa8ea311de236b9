#include "input.h"

#include <ftw.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace hbbtv::fuzz {

namespace {

class Directory {
  public:
    Directory() : mOwner(getpid()) {
        const char* const parent = getenv("TMPDIR");
        mPath = std::string(parent == nullptr ? "/tmp" : parent) + "/hbbtv-fuzz-XXXXXX";
        FUZZ_CHECK(mkdtemp(mPath.data()) != nullptr);
        setenv("TMPDIR", mPath.c_str(), 1);
        setenv("HIDL_HOST_DIR", (mPath + "/hidl").c_str(), 1);
    }
    ~Directory() {
        const auto removeEntry = [](const char* path, const struct stat*, int, FTW*) { return remove(path); };
        if (getpid() == mOwner) nftw(mPath.c_str(), removeEntry, 8, FTW_DEPTH | FTW_PHYS);
    }

    const std::string& Path() const { return mPath; }

  private:
    const pid_t mOwner;
    std::string mPath;
};

}  // namespace

void Broken(const char* promise, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, promise);
    std::abort();
}

Addressed Split(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const size_t end = text.find('\n');
    if (end == std::string::npos) return {text, ""};
    return {text.substr(0, end), text.substr(end + 1)};
}

std::vector<std::string> Words(const std::string& line) {
    std::vector<std::string> words;
    std::istringstream input(line);
    for (std::string word; input >> word;) words.push_back(word);
    return words;
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream input(text);
    for (std::string line; std::getline(input, line);) lines.push_back(line);
    return lines;
}

const std::string& ScratchDirectory() {
    static const Directory directory;
    return directory.Path();
}

}  // namespace hbbtv::fuzz
