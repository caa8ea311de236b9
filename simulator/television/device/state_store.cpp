#include "television/device/state_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "common/text/json.h"
#include "core/error.h"
#include "core/journal.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kLargestDocument = 64u << 20;

std::string FileOf(const std::string& name) {
    return name + ".json";
}

bool WriteAll(int fd, const std::string& text) {
    for (size_t done = 0; done < text.size();) {
        const ssize_t count = write(fd, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) done += static_cast<size_t>(count);
    }
    return true;
}

}  // namespace

std::string TextIn(const Json::Value& object, const char* member) {
    if (!object.isObject() || !object[member].isString()) {
        throw Refused(std::string("no string \"") + member + "\"");
    }
    return object[member].asString();
}

const Json::Value& ListIn(const Json::Value& object, const char* member) {
    if (!object.isObject() || !object[member].isArray()) {
        throw Refused(std::string("no list \"") + member + "\"");
    }
    return object[member];
}

std::string StateStore::About(const std::string& file, const std::string& what) const {
    return "the state in " + Path(file) + " " + what;
}

void StateStore::Fail(const std::string& file, const std::string& what) const {
    throw Fatal(kCannotKeep, About(file, what));
}

StateStore::StateStore(const std::string& directory) : mDirectory(directory) {
    if (directory.empty()) return;
    const auto fail = [&](const std::string& reason) {
        throw Fatal(kCannotKeep, "the state directory " + directory + " cannot be used: " + reason);
    };
    if (mkdir(directory.c_str(), 0777) != 0 && errno != EEXIST) fail(std::strerror(errno));
    mOpen = std::make_unique<Descriptor>(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (mOpen->Get() < 0) fail(std::strerror(errno));
    if (flock(mOpen->Get(), LOCK_EX | LOCK_NB) != 0) {
        fail(errno == EWOULDBLOCK ? "another simulator uses it" : std::strerror(errno));
    }
    if (faccessat(mOpen->Get(), ".", R_OK | W_OK | X_OK, AT_EACCESS) != 0) fail(std::strerror(errno));
}

// Returns false if there is no such file. A document that is too large is returned with a size above kLargestDocument.
bool StateStore::Read(const std::string& file, std::string& text) const {
    const Descriptor in(openat(mOpen->Get(), file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (in.Get() < 0 && errno == ENOENT) return false;
    if (in.Get() < 0) Fail(file, std::string("cannot be read: ") + std::strerror(errno));
    struct stat status {};
    if (fstat(in.Get(), &status) != 0 || !S_ISREG(status.st_mode))
        Fail(file, "cannot be read: it is not a regular file");
    char chunk[65536];
    while (text.size() <= kLargestDocument) {
        const ssize_t count = read(in.Get(), chunk, sizeof(chunk));
        if (count == 0) break;
        if (count < 0 && errno != EINTR) Fail(file, std::string("cannot be read: ") + std::strerror(errno));
        if (count > 0) text.append(chunk, static_cast<size_t>(count));
    }
    return true;
}

void StateStore::Load(const std::string& name, const std::function<void(const Json::Value&)>& take) const {
    if (!mOpen) return;
    const std::string file = FileOf(name);
    std::string text;
    if (!Read(file, text)) return;
    if (text.size() > kLargestDocument) return SetAside(file, "larger than 64 MiB");
    try {
        take(ParseJson(text));
    } catch (const std::exception& e) {
        SetAside(file, e.what());
    }
}

// link() fails for an existing name, so no earlier file is lost.
void StateStore::SetAside(const std::string& file, const std::string& reason) const {
    const int directory = mOpen->Get();
    for (int number = 1;; ++number) {
        const std::string aside = file + ".damaged-" + std::to_string(number);
        if (linkat(directory, file.c_str(), directory, aside.c_str(), 0) == 0) {
            if (unlinkat(directory, file.c_str(), 0) != 0) break;
            Journal::Log("the state in " + Path(file) + " is damaged (" + reason + "); it is now " + aside);
            return;
        }
        if (errno != EEXIST) break;
    }
    Fail(file, "is damaged (" + reason + ") and cannot be set aside: " + std::strerror(errno));
}

void StateStore::Save(const std::string& name, const Json::Value& document) const {
    if (!mOpen) return;
    const std::string file = FileOf(name);
    const std::string fresh = file + ".new";  // a file left by an earlier run is incomplete
    const std::string text = document.toStyledString();
    if (text.size() > kLargestDocument) throw Refused(About(file, "would be larger than 64 MiB"));
    const int directory = mOpen->Get();
    bool good = false;
    {
        const Descriptor out(
            openat(directory, fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0666));
        good = out.Get() >= 0 && WriteAll(out.Get(), text) && fsync(out.Get()) == 0;
    }
    if (good && renameat(directory, fresh.c_str(), directory, file.c_str()) == 0) {
        fsync(directory);  // the new document has its name either way; this makes the name durable
        return;
    }
    const std::string reason = std::strerror(errno);
    unlinkat(directory, fresh.c_str(), 0);
    throw Refused(About(file, "cannot be written: " + reason));
}

}  // namespace hbbtv::sim
