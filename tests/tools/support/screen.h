// A terminal with a shell, run by tmux: tests send keys and read the screen.
#pragma once

#include <string>
#include <vector>

#include "child_process.h"

namespace hbbtv::test {

class Screen {
  public:
    // `shell` is a command line; hbbtvctl is in its PATH, and HOME is TMPDIR.
    explicit Screen(const std::string& shell);

    void Type(const std::string& text) const;
    void Press(const std::string& key) const;  // a key name of tmux: "Tab", "Enter", "C-u"

    // Returns all lines, without trailing blanks.
    std::string Text() const;

    bool WaitForText(const std::string& text) const;

  private:
    // Returns whether tmux succeeded.
    bool Run(const std::vector<std::string>& command) const;

    std::string mSocket;
    ChildProcess mTerminal;
};

}  // namespace hbbtv::test
