// What the process writes to its standard output, kept from the terminal until a test has failed.
#pragma once

#include <string>

namespace hbbtv::test {

// From its construction to its end, standard output goes to a file without a name. One at a time.
class StdoutCapture {
  public:
    StdoutCapture();
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    // Everything so far.
    std::string Text() const;

    // Whether this line, without its newline, is among it.
    bool HasLine(const std::string& line) const;

  private:
    int mFile;
    int mTerminal;
};

}  // namespace hbbtv::test
