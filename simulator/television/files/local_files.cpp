#include "television/files/local_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "common/local_socket.h"
#include "core/error.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kRoom = 256u << 20;

[[noreturn]] void Fail(const std::string& path) {
    throw Refused(path + " cannot be created: " + std::strerror(errno));
}

void Write(const std::string& path, const std::string& bytes) {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (file.Get() < 0) Fail(path);
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t count = write(file.Get(), bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno != EINTR) Fail(path);
        if (count > 0) done += static_cast<size_t>(count);
    }
}

}  // namespace

LocalFiles::File::File(std::string theDirectory, std::string thePath, size_t theSize, std::shared_ptr<size_t> theRoom)
    : directory(std::move(theDirectory)), path(std::move(thePath)), size(theSize), mRoom(std::move(theRoom)) {
    *mRoom -= size;
}

LocalFiles::File::~File() {
    unlink(path.c_str());
    rmdir(directory.c_str());
    *mRoom += size;
}

LocalFiles::LocalFiles(const std::string& directory)
    : mDirectory(std::filesystem::absolute(directory).string()), mRoom(std::make_shared<size_t>(kRoom)) {}

LocalFiles::~LocalFiles() {
    std::error_code ignored;
    if (mMade) std::filesystem::remove_all(mDirectory, ignored);
}

// This process serves the sockets next to it, so existing files are stale. A directory of another user or a link is not
// touched.
void LocalFiles::MakeDirectory() {
    if (mMade) return;
    struct stat status {};
    const bool there = lstat(mDirectory.c_str(), &status) == 0;
    if (there && (!S_ISDIR(status.st_mode) || status.st_uid != geteuid())) {
        throw Refused(mDirectory + " is in the way of the received files");
    }
    std::error_code error;
    std::filesystem::remove_all(mDirectory, error);
    if (mkdir(mDirectory.c_str(), 0755) != 0) Fail(mDirectory);
    mMade = true;
}

std::shared_ptr<const LocalFiles::File> LocalFiles::Put(const std::string& name, const std::string& bytes) {
    if (bytes.size() > *mRoom) throw Refused("there is no space for more received files");
    MakeDirectory();
    const std::string directory = mDirectory + "/" + std::to_string(++mCount);
    if (mkdir(directory.c_str(), 0755) != 0) Fail(directory);
    const auto file = std::make_shared<const File>(directory, directory + "/" + name, bytes.size(), mRoom);
    Write(file->path, bytes);
    return file;
}

}  // namespace hbbtv::sim
