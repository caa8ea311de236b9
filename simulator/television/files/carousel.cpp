#include "television/files/carousel.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "common/local_socket.h"
#include "core/error.h"
#include "text/json_source.h"
#include "text/lines.h"

namespace hbbtv::sim {

namespace {

const char* const kSideFile = "carousel.json";
constexpr int kLargestId = 0xffff;
constexpr int kLargestTag = 0xff;
constexpr int kLargestVersion = 0xff;
constexpr int kLargestSize = 16 << 20;
constexpr std::chrono::milliseconds kShortestInterval{10};

CarouselPath PathIn(const JsonObject& object, const char* name) {
    try {
        return ReadCarouselPath(object.Text(name));
    } catch (const Refused& e) {
        object.Refuse(name, std::string("is not a path in the carousel: ") + e.what());
    }
}

CarouselFile ReadFile(const JsonObject& object, CarouselFile file) {
    if (object.Has("delay")) file.delay = object.Time("delay");
    if (object.Has("version")) file.version = object.Int("version", 0, kLargestVersion);
    if (object.Has("sizeLimit")) file.largest = static_cast<size_t>(object.Int("sizeLimit", 0, kLargestSize));
    if (object.Has("newVersionEvery")) {
        file.newVersionEvery = object.Time("newVersionEvery");
        if (*file.newVersionEvery < kShortestInterval) object.Refuse("newVersionEvery", "is shorter than 10ms");
    }
    return file;
}

[[noreturn]] void FailBy(int error) {
    if (error == ENOENT || error == ENOTDIR) throw Refused("there is no such file");
    if (error == ELOOP) throw Refused("it is a symbolic link");
    throw Refused(std::strerror(error));
}

// Opens one name below an open directory. O_NOFOLLOW: targets of links are not in the carousel. O_NONBLOCK: a pipe does
// not block.
std::unique_ptr<Descriptor> OpenBelow(const Descriptor& directory, const std::string& name, int flags) {
    auto opened = std::make_unique<Descriptor>(
        openat(directory.Get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | flags));
    if (opened->Get() >= 0) return opened;
    const int error = errno;
    struct stat status {};
    const bool link =
        fstatat(directory.Get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
    FailBy(link ? ELOOP : error);
}

std::string ReadUpTo(const Descriptor& file, size_t largest) {
    std::string bytes;
    char block[65536];
    while (bytes.size() <= largest) {
        const ssize_t count = read(file.Get(), block, sizeof(block));
        if (count == 0) return bytes;
        if (count < 0 && errno != EINTR) FailBy(errno);
        if (count > 0) bytes.append(block, static_cast<size_t>(count));
    }
    throw Refused("it is larger than " + std::to_string(largest) + " bytes");
}

}  // namespace

Carousel::Carousel(std::string directory) : mDirectory(std::move(directory)) {
    struct stat status {};
    if (stat(mDirectory.c_str(), &status) != 0) throw Fatal(kFileRefused, mDirectory + ": " + std::strerror(errno));
    if (!S_ISDIR(status.st_mode)) throw Fatal(kFileRefused, mDirectory + ": is not a directory");
    const std::string file = mDirectory + "/" + kSideFile;
    if (lstat(file.c_str(), &status) == 0) ReadSideFile(file);
}

void Carousel::ReadSideFile(const std::string& file) {
    const std::string text = ReadWhole(file);
    const JsonSource source(text, file);
    const Json::Value root = source.Parse();
    const JsonObject carousel(source, root, "carousel",
                              {"componentTag", "service", "delay", "sizeLimit", "files", "applications"});
    if (carousel.Has("componentTag")) mComponentTag = carousel.Int("componentTag", 0, kLargestTag);
    if (carousel.Has("service")) {
        const JsonObject service(source, root["service"], "service", {"onid", "tsid", "sid"});
        mService = Triplet{service.Int("onid", 0, kLargestId), service.Int("tsid", 0, kLargestId),
                           service.Int("sid", 0, kLargestId)};
    }
    mUsual = ReadFile(carousel, mUsual);
    if (carousel.Has("files")) ReadFiles(source, carousel.List("files"));
    if (carousel.Has("applications")) ReadApplications(source, carousel.List("applications"));
}

void Carousel::ReadFiles(const JsonSource& source, const Json::Value& list) {
    for (const Json::Value& value : list) {
        const JsonObject object(source, value, "file", {"path", "delay", "version", "sizeLimit", "newVersionEvery"});
        const bool fresh = mFiles.emplace(PathIn(object, "path"), ReadFile(object, mUsual)).second;
        if (!fresh) object.Refuse("path", "is the path of another file");
    }
}

void Carousel::ReadApplications(const JsonSource& source, const Json::Value& list) {
    for (const Json::Value& value : list) {
        const JsonObject object(source, value, "application", {"organisation", "application", "start"});
        ApplicationId id;
        id.organisation = object.Int("organisation", 0, INT32_MAX);
        id.application = object.Int("application", 0, kLargestId);
        const bool fresh = mApplications.emplace(IdText(id), PathIn(object, "start")).second;
        if (!fresh) object.Refuse("there is another application with this organisation and number");
    }
}

bool Carousel::IsIn(const Service& service) const {
    if (!service.received || IsIp(service.network->delivery)) return false;
    return !mService ||
           (mService->onid == service.onid && mService->tsid == service.tsid && mService->sid == service.sid);
}

std::optional<CarouselPath> Carousel::StartOf(const ApplicationId& application) const {
    const auto found = mApplications.find(IdText(application));
    if (found == mApplications.end()) return std::nullopt;
    return found->second;
}

CarouselFile Carousel::About(const CarouselPath& path) const {
    const auto found = mFiles.find(path);
    return found == mFiles.end() ? mUsual : found->second;
}

int Carousel::NextVersion(const CarouselPath& path) {
    CarouselFile& file = mFiles.emplace(path, mUsual).first->second;
    file.version = (file.version + 1) % (kLargestVersion + 1);
    return file.version;
}

std::string Carousel::Read(const CarouselPath& path) const {
    if (path == CarouselPath{kSideFile}) throw Refused("it describes the carousel and is not part of it");
    auto at = std::make_unique<Descriptor>(open(mDirectory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (at->Get() < 0) FailBy(errno);
    for (size_t i = 0; i < path.size(); ++i) {
        const bool last = i + 1 == path.size();
        at = OpenBelow(*at, path[i], last ? 0 : O_DIRECTORY);
    }
    struct stat status {};
    if (fstat(at->Get(), &status) != 0) FailBy(errno);
    if (!S_ISREG(status.st_mode)) throw Refused("it is not a regular file");
    return ReadUpTo(*at, About(path).largest);
}

}  // namespace hbbtv::sim
