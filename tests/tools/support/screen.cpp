#include "screen.h"

#include <cstdlib>
#include <string>

#include "finished_run.h"

namespace hbbtv::test {

namespace {

std::string PathWithProgram() {
    const std::string program = HBBTVCTL_PROGRAM;
    return "PATH=" + program.substr(0, program.rfind('/')) + ":" + std::getenv("PATH");
}

// Matches the prompt of each shell, for root and other users.
bool EndsWithAPrompt(const std::string& text) {
    const size_t last = text.find_last_not_of(" \n");
    return last != std::string::npos && std::string("#$%>").find(text[last]) != std::string::npos;
}

}  // namespace

Screen::Screen(const std::string& shell)
    : mSocket(std::string(std::getenv("TMPDIR")) + "/terminal"),
      mTerminal({"tmux", "-u", "-D", "-f", "/dev/null", "-S", mSocket},
                {PathWithProgram(), std::string("HOME=") + std::getenv("TMPDIR"), "LC_ALL=C.UTF-8", "TERM=xterm"}) {
    // The socket file exists before tmux listens on it.
    WaitFor([&] { return Run({"new-session", "-d", "-x", "100", "-y", "40", shell}); });
    // A line typed before the prompt may lose its end, because the shell changes the mode of the terminal.
    WaitFor([&] { return EndsWithAPrompt(Text()); });
}

bool Screen::Run(const std::vector<std::string>& command) const {
    // -N: do not start another server, which would outlive the test.
    std::vector<std::string> words{"tmux", "-N", "-S", mSocket};
    words.insert(words.end(), command.begin(), command.end());
    // A new session gets the PATH of the process that creates it.
    return RunToEnd(words, std::nullopt, {PathWithProgram()}).exit == 0;
}

void Screen::Type(const std::string& text) const {
    Run({"send-keys", "-l", text});
}

void Screen::Press(const std::string& key) const {
    Run({"send-keys", key});
}

std::string Screen::Text() const {
    return RunToEnd({"tmux", "-S", mSocket, "capture-pane", "-p"}).output;
}

bool Screen::WaitForText(const std::string& text) const {
    return WaitFor([&] { return Text().find(text) != std::string::npos; });
}

}  // namespace hbbtv::test
