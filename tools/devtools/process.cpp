#include "devtools/process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <thread>

#include "common/failure.h"
#include "common/text/quote.h"

extern char** environ;

namespace hbbtv::devtools {

namespace {

using Clock = std::chrono::steady_clock;

// Descriptors in the shell: those that Chromium expects, and one for its process id.
constexpr int kCommandsInChild = 3;
constexpr int kAnswersInChild = 4;
constexpr int kPidInChild = 5;
constexpr int kAboveThose = 10;

constexpr Milliseconds kPatience{5000};

const char* const kMessages = "/messages";  // file of its directory, which the shell below opens

// Arguments: the directory to remove, and Chromium's command line. The shell keeps no end of the pipes, so that they
// close when Chromium ends. Processes that end a little later than Chromium may still write files.
const char* const kKeeper =
    "exec 2>/dev/null\n"  // where the shell says that Chromium was killed
    "directory=$1; shift\n"
    "\"$@\" 5>&- </dev/null >/dev/null 2>\"$directory/messages\" &\n"
    "exec 3<&- 4>&-\n"
    "echo $! >&5\n"
    "exec 5>&-\n"
    "wait $!\n"
    "for i in 1 2 3 4 5 6 7 8 9 10; do rm -rf -- \"$directory\" 2>/dev/null && break; sleep 0.1; done\n";

std::string Program() {
    std::stringstream path(std::getenv("PATH") == nullptr ? "/usr/bin" : std::getenv("PATH"));
    for (std::string directory; std::getline(path, directory, ':');) {
        const std::string program = directory + "/chromium";
        if (access(program.c_str(), X_OK) == 0) return program;
    }
    throw Failure(kUnavailable, "chromium is not installed; install the Debian package chromium");
}

std::string MakeDirectory() {
    const char* parent = std::getenv("TMPDIR");
    std::string directory = std::string(parent == nullptr ? "/tmp" : parent) + "/hbbtv-chromium-XXXXXX";
    if (mkdtemp(directory.data()) == nullptr)
        throw Failure(kUnavailable, "cannot create the directory " + Quoted(directory) + ": " + std::strerror(errno));
    return directory;
}

std::vector<std::string> CommandLine(const ChromiumOptions& options, const std::string& directory) {
    std::vector<std::string> line{"/bin/sh", "-c", kKeeper, "keeper", directory, Program()};
    const std::string profile = options.profile.empty() ? directory + "/profile" : options.profile;
    for (const std::string& argument :
         {std::string("--remote-debugging-pipe"), "--user-data-dir=" + profile, std::string("--no-first-run"),
          std::string("--no-default-browser-check"), std::string("--disable-breakpad"),
          std::string("--disable-crash-reporter"), std::string("--disable-background-networking"),
          std::string("--disable-component-update"), std::string("--disable-sync"), std::string("--disable-extensions"),
          std::string("--password-store=basic"), std::string("--mute-audio")}) {
        line.push_back(argument);
    }
    if (!options.window) line.push_back("--headless=new");
    if (geteuid() == 0) line.push_back("--no-sandbox");  // the sandbox refuses to run as root
    line.insert(line.end(), options.arguments.begin(), options.arguments.end());
    return line;
}

// What programs store outside the profile goes into the directory, too.
std::vector<std::string> Environment(const std::string& directory, bool window) {
    std::vector<std::string> variables;
    const char* home = std::getenv("HOME");
    if (home != nullptr && std::getenv("XAUTHORITY") == nullptr)
        variables.push_back(std::string("XAUTHORITY=") + home + "/.Xauthority");
    for (const char* name : {"HOME", "TMPDIR", "XDG_CACHE_HOME", "XDG_CONFIG_HOME"})
        variables.push_back(std::string(name) + "=" + directory);
    if (!window) variables.push_back("DBUS_SESSION_BUS_ADDRESS=disabled:");
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const size_t name = std::strcspn(*entry, "=") + 1;
        bool replaced = false;
        for (const std::string& other : variables) replaced = replaced || other.compare(0, name, *entry, name) == 0;
        if (!replaced) variables.emplace_back(*entry);
    }
    return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

class SpawnOptions {
  public:
    // In a process group of its own, so that Ctrl-C reaches this process only, and with the usual signals.
    SpawnOptions() {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        sigaddset(&signals, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes, &signals);
    }
    ~SpawnOptions() {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }
    SpawnOptions(const SpawnOptions&) = delete;
    SpawnOptions& operator=(const SpawnOptions&) = delete;

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

pid_t ReadPid(int fd) {
    std::string text;
    char c = 0;
    while (read(fd, &c, 1) == 1 && c != '\n') text += c;
    return text.empty() ? -1 : static_cast<pid_t>(std::strtol(text.c_str(), nullptr, 10));
}

void SetNonBlocking(int fd) {
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
}

}  // namespace

std::pair<int, int> ChromiumProcess::Pipe::Open() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw Failure(kUnavailable, std::string("cannot create a pipe for Chromium: ") + std::strerror(errno));
    const Descriptor reader(ends[0]);
    const Descriptor writer(ends[1]);
    // Clear of the numbers that they get in the child.
    return {fcntl(ends[0], F_DUPFD_CLOEXEC, kAboveThose), fcntl(ends[1], F_DUPFD_CLOEXEC, kAboveThose)};
}

ChromiumProcess::ChromiumProcess(const ChromiumOptions& options)
    : mDirectory((Program(), MakeDirectory())),
      mMessages(open((mDirectory + kMessages).c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0600)) {
    Start(options);
    // Chromium has the other ends.
    close(mCommands.reader.Release());
    close(mAnswers.writer.Release());
    SetNonBlocking(mCommands.writer.Get());
    SetNonBlocking(mAnswers.reader.Get());
}

void ChromiumProcess::Start(const ChromiumOptions& options) {
    Pipe pid;
    SpawnOptions spawn;
    posix_spawn_file_actions_adddup2(&spawn.actions, mCommands.reader.Get(), kCommandsInChild);
    posix_spawn_file_actions_adddup2(&spawn.actions, mAnswers.writer.Get(), kAnswersInChild);
    posix_spawn_file_actions_adddup2(&spawn.actions, pid.writer.Get(), kPidInChild);
    std::vector<std::string> line = CommandLine(options, mDirectory);
    std::vector<std::string> variables = Environment(mDirectory, options.window);
    const int error = posix_spawn(&mKeeper, "/bin/sh", &spawn.actions, &spawn.attributes, Pointers(line).data(),
                                  Pointers(variables).data());
    if (error != 0) {
        std::error_code ignored;
        std::filesystem::remove_all(mDirectory, ignored);
        throw Failure(kUnavailable, std::string("cannot start chromium: ") + std::strerror(error));
    }
    close(pid.writer.Release());
    mPid = ReadPid(pid.reader.Get());
}

ChromiumProcess::~ChromiumProcess() {
    if (WaitForEnd(Milliseconds(0))) return;
    if (mPid > 0) kill(mPid, SIGKILL);
    if (!WaitForEnd(kPatience)) kill(-mKeeper, SIGKILL);
}

bool ChromiumProcess::WaitForEnd(Milliseconds limit) {
    constexpr Milliseconds kBetween{5};
    const auto end = Clock::now() + limit;
    while (mKeeper > 0) {
        siginfo_t ended{};
        if (waitid(P_PID, static_cast<id_t>(mKeeper), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid != 0) {
            kill(-mKeeper, SIGKILL);  // processes of Chromium that have not ended yet
            waitpid(mKeeper, nullptr, 0);
            mKeeper = -1;
            return true;
        }
        if (Clock::now() >= end) return false;
        std::this_thread::sleep_for(kBetween);
    }
    return true;
}

std::string ChromiumProcess::Messages(size_t begin) const {
    std::string text;
    char bytes[4096];
    for (ssize_t count;
         (count = pread(mMessages.Get(), bytes, sizeof(bytes), static_cast<off_t>(begin + text.size()))) > 0;)
        text.append(bytes, static_cast<size_t>(count));
    return text;
}

std::string ChromiumProcess::LastMessage() const {
    std::string text = Messages(0);
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text.substr(text.rfind('\n') + 1);
}

}  // namespace hbbtv::devtools
