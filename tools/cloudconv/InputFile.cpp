#include "tools/cloudconv/InputFile.h"

#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/Progress.h"
#include "tools/cloudconv/UsageError.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

InputFile::InputFile(const std::string& path)
    : m_name(inputName(path)),
      m_descriptor(path == "-" ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                               : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    check(m_descriptor >= 0);
}

InputFile::~InputFile() {
    close(m_descriptor);
}

std::size_t InputFile::expectedSize() const {
    struct stat status = {};
    check(fstat(m_descriptor, &status) == 0);
    return S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
}

std::size_t InputFile::readSome(void* bytes, std::size_t room) const {
    ssize_t count = 0;
    do {
        count = read(m_descriptor, bytes, room);
    } while (count < 0 && errno == EINTR);
    check(count >= 0);
    return static_cast<std::size_t>(count);
}

bool InputFile::isAlso(const std::string& path) const {
    struct stat own = {};
    struct stat other = {};
    return path != "-" && fstat(m_descriptor, &own) == 0 && stat(path.c_str(), &other) == 0 &&
           S_ISREG(own.st_mode) && own.st_dev == other.st_dev && own.st_ino == other.st_ino;
}

void InputFile::check(bool succeeded) const {
    if (!succeeded) {
        throw FileError(m_name, std::generic_category().message(errno));
    }
}

std::string inputName(const std::string& path) {
    return path == "-" ? "standard input" : path;
}

std::vector<unsigned char> readInputFile(const InputFile& file, Progress& progress) {
    constexpr std::size_t leastRoom = 65536;
    /// So that progress shows.
    constexpr std::size_t mostAtOnce = std::size_t{16} << 20;
    const std::size_t expected = file.expectedSize();
    progress.begin("reading " + file.name(), expected);
    // One byte more than expected, so that the end is found without growing.
    std::vector<unsigned char> bytes(expected + 1);
    std::size_t size = 0;
    while (const std::size_t count =
               file.readSome(bytes.data() + size, std::min(bytes.size() - size, mostAtOnce))) {
        size += count;
        progress.reached(size);
        if (size == bytes.size()) {
            bytes.resize(size + std::max(size / 2, leastRoom));
        }
    }
    bytes.resize(size);
    return bytes;
}

std::vector<unsigned char> readInputFile(const std::string& path, Progress& progress) {
    return readInputFile(InputFile(path), progress);
}

void checkReplacement(const InputFile& input, const std::string& output, bool force) {
    if (!force && input.isAlso(output)) {
        throw UsageError(output + " is the input; --force replaces it");
    }
}
