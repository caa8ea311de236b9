// The commands of hbbtvctl. Each function adds a command with its options to the command line; if the command is used,
// it sets what to run.
#pragma once

#include "cli/invocation.h"

namespace CLI {
class App;
}  // namespace CLI

namespace hbbtv::ctl {

void AddList(CLI::App& app, Invocation& invocation);
void AddDescribe(CLI::App& app, Invocation& invocation);
void AddCall(CLI::App& app, Invocation& invocation);
void AddListen(CLI::App& app, Invocation& invocation);
void AddSend(CLI::App& app, Invocation& invocation);
void AddEmit(CLI::App& app, Invocation& invocation);
void AddPlay(CLI::App& app, Invocation& invocation);
void AddBench(CLI::App& app, Invocation& invocation);
void AddMonitor(CLI::App& app, Invocation& invocation);
void AddWeb(CLI::App& app, Invocation& invocation);
void AddStatus(CLI::App& app, Invocation& invocation);
void AddLog(CLI::App& app, Invocation& invocation);
void AddCheck(CLI::App& app, Invocation& invocation);
void AddDoctor(CLI::App& app, Invocation& invocation);
void AddRecord(CLI::App& app, Invocation& invocation);
void AddShow(CLI::App& app, Invocation& invocation);
void AddReplay(CLI::App& app, Invocation& invocation);

}  // namespace hbbtv::ctl
