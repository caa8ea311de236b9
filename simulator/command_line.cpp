#include "command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdlib>

#include "common/duration.h"
#include "core/error.h"

namespace hbbtv::sim {

namespace {

const char* const kExamples = R"(Examples:
  hbbtv-sim --trace                                 sockets in $TMPDIR or /tmp, every message on the terminal
  hbbtv-sim --directory /tmp/tv --line-up my.json   a line-up of your own
  hbbtv-sim --line-up playlist.m3u                  the streams of a playlist
  hbbtv-sim --line-up /mnt/receiver/etc/enigma2     the services and bouquets of a receiver
  hbbtv-sim --programmes guide.xml                  programmes from an XMLTV file
  hbbtv-sim --tune-time 0ms --seed 7                fast, with the same handles and programmes every time
  hbbtv-sim --fault stop-answering:video_broadcast  a platform that hangs
  hbbtv-sim --carousel ~/app                        a directory as the services' object carousel
  hbbtv-sim --stream-events quiz.json               stream events at their times
  hbbtv-sim --state ~/.tv                           favourite lists and preferences outlast the simulator
  hbbtv-sim --tell "zap next"                       change the channel of the running simulator
  hbbtv-sim --tell help                             list the commands of the running simulator

Exit codes: 0 ended by SIGINT or SIGTERM (or command done), 1 --tell was refused or no simulator answers,
2 wrong options, 3 a file (line-up, programmes, carousel, stream events) cannot be used, 4 a socket cannot be served,
5 the state directory cannot be used.)";

std::string CheckState(const std::string& text) {
    return text.empty() ? "the state directory is empty" : "";
}

std::string CheckName(const std::string& text) {
    return text.empty() ? "the name is empty" : "";
}

std::string CheckFault(const std::string& text) {
    const bool good = text.rfind("stop-answering:", 0) == 0;
    return good ? "" : "\"" + text + "\" is not a fault: the only fault is stop-answering:FAMILY";
}

std::string DefaultDirectory() {
    const char* directory = std::getenv("TMPDIR");
    return directory != nullptr ? directory : "/tmp";
}

// The options as written.
struct Written {
    Options options;
    std::string tuneTime = "300ms";
    std::string streamEventInterval = "2s";
    std::string pingInterval = "5s";
    std::string permanentError = "channel-error";
    uint32_t seed = 0;
    std::string tell;
    CLI::Option* seedOption = nullptr;
    CLI::Option* tellOption = nullptr;
};

void AddFiles(CLI::App& app, Written& written) {
    Options& options = written.options;
    app.add_option("--line-up", options.lineUp,
                   "Services that are received (JSON, M3U or enigma2 lamedb); default: built in")
        ->type_name("FILE");
    app.add_option("--programmes", options.programmes, "Their programmes (XMLTV); default: generated")
        ->type_name("FILE");
    app.add_option("--carousel", options.settings.carousel, "Files of the services' object carousel")
        ->type_name("DIR")
        ->check(CheckName);
    app.add_option("--directory", options.directory, "Directory of the sockets")
        ->type_name("DIR")
        ->capture_default_str();
    app.add_option("--state", options.settings.stateDirectory,
                   "Directory of what outlasts the simulator, created if missing")
        ->type_name("DIR")
        ->check(CheckState);
    app.add_option("--stream-events", options.settings.streamEvents, "Stream events and their times (JSON)")
        ->type_name("FILE")
        ->check(CheckName);
}

void AddTimes(CLI::App& app, Written& written) {
    const auto add = [&](const char* name, std::string& time, const char* purpose) {
        app.add_option(name, time, purpose)->type_name("TIME")->check(CheckDuration)->capture_default_str();
    };
    add("--tune-time", written.tuneTime, "Time from a change of channel to the picture");
    add("--stream-event-interval", written.streamEventInterval, "Interval between stream events, 0 for none");
    add("--ping-interval", written.pingInterval, "Interval between pings of the browser, 0 for none");
}

void AddBehaviour(CLI::App& app, Written& written) {
    Options& options = written.options;
    app.add_option("--permanent-error", written.permanentError, "Event before PlayState when tuning fails permanently")
        ->type_name("EVENT")
        ->check(CLI::IsMember({"channel-error", "channel-changed"}).description("channel-error|channel-changed"))
        ->capture_default_str();
    written.seedOption =
        app.add_option("--seed", written.seed, "Makes handles and programmes reproducible")->type_name("NUMBER");
    app.add_flag("--trace", options.trace, "Print a line for each request with its reply, and for each event");
    app.add_option("--fault", options.faults, "Fault from the start: stop-answering:FAMILY")
        ->type_name("FAULT")
        ->check(CheckFault);
    written.tellOption =
        app.add_option("--tell", written.tell, "Send a command to the simulator that serves DIR, and exit")
            ->type_name("COMMAND");
}

Options Read(const Written& written) {
    Options options = written.options;
    options.settings.tuneTime = *ParseDuration(written.tuneTime);
    options.settings.streamEventInterval = *ParseDuration(written.streamEventInterval);
    options.settings.pingInterval = *ParseDuration(written.pingInterval);
    options.settings.permanentErrorEvent = written.permanentError == "channel-changed"
                                               ? PermanentErrorEvent::ChannelChanged
                                               : PermanentErrorEvent::ChannelError;
    if (written.seedOption->count() > 0) options.settings.seed = written.seed;
    if (written.tellOption->count() > 0) options.tell = written.tell;
    for (std::string& fault : options.faults) fault[fault.find(':')] = ' ';
    return options;
}

}  // namespace

std::optional<Options> ReadCommandLine(int argc, char** argv, int& exitCode) {
    Written written;
    written.options.directory = DefaultDirectory();
    CLI::App app(
        "Simulates the platform's side of the HbbTV service library: serves the platform's sockets, answers every\n"
        "request and sends the events.");
    app.name("hbbtv-sim");
    app.footer(kExamples);
    app.set_version_flag("--version", "hbbtv-sim " HBBTV_VERSION);
    AddFiles(app, written);
    AddTimes(app, written);
    AddBehaviour(app, written);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        exitCode = app.exit(e) == 0 ? kEnded : kUsage;
        return std::nullopt;
    }
    return Read(written);
}

}  // namespace hbbtv::sim
