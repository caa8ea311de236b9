#include "traffic/relay/existing.h"

#include <dirent.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "common/local_socket.h"

// Of Linux 5.6, the same number on every processor.
#ifndef SYS_pidfd_open
#define SYS_pidfd_open 434
#endif
#ifndef SYS_pidfd_getfd
#define SYS_pidfd_getfd 438
#endif

namespace hbbtv::traffic {

namespace {

namespace fs = std::filesystem;

constexpr char kConnected[] = "03";

struct Line {
    unsigned long inode = 0;
    fs::path path;
};

// Returns the connected sockets with a path, of the network namespace.
std::vector<Line> ConnectedSockets() {
    std::vector<Line> lines;
    std::ifstream file("/proc/net/unix");
    std::string text;
    std::getline(file, text);  // the titles
    while (std::getline(file, text)) {
        std::istringstream words(text);
        std::string number, references, protocol, flags, type, state, path;
        Line line;
        words >> number >> references >> protocol >> flags >> type >> state >> line.inode;
        std::getline(words >> std::ws, path);
        if (state != kConnected || path.empty()) continue;
        line.path = path;
        lines.push_back(line);
    }
    return lines;
}

struct Holder {
    pid_t process;
    int descriptor;
};

void FindIn(const fs::path& process, const std::map<std::string, unsigned long>& links,
            std::map<unsigned long, Holder>& found) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(process / "fd", error)) {
        const auto link = links.find(fs::read_symlink(entry.path(), error).string());
        if (link == links.end()) continue;
        found[link->second] = {std::atoi(process.filename().c_str()), std::atoi(entry.path().filename().c_str())};
    }
}

// Returns the processes that have these sockets, as far as this user may see that.
std::map<unsigned long, Holder> HoldersOf(const std::vector<ExistingConnection>& connections) {
    std::map<std::string, unsigned long> links;
    for (const auto& connection : connections) {
        links["socket:[" + std::to_string(connection.inode) + "]"] = connection.inode;
    }
    std::map<unsigned long, Holder> found;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator("/proc", error)) {
        if (std::atoi(entry.path().filename().c_str()) > 0) FindIn(entry.path(), links, found);
    }
    return found;
}

// Removes those without a holder that have ended since they were listed: no process is to be blamed for them.
void RemoveEnded(std::vector<ExistingConnection>& connections) {
    std::set<unsigned long> present;
    for (const Line& line : ConnectedSockets()) present.insert(line.inode);
    const auto ended = [&present](const ExistingConnection& connection) {
        return connection.process == 0 && present.count(connection.inode) == 0;
    };
    connections.erase(std::remove_if(connections.begin(), connections.end(), ended), connections.end());
}

}  // namespace

std::vector<ExistingConnection> ExistingConnections(const std::string& directory, const std::set<std::string>& names) {
    std::vector<ExistingConnection> connections;
    std::error_code error;
    const fs::path wanted = fs::canonical(directory, error);
    for (const Line& line : ConnectedSockets()) {
        const std::string name = line.path.filename().string();
        if (names.count(name) == 0 || fs::canonical(line.path.parent_path(), error) != wanted) continue;
        connections.push_back({name, line.inode, 0, -1});
    }
    if (connections.empty()) return connections;
    const auto holders = HoldersOf(connections);
    for (ExistingConnection& connection : connections) {
        const auto holder = holders.find(connection.inode);
        if (holder == holders.end()) continue;
        connection.process = holder->second.process;
        connection.descriptor = holder->second.descriptor;
    }
    RemoveEnded(connections);
    return connections;
}

std::string Break(const ExistingConnection& connection) {
    if (connection.process == 0) return "this user may not look into the process that has it";
    const Descriptor process(static_cast<int>(syscall(SYS_pidfd_open, connection.process, 0)));
    if (process.Get() < 0) return std::strerror(errno);
    const Descriptor socket(static_cast<int>(syscall(SYS_pidfd_getfd, process.Get(), connection.descriptor, 0)));
    if (socket.Get() < 0) return std::strerror(errno);
    return shutdown(socket.Get(), SHUT_RDWR) == 0 ? "" : std::strerror(errno);
}

}  // namespace hbbtv::traffic
