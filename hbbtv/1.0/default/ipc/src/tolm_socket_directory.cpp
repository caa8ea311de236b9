#include "ipc/src/tolm_socket_directory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "ipc/src/tolm_family.h"
#include "ipc/tolm_ipc_key_converter.h"
#include "ipc/tolm_log.h"

namespace tolm {

namespace {

void CheckOwner(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 || status.st_uid == geteuid()) return;
    TOLM_SOCKET_LOG(ANDROID_LOG_WARN, "%s belongs to user %u, not to %u: another process may have taken its name",
                    path.c_str(), status.st_uid, geteuid());
}

}  // namespace

void CheckSocketDirectory() {
    TolmIpcKeyConverter& names = *TolmIpcKeyConverter::GetInstance();
    const std::string directory = GetSocketFilePath("");
    struct stat status {};
    if (stat(directory.c_str(), &status) == 0 && (status.st_mode & (S_IWGRP | S_IWOTH)) != 0 &&
        (status.st_mode & S_ISVTX) == 0) {
        TOLM_SOCKET_LOG(ANDROID_LOG_WARN, "%s has mode %03o: without the sticky bit, others can replace the sockets",
                        directory.c_str(), status.st_mode & 07777);
    }
    for (const Family* family : families::kAll) {
        CheckOwner(GetSocketFilePath(names.GetSocketName(family->requests), family->port));
        if (family->events) CheckOwner(GetSocketFilePath(names.GetSocketName(*family->events)));
    }
}

}  // namespace tolm
