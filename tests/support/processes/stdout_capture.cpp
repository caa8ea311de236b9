#include "stdout_capture.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace hbbtv::test {

StdoutCapture::StdoutCapture()
    : mFile(memfd_create("stdout", MFD_CLOEXEC)), mTerminal(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)) {
    fflush(stdout);
    if (mFile < 0 || mTerminal < 0 || dup2(mFile, STDOUT_FILENO) < 0) {
        std::perror("capture of standard output");
        std::abort();
    }
}

StdoutCapture::~StdoutCapture() {
    fflush(stdout);
    dup2(mTerminal, STDOUT_FILENO);
    close(mTerminal);
    // Includes the messages of failed assertions.
    if (testing::Test::HasFailure()) fputs(Text().c_str(), stdout);
    close(mFile);
}

std::string StdoutCapture::Text() const {
    fflush(stdout);
    std::string text;
    char buffer[65536];
    ssize_t n;
    while ((n = pread(mFile, buffer, sizeof(buffer), static_cast<off_t>(text.size()))) > 0) {
        text.append(buffer, static_cast<size_t>(n));
    }
    return text;
}

bool StdoutCapture::HasLine(const std::string& line) const {
    return ("\n" + Text()).find("\n" + line + "\n") != std::string::npos;
}

}  // namespace hbbtv::test
