#include "tools/cloudconv/InputFile.h"

#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/Progress.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace {

/// An open file, closed at the end of its life.
class OpenFile {
public:
    explicit OpenFile(const std::string& path)
        : m_name(inputName(path)),
          m_descriptor(path == "-" ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                   : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        check(m_descriptor >= 0);
    }
    ~OpenFile() { close(m_descriptor); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    /// The size of a regular file; 0 for others.
    std::size_t expectedSize() const {
        struct stat status = {};
        check(fstat(m_descriptor, &status) == 0);
        return S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
    }

    /// Reads at most `size` bytes; 0 at the end.
    std::size_t readSome(unsigned char* bytes, std::size_t size) const {
        ssize_t count = 0;
        do {
            count = read(m_descriptor, bytes, size);
        } while (count < 0 && errno == EINTR);
        check(count >= 0);
        return static_cast<std::size_t>(count);
    }

private:
    void check(bool succeeded) const {
        if (!succeeded) {
            throw FileError(m_name, std::generic_category().message(errno));
        }
    }

    std::string m_name;
    int m_descriptor;
};

} // namespace

std::string inputName(const std::string& path) {
    return path == "-" ? "standard input" : path;
}

std::vector<unsigned char> readInputFile(const std::string& path, Progress& progress) {
    constexpr std::size_t leastRoom = 65536;
    /// So that progress shows.
    constexpr std::size_t mostAtOnce = std::size_t{16} << 20;
    const OpenFile file(path);
    const std::size_t expected = file.expectedSize();
    progress.begin("reading " + inputName(path), expected);
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
