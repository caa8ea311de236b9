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
  hbbtv-sim --trace                                 sockets in $TMPDIR or /tmp, every message on the screen
  hbbtv-sim --directory /tmp/tv --line-up my.json   a line-up of your own
  hbbtv-sim --line-up playlist.m3u                  the streams of a playlist
  hbbtv-sim --line-up /mnt/receiver/etc/enigma2     the services and bouquets of a receiver
  hbbtv-sim --programmes guide.xml                  what is on, from an XMLTV file
  hbbtv-sim --tune-time 0ms --seed 7                fast, with the same handles and programmes every time
  hbbtv-sim --fault stop-answering:video_broadcast  a platform that hangs
  hbbtv-sim --carousel ~/app                        a directory as the services' object carousel
  hbbtv-sim --stream-events quiz.json               stream events at their times
  hbbtv-sim --state ~/.tv                           favourite lists and preferences outlast the simulator
  hbbtv-sim --tell "zap next"                       to the simulator that runs: the viewer zaps
  hbbtv-sim --tell help                             what else it can be told

Exit codes: 0 ended by SIGINT or SIGTERM (or told), 1 --tell was refused or nobody is there, 2 wrong options,
3 the line-up, the programmes, the carousel or the stream events were refused, 4 the sockets cannot be served,
5 the state directory cannot be used.)";

std::string CheckState(const std::string& text) {
    return text.empty() ? "the state directory has no name" : "";
}

std::string CheckName(const std::string& text) {
    return text.empty() ? "the name is empty" : "";
}

std::string CheckFault(const std::string& text) {
    const bool good = text.rfind("stop-answering:", 0) == 0;
    return good ? "" : "\"" + text + "\" is no fault: there is stop-answering:FAMILY";
}

std::string DefaultDirectory() {
    const char* directory = std::getenv("TMPDIR");
    return directory != nullptr ? directory : "/tmp";
}

}  // namespace

std::optional<Options> ReadCommandLine(int argc, char** argv, int& exitCode) {
    Options options;
    options.directory = DefaultDirectory();
    std::string tuneTime = "300ms";
    std::string streamEventInterval = "2s";
    std::string pingInterval = "5s";
    std::string permanentError = "channel-error";
    uint32_t seed = 0;
    std::string tell;
    CLI::App app(
        "The TV platform's side of the HbbTV service library, simulated: it serves the platform's sockets,\n"
        "answers every request and sends the events.");
    app.name("hbbtv-sim");
    app.footer(kExamples);
    app.set_version_flag("--version", "hbbtv-sim " HBBTV_VERSION);
    app.add_option("--line-up", options.lineUp, "The services that are received (JSON, M3U or enigma2 lamedb)")
        ->type_name("FILE");
    app.add_option("--programmes", options.programmes, "Their programmes (XMLTV); made up without it")
        ->type_name("FILE");
    app.add_option("--carousel", options.settings.carousel, "The files of the services' object carousel")
        ->type_name("DIR")
        ->check(CheckName);
    app.add_option("--directory", options.directory, "Where the sockets are")->type_name("DIR")->capture_default_str();
    app.add_option("--state", options.settings.stateDirectory, "What outlasts the simulator, made when it is missing")
        ->type_name("DIR")
        ->check(CheckState);
    app.add_option("--tune-time", tuneTime, "From a change of channel to its picture")
        ->type_name("TIME")
        ->check(CheckDuration)
        ->capture_default_str();
    app.add_option("--stream-event-interval", streamEventInterval, "Between two stream events, 0 for none")
        ->type_name("TIME")
        ->check(CheckDuration)
        ->capture_default_str();
    app.add_option("--stream-events", options.settings.streamEvents, "Which stream events come when (JSON)")
        ->type_name("FILE")
        ->check(CheckName);
    app.add_option("--ping-interval", pingInterval, "Between two questions whether the browser is there, 0 for none")
        ->type_name("TIME")
        ->check(CheckDuration)
        ->capture_default_str();
    app.add_option("--permanent-error", permanentError, "Event in front of PlayState when tuning fails for good")
        ->type_name("EVENT")
        ->check(CLI::IsMember({"channel-error", "channel-changed"}).description("channel-error|channel-changed"))
        ->capture_default_str();
    CLI::Option* seedOption =
        app.add_option("--seed", seed, "The same handles and programmes for the same number")->type_name("NUMBER");
    app.add_flag("--trace", options.trace, "One line per request with its reply, and per event");
    app.add_option("--fault", options.faults, "Something that does not work: stop-answering:FAMILY")
        ->type_name("FAULT")
        ->check(CheckFault);
    CLI::Option* tellOption =
        app.add_option("--tell", tell, "Send a command to the simulator that runs in DIR, and end")
            ->type_name("COMMAND");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        exitCode = app.exit(e) == 0 ? kEnded : kUsage;
        return std::nullopt;
    }
    options.settings.tuneTime = *ParseDuration(tuneTime);
    options.settings.streamEventInterval = *ParseDuration(streamEventInterval);
    options.settings.pingInterval = *ParseDuration(pingInterval);
    const bool changed = permanentError == "channel-changed";
    options.settings.permanentErrorEvent =
        changed ? PermanentErrorEvent::ChannelChanged : PermanentErrorEvent::ChannelError;
    if (seedOption->count() > 0) options.settings.seed = seed;
    if (tellOption->count() > 0) options.tell = tell;
    for (std::string& fault : options.faults) fault[fault.find(':')] = ' ';
    return options;
}

}  // namespace hbbtv::sim
