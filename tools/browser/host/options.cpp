#include "options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "chromium/keys.h"
#include "common/failure.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "files.h"

namespace hbbtv::browser {

namespace {

const char* const kFooter =
    "Without PAGE, applications are those that the platform starts.\n\n"
    "Exit codes:\n"
    "  0  success, or ended by Ctrl-C\n"
    "  2  invalid command line, or a file cannot be written\n"
    "  3  no service, another browser is registered, chromium is not installed, or the page cannot be loaded\n"
    "  4  the page has not loaded, or the condition of --until has not come true, in time\n"
    "  6  the service or Chromium ended\n\n"
    "Environment:\n"
    "  TMPDIR         directory of the sockets, and of Chromium's files while it runs (default: /tmp)\n"
    "  HIDL_HOST_DIR  directory where interfaces are registered (default: hidl-host in that directory)\n\n"
    "Examples:\n"
    "  hbbtv-browser http://hbbtv.example/ --keys RED,DOWN,OK --screenshot page.png\n"
    "  hbbtv-browser --serve pages index.html --console";

constexpr int kLargest = 8192;

std::string ReadSize(const std::string& word, ScreenSize& size) {
    char rest = 0;
    const bool read = std::sscanf(word.c_str(), "%dx%d%c", &size.width, &size.height, &rest) == 2;
    if (read && size.width > 0 && size.height > 0 && size.width <= kLargest && size.height <= kLargest) return "";
    return "\"" + word + "\" is not a size, for example 1280x720";
}

// "http://hbbtv.example/=DIR", or "DIR".
std::string ReadServed(const std::string& word, Options& options) {
    const size_t equals = word.find("://") == std::string::npos ? std::string::npos : word.rfind('=');
    const std::string directory = equals == std::string::npos ? word : word.substr(equals + 1);
    std::string url = equals == std::string::npos ? kFilesOrigin : word.substr(0, equals);
    if (url.back() != '/') url += '/';
    if (!std::filesystem::is_directory(directory)) return Quoted(directory) + " is not a directory";
    options.serve.emplace_back(url, directory);
    return "";
}

std::string ReadTime(const std::string& word, Milliseconds& time) {
    const std::string problem = CheckDuration(word);
    if (problem.empty()) time = *ParseDuration(word);
    return problem;
}

std::string CheckKey(const std::string& name) {
    try {
        KeyCode(name);
        return "";
    } catch (const Failure& e) {
        return e.what();
    }
}

void AddOptions(CLI::App& app, Options& options) {
    app.add_option("PAGE", options.page, "URL of a page, or a file")->type_name("PAGE");
    app.add_option_function<std::vector<std::string>>(
           "--serve", [](const std::vector<std::string>&) {},
           "Give the files of this directory an origin, so that PAGE can be a path in it, or the URLs that begin with "
           "URL")
        ->type_name("[URL=]DIR")
        ->expected(1)
        ->allow_extra_args(false)
        ->take_all()
        ->check([&options](const std::string& word) { return ReadServed(word, options); });
    app.add_option("--keys", options.keys, "Press these keys, one after the other, when the page has loaded")
        ->type_name("NAME,...")
        ->delimiter(',')
        ->check(CheckKey);
    app.add_option("--screenshot", options.screenshot,
                   "Then write a picture of the screen (PNG), and exit; without PAGE, at each SIGUSR1")
        ->type_name("FILE");
    app.add_flag("--headless", options.headless, "Open no window, although there is a display");
    app.add_option("--picture", options.picture, "Play the video that has the name of the channel in this directory")
        ->type_name("DIR")
        ->check(CLI::ExistingDirectory);
    app.add_option("--remote", options.remote,
                   "Run this program, with the name of the key, for each key that is pressed in the window")
        ->type_name("PROGRAM");
    app.add_option("--until", options.until, "Wait until this JavaScript expression is true, before keys and picture")
        ->type_name("EXPRESSION");
    app.add_option("--print", options.print, "Print the value of this JavaScript expression as JSON, and exit")
        ->type_name("EXPRESSION");
    app.add_flag("--console", options.console, "Print the consoles of pages, and their errors, with positions");
    app.add_flag("--alone", options.alone, "Open PAGE without an application: the platform neither starts nor ends it");
    app.add_option("--user-agent", options.userAgent, "User agent (default: one with HbbTV/1.5.1)")->type_name("TEXT");
    app.add_option_function<std::string>(
           "--size", [](const std::string&) {}, "Size of the screen (default: 1280x720)")
        ->type_name("WIDTHxHEIGHT")
        ->check([&options](const std::string& word) { return ReadSize(word, options.size); });
    app.add_option("--profile", options.profile, "Keep cookies and storage in this directory (default: discarded)")
        ->type_name("DIR");
    app.add_option_function<std::string>(
           "--timeout", [](const std::string&) {}, "Maximum time for the page and for --until (default: 30s)")
        ->type_name("TIME")
        ->check([&options](const std::string& word) { return ReadTime(word, options.limit); });
    app.add_option_function<std::string>(
           "--call-timeout", [](const std::string&) {}, "Maximum time that a page waits for a call (default: 5s)")
        ->type_name("TIME")
        ->check([&options](const std::string& word) { return ReadTime(word, options.callLimit); });
}

}  // namespace

bool Options::EndsByItself() const {
    return !page.empty() && (!screenshot.empty() || !keys.empty() || !until.empty() || !print.empty());
}

bool Options::HasWindow() const {
    const bool display = std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
    return display && !headless && !EndsByItself();
}

std::optional<Options> ReadOptions(int argc, char** argv, int& exitCode) {
    CLI::App app("Run HbbTV applications in Chromium, as a client of the HbbTV service library.");
    app.name("hbbtv-browser");
    app.set_version_flag("--version", "hbbtv-browser " HBBTV_VERSION, "Show the version and exit");
    app.footer(kFooter);
    Options options;
    AddOptions(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        exitCode = app.exit(e);
        return std::nullopt;
    } catch (const CLI::CallForVersion& e) {
        exitCode = app.exit(e);
        return std::nullopt;
    } catch (const CLI::ParseError& e) {
        std::fprintf(stderr, "hbbtv-browser: %s\nSee `hbbtv-browser --help`.\n",
                     Printable(e.what(), LineBreaks::Kept).c_str());
        exitCode = kUsage;
        return std::nullopt;
    }
    const bool served = !options.serve.empty() && options.serve[0].first == kFilesOrigin;
    if (options.page.empty() && served) options.page = "/";
    if (options.page.empty() && !(options.keys.empty() && options.until.empty() && options.print.empty())) {
        std::fprintf(stderr, "hbbtv-browser: --keys, --until and --print require a PAGE\n");
        exitCode = kUsage;
        return std::nullopt;
    }
    return options;
}

}  // namespace hbbtv::browser
