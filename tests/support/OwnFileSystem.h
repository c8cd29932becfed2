#pragma once

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <filesystem>

/// Exit status of a child process that could not set its test up.
constexpr int notPermitted = 77;

/// The user without rights.
constexpr uid_t nobody = 65534;

/// Mounts an empty file system over a directory, for this process alone.
///
/// Not without the permission to mount, and not where the root directory is no mount point, as
/// under chroot: others would see the new file system.
/// @param options  those of tmpfs, such as "size=256k"
inline bool mountOwnFileSystem(const std::filesystem::path& directory, const char* options) {
    std::filesystem::create_directories(directory);
    return unshare(CLONE_NEWNS) == 0 &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", directory.c_str(), "tmpfs", 0, options) == 0;
}
