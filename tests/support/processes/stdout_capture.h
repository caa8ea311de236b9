// What the process writes to its standard output, kept off the terminal until a test has failed.
#pragma once

#include <string>

namespace hbbtv::test {

// While it exists, standard output goes to a file without a name. One at a time.
class StdoutCapture {
  public:
    StdoutCapture();
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    // Returns everything so far.
    std::string Text() const;

    // Returns whether it holds this line, given without its newline.
    bool HasLine(const std::string& line) const;

  private:
    int mFile;
    int mTerminal;
};

}  // namespace hbbtv::test
