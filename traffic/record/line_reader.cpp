#include "traffic/record/line_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "common/failure.h"

namespace hbbtv::traffic {

namespace {

constexpr size_t kBuffer = 256u << 10;

int OpenFile(const std::string& path) {
    const int fd = path == "-" ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) throw Failure(kUsage, "cannot read " + path + ": " + std::strerror(errno));
    return fd;
}

}  // namespace

LineReader::LineReader(const std::string& path, size_t longest)
    : mName(path == "-" ? "standard input" : path), mLongest(longest), mFile(OpenFile(path)) {}

bool LineReader::Fill() {
    mBuffer.resize(kBuffer);
    ssize_t count = -1;
    do {
        count = read(mFile.Get(), mBuffer.data(), mBuffer.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0) throw Failure(kUsage, "cannot read " + mName + ": " + std::strerror(errno));
    mBuffer.resize(static_cast<size_t>(count));
    mUsed = 0;
    return count > 0;
}

bool LineReader::Next(std::string& line) {
    line.clear();
    bool any = false;
    for (mWhole = false; !mWhole;) {
        if (mUsed == mBuffer.size() && !Fill()) break;
        any = true;
        const size_t found = mBuffer.find('\n', mUsed);
        mWhole = found != std::string::npos;
        const size_t end = mWhole ? found : mBuffer.size();
        if (line.size() <= mLongest) line.append(mBuffer, mUsed, std::min(end - mUsed, mLongest + 1));
        mUsed = mWhole ? end + 1 : end;
    }
    mNumber += any ? 1 : 0;
    return any;
}

}  // namespace hbbtv::traffic
