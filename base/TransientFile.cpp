#include "base/TransientFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <system_error>
#include <utility>

namespace base {

TransientFile::TransientFile(std::filesystem::path path) : m_path(std::move(path)) {
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
    m_descriptor = ::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                          S_IRUSR | S_IWUSR);
}

TransientFile::~TransientFile() {
    if (!m_kept && isInPlace()) {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    if (isCreated()) {
        ::close(m_descriptor);
    }
}

bool TransientFile::isInPlace() const {
    struct stat created = {};
    struct stat found = {};
    return isCreated() && ::fstat(m_descriptor, &created) == 0 &&
           ::lstat(m_path.c_str(), &found) == 0 && created.st_dev == found.st_dev &&
           created.st_ino == found.st_ino;
}

std::filesystem::path TransientFile::openPath() const {
    const std::filesystem::path handle = "/proc/self/fd/" + std::to_string(m_descriptor);
    std::error_code unknown;
    return std::filesystem::exists(handle, unknown) ? handle : m_path;
}

void TransientFile::remove() {
    m_kept = true;
    std::filesystem::remove(m_path);
}

} // namespace base
