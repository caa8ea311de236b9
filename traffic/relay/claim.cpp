#include "traffic/relay/claim.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "common/failure.h"
#include "common/text/json.h"
#include "common/text/printable.h"
#include "traffic/relay/place.h"
#include "wire/connection.h"

namespace hbbtv::traffic {

namespace {

constexpr char kFile[] = "hbbtvctl-relay.json";
constexpr size_t kLongestFile = 1u << 20;
constexpr Milliseconds kPatience{2000};

std::string PathOfFile(const std::string& directory) {
    return directory + "/" + kFile;
}

// Returns whether the descriptor is still that of the file at the path.
bool IsAt(int fd, const std::string& path) {
    struct stat open {
    }, named{};
    return fstat(fd, &open) == 0 && lstat(path.c_str(), &named) == 0 && open.st_ino == named.st_ino &&
           open.st_dev == named.st_dev;
}

// In a directory that others may write, they must not decide which sockets are restored. A file that is not of this
// user, nor of root, is not a relay's.
bool IsTrusted(int fd) {
    struct stat status {};
    return fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && (status.st_uid == geteuid() || status.st_uid == 0);
}

bool IsEmpty(int fd) {
    struct stat status {};
    return fstat(fd, &status) == 0 && status.st_size == 0;
}

std::string Read(int fd) {
    std::string text;
    char bytes[4096];
    ssize_t count;
    while (text.size() < kLongestFile &&
           (count = pread(fd, bytes, sizeof(bytes), static_cast<off_t>(text.size()))) > 0) {
        text.append(bytes, static_cast<size_t>(count));
    }
    return text;
}

// A file that is cut says nothing, but files that were moved show that by their names.
Json::Value Content(int fd) {
    try {
        Json::Value content = ParseJson(Read(fd));
        if (content.isObject()) return content;
    } catch (const BadJson&) {
    }
    return Json::Value(Json::objectValue);
}

// Returns "hbbtvctl monitor (4711)".
std::string HolderIn(const Json::Value& content) {
    const Json::Value& program = content["program"];
    const Json::Value& process = content["process"];
    return (program.isString() ? Printable(program.asString()) : "a relay") +
           (process.isInt() ? " (" + std::to_string(process.asInt()) + ")" : "");
}

std::set<std::string> MovedIn(const std::string& directory) {
    std::set<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        const std::string name = entry.path().filename().string();
        const std::string base = entry.path().stem().string();
        if (IsRelayable(base) && name == BehindRelay(base)) names.insert(base);
    }
    return names;
}

// Restores the sockets of a relay that does not run. The caller holds the lock of its file.
std::vector<std::string> RestoreAll(const std::string& directory, const Json::Value& content) {
    std::vector<std::string> restored;
    for (const std::string& name : MovedIn(directory)) {
        if (Restore(directory + "/" + name, true)) restored.push_back(name);
    }
    const Json::Value& moved = content["moved"];
    if (!moved.isBool() || moved.asBool() || !content["sockets"].isArray()) return restored;
    for (const Json::Value& name : content["sockets"]) {
        if (!name.isString() || !IsRelayable(name.asString())) continue;
        if (Restore(directory + "/" + name.asString(), false)) restored.push_back(name.asString());
    }
    return restored;
}

int OpenLocked(const std::string& directory, const std::string& path) {
    while (true) {
        Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644));
        if (file.Get() < 0) {
            throw Failure(kUsage, "cannot use the directory " + directory + ": " + path + ": " + std::strerror(errno));
        }
        if (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
            throw Failure(kUnavailable, HolderIn(Content(file.Get())) + " already passes on the sockets in " +
                                            directory + ": only one can");
        }
        if (!IsAt(file.Get(), path)) continue;
        if (IsTrusted(file.Get())) return file.Release();
        throw Failure(kUsage, path + " belongs to another user: remove it, or use another directory");
    }
}

}  // namespace

std::string Claim::ControlPath(const std::string& directory) {
    return directory + "/hbbtvctl-relay";
}

Claim::Claim(const std::string& directory, const std::string& program, bool moved)
    : mDirectory(directory),
      mProgram(program),
      mMoved(moved),
      mPath(PathOfFile(directory)),
      mFile(OpenLocked(directory, mPath)) {
    if (!IsEmpty(mFile.Get())) mRestored = RestoreAll(directory, Content(mFile.Get()));
    Write();
}

Claim::~Claim() {
    unlink(mPath.c_str());
}

void Claim::Add(const std::string& socket) {
    if (!mMoved && mSockets.insert(socket).second) Write();
}

void Claim::Remove(const std::string& socket) {
    if (mSockets.erase(socket) != 0) Write();
}

// A kill between the two steps leaves an old end, which is not JSON: the names of moved files are still there.
void Claim::Write() const {
    Json::Value content(Json::objectValue);
    content["program"] = mProgram;
    content["process"] = getpid();
    content["moved"] = mMoved;
    content["sockets"] = Json::Value(Json::arrayValue);
    for (const std::string& socket : mSockets) content["sockets"].append(socket);
    const std::string text = WriteJson(content) + "\n";
    (void)!pwrite(mFile.Get(), text.data(), text.size(), 0);
    (void)!ftruncate(mFile.Get(), static_cast<off_t>(text.size()));
}

RelayFound LookForRelay(const std::string& directory) {
    RelayFound found;
    const std::string path = PathOfFile(directory);
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (file.Get() < 0) return found;
    const Json::Value content = Content(file.Get());
    if (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
        found.process = content["process"].isInt() ? content["process"].asInt() : -1;
        found.name = HolderIn(content);
        return found;
    }
    if (!IsAt(file.Get(), path)) return found;  // it has just ended
    found.name = HolderIn(content);
    if (!IsTrusted(file.Get())) {
        found.problem = path + " belongs to another user: remove it";
        return found;
    }
    found.restored = RestoreAll(directory, content);
    unlink(Claim::ControlPath(directory).c_str());
    if (unlink(path.c_str()) != 0) found.problem = "cannot remove " + path + ": " + std::strerror(errno);
    return found;
}

std::optional<Json::Value> AskRelay(const std::string& directory) {
    try {
        WireConnection connection(Claim::ControlPath(directory));
        Json::Value answer = ParseJson(connection.ReceiveAll(kPatience));
        if (answer.isObject()) return answer;
    } catch (const std::runtime_error&) {
        // It has ended, or hangs.
    }
    return std::nullopt;
}

}  // namespace hbbtv::traffic
