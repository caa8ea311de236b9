// hbbtv-sim: options, line-up, sockets, then the loop until a signal arrives.
#include <csignal>
#include <cstdio>

#include "command_line.h"
#include "common/text/printable.h"
#include "core/error.h"
#include "core/journal.h"
#include "simulator.h"
#include "television/programmes/xmltv/xmltv.h"

namespace hbbtv::sim {

namespace {

int TellOther(const Options& options) {
    const std::string answer = Tell(options.directory + "/" + kControlSocket, *options.tell);
    std::printf("%s\n", OneLine(answer).c_str());
    return answer.rfind("ok", 0) == 0 ? kEnded : kTellFailed;
}

int Serve(const Options& options) {
    const LineUp lineUp = options.lineUp.empty() ? DefaultLineUp() : ReadLineUp(options.lineUp, Journal::Log);
    std::unique_ptr<Guide> guide;
    if (!options.programmes.empty()) guide = ReadXmltv(options.programmes, lineUp, Journal::Log);
    const Journal journal(options.trace);
    EventLoop loop;
    loop.StopOnSignals({SIGINT, SIGTERM});
    Simulator simulator(loop, journal, lineUp, options.settings, options.directory, std::move(guide));
    for (const std::string& fault : options.faults) {
        const std::string answer = simulator.Execute(fault);
        if (answer == "ok") continue;
        Journal::Log("--fault: " + answer);
        return kUsage;
    }
    std::printf("%sready\n", simulator.Summary().c_str());
    loop.Run();
    return kEnded;
}

int Main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    try {
        int exitCode = kEnded;
        const auto options = ReadCommandLine(argc, argv, exitCode);
        if (!options) return exitCode;
        return options->tell ? TellOther(*options) : Serve(*options);
    } catch (const Fatal& e) {
        const char* failed = e.Code() == kFileRefused ? "cannot read " : "";
        std::fprintf(stderr, "hbbtv-sim: %s%s\n", failed, Printable(e.what(), LineBreaks::Kept).c_str());
        return e.Code();
    }
}

}  // namespace

}  // namespace hbbtv::sim

int main(int argc, char** argv) {
    return hbbtv::sim::Main(argc, argv);
}
