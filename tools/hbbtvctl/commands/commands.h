// The commands of hbbtvctl. Each adds itself to the command line, with its options, and says what to run when it is the
// one that was asked for.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace hbbtv::ctl {

struct Invocation {
    std::string directory;     // of the sockets
    std::function<int()> run;  // set by the command that was asked for; gives the exit code
};

void AddList(CLI::App& app, Invocation& invocation);
void AddDescribe(CLI::App& app, Invocation& invocation);
void AddCall(CLI::App& app, Invocation& invocation);
void AddListen(CLI::App& app, Invocation& invocation);
void AddSend(CLI::App& app, Invocation& invocation);
void AddEmit(CLI::App& app, Invocation& invocation);
void AddPlay(CLI::App& app, Invocation& invocation);
void AddBench(CLI::App& app, Invocation& invocation);
void AddDoctor(CLI::App& app, Invocation& invocation);
void AddCompletion(CLI::App& app, Invocation& invocation);
void AddMan(CLI::App& app, Invocation& invocation);

// What the completion scripts ask as `hbbtvctl complete -- WORD...`: prints the candidates for the last of the words,
// each with a tab and a hint. Gives the exit code.
int Complete(const CLI::App& app, const std::vector<std::string>& words);

}  // namespace hbbtv::ctl
