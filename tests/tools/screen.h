// A terminal with a shell in it: keys go in, and what the screen shows comes out. tmux plays the terminal.
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
    void Press(const std::string& key) const;  // as tmux names it: "Tab", "Enter", "C-u"

    // All lines, without the blanks behind them.
    std::string Text() const;

    bool WaitForText(const std::string& text) const;

  private:
    // Whether tmux did it.
    bool Tell(const std::vector<std::string>& command) const;

    std::string mSocket;
    ChildProcess mTerminal;
};

}  // namespace hbbtv::test
