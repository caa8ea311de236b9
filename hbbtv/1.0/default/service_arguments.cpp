#include "service_arguments.h"

#include <android/log.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "service_report.h"

namespace {

constexpr int kDirectoryUnusable = 1;
constexpr int kUsage = 2;

constexpr char kHelp[] =
    "Serves the interfaces of vantorel.hardware.hbbtv@1.0 and forwards their calls to the platform, over the\n"
    "sockets in DIRECTORY (default: $TMPDIR; if it is not set, /dev/socket/hbbtv on a television, /tmp elsewhere).\n"
    "A process that init starts in a domain of its own never sees TMPDIR.\n"
    "Except on a television, one service at a time can use the directory and that of the HIDL names: it locks the\n"
    "file hbbtv-service.lock in both. The file of a service that has ended has no effect.\n"
    "Usage: vantorel.hardware.hbbtv@1.0-service [DIRECTORY]\n"
    "\n"
    "Options:\n"
    "  --help      Print this help and exit\n"
    "  --version   Print the version and exit\n"
    "\n"
    "Environment:\n"
    "  TMPDIR                 Directory of the sockets, unless DIRECTORY is given\n"
    "  TOLM_REPLY_TIMEOUT_MS  Limit of the wait for a reply of the platform, in milliseconds (default: 0, none)\n"
    "  HIDL_HOST_DIR          Directory where interfaces are registered (default: hidl-host in that of the sockets);\n"
    "                         not used on a television\n"
    "\n"
    "Exit codes: 1 an interface cannot be served or the directory cannot be used, 2 wrong arguments,\n"
    "3 another process serves the directory.\n";

// The longest path is that of a client of this name.
constexpr char kLongestSocket[] = "/service_plugin_to_hbbtv_vb_fav_list_collect_port_6";
constexpr size_t kLongestDirectory = sizeof(sockaddr_un::sun_path) - sizeof(kLongestSocket);

// Returns why sockets cannot be created in the directory, or null.
const char* ReasonAgainst(const char* directory) {
    struct stat status = {};
    if (strlen(directory) > kLongestDirectory) return "its path is too long for the sockets";
    if (stat(directory, &status) != 0) return strerror(errno);
    if (!S_ISDIR(status.st_mode)) return strerror(ENOTDIR);
    return access(directory, W_OK | X_OK) == 0 ? nullptr : strerror(errno);
}

int WrongArgument(const char* what, const char* argument) {
    Report(ANDROID_LOG_ERROR, "%s \"%s\"; expected one directory, see --help", what, argument);
    return kUsage;
}

}  // namespace

std::optional<int> TakeArguments(int argc, char** argv) {
    if (argc < 2) return std::nullopt;
    const char* const directory = argv[1];
    if (argc > 2) return WrongArgument("unexpected argument", argv[2]);
    if (strcmp(directory, "--help") == 0) {
        fputs(kHelp, stdout);
        return EXIT_SUCCESS;
    }
    if (strcmp(directory, "--version") == 0) {
        puts("vantorel.hardware.hbbtv@1.0-service " HBBTV_VERSION);
        return EXIT_SUCCESS;
    }
    if (directory[0] == '-') return WrongArgument("unknown option", directory);
    if (const char* const reason = ReasonAgainst(directory)) {
        Report(ANDROID_LOG_ERROR, "cannot use the directory \"%s\" for the sockets: %s; create it for this user",
               directory, reason);
        return kDirectoryUnusable;
    }
    setenv("TMPDIR", directory, 1);
    return std::nullopt;
}
