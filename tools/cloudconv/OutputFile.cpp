#include "tools/cloudconv/OutputFile.h"

#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/Progress.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <system_error>
#include <utility>

namespace {

/// The folder of a path, with a slash at its end; empty for the current one.
std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

/// Makes a rename in the folder survive a power cut. Not every file system can, and the file is in
/// its place by then: a failure is no failure of the output.
void synchroniseFolder(const std::string& folder) {
    const int descriptor =
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        fsync(descriptor);
        close(descriptor);
    }
}

/// An existing path without symbolic links. Empty for what has no path of its own, such as
/// /dev/stdout when that is a file deleted since.
std::string withoutLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                           &std::free);
    return real != nullptr ? std::string(real.get()) : std::string();
}

} // namespace

std::string outputName(const std::string& path) {
    return path == "-" ? "standard output" : path;
}

// Through another constructor: when this one throws, the destructor cleans up.
OutputFile::OutputFile(const std::string& path) : OutputFile() {
    m_name = outputName(path);
    m_target = path;
    struct stat status = {};
    if (path == "-") {
        m_descriptor = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
        check(m_descriptor >= 0);
    } else if (stat(path.c_str(), &status) != 0) {
        check(errno == ENOENT);
        if (lstat(path.c_str(), &status) == 0) {
            throw FileError(m_name, "is a symbolic link to a file that does not exist");
        }
        createTemporary();
    } else if (S_ISREG(status.st_mode)) {
        // Renaming asks the folder for permission only; a write-protected file stays one.
        check(faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0);
        m_target = withoutLinks(path);
        check(!m_target.empty());
        createTemporary();
        takeOverModeOf(status);
    } else {
        // Opening a folder for writing fails with the reason to report.
        m_descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        check(m_descriptor >= 0);
    }
}

OutputFile::~OutputFile() {
    if (m_descriptor >= 0) {
        close(m_descriptor);
    }
    if (!m_temporary.empty()) {
        unlink(m_temporary.c_str());
    }
}

void OutputFile::createTemporary() {
    // Left-over files of programs that were killed may have the first names.
    constexpr int names = 1000;
    const InterruptsHeld held;
    for (int i = 0; i < names && m_descriptor < 0; ++i) {
        m_temporary = folderOf(m_target) + ".cloudconv-" + std::to_string(getpid()) + "-" +
                      std::to_string(i) + ".tmp";
        m_descriptor = open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (m_descriptor < 0 && errno != EEXIST) {
            break;
        }
    }
    if (m_descriptor < 0) {
        m_temporary.clear(); // not ours to remove
        check(false);
    }
    m_guard.emplace(m_temporary);
}

void OutputFile::takeOverModeOf(const struct stat& replaced) {
    constexpr mode_t permissions = 0777;
    constexpr auto sameOwner = static_cast<uid_t>(-1);
    // Only root can give a file away. Whoever else replaces one owns it afterwards.
    const bool given = fchown(m_descriptor, replaced.st_uid, replaced.st_gid) == 0 ||
                       fchown(m_descriptor, sameOwner, replaced.st_gid) == 0;
    static_cast<void>(given);
    check(fchmod(m_descriptor, replaced.st_mode & permissions) == 0);
}

void OutputFile::write(const void* bytes, std::size_t size) {
    const auto* next = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t count = ::write(m_descriptor, next, size);
        check(count >= 0 || errno == EINTR);
        if (count > 0) {
            next += count;
            size -= static_cast<std::size_t>(count);
        }
    }
}

void OutputFile::commit() {
    // Some file systems cannot synchronise, and say so with EINVAL.
    check(m_temporary.empty() || fsync(m_descriptor) == 0 || errno == EINVAL);
    check(close(std::exchange(m_descriptor, -1)) == 0);
    if (!m_temporary.empty()) {
        check(rename(m_temporary.c_str(), m_target.c_str()) == 0);
        m_guard.reset();
        m_temporary.clear();
        synchroniseFolder(folderOf(m_target));
    }
}

void OutputFile::check(bool succeeded) const {
    if (!succeeded) {
        throw FileError(m_name, std::generic_category().message(errno));
    }
}

void writeOutputFile(const std::string& path, const std::vector<unsigned char>& bytes,
                     Progress& progress) {
    constexpr std::size_t mostAtOnce = std::size_t{16} << 20;
    OutputFile file(path);
    progress.begin("writing " + outputName(path), bytes.size());
    for (std::size_t done = 0; done < bytes.size(); progress.reached(done)) {
        const std::size_t size = std::min(bytes.size() - done, mostAtOnce);
        file.write(bytes.data() + done, size);
        done += size;
    }
    file.commit();
}
