#include "traffic/relay/directory_watch.h"

#include <sys/inotify.h>
#include <unistd.h>

namespace hbbtv::traffic {

namespace {

int Watch(const std::string& directory) {
    Descriptor fd(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    constexpr uint32_t kChanges = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
    if (fd.Get() < 0 || inotify_add_watch(fd.Get(), directory.c_str(), kChanges) < 0) return -1;
    return fd.Release();
}

}  // namespace

DirectoryWatch::DirectoryWatch(const std::string& directory) : mFd(Watch(directory)) {}

std::set<std::string> DirectoryWatch::Names(bool& all) {
    std::set<std::string> names;
    alignas(inotify_event) char bytes[16384];
    ssize_t count;
    while ((count = read(mFd.Get(), bytes, sizeof(bytes))) > 0) {
        for (const char* at = bytes; at < bytes + count;) {
            const auto* event = reinterpret_cast<const inotify_event*>(at);
            if ((event->mask & IN_Q_OVERFLOW) != 0) all = true;
            if (event->len > 0) names.insert(event->name);
            at += sizeof(inotify_event) + event->len;
        }
    }
    return names;
}

}  // namespace hbbtv::traffic
