#include "converters/detail/input/FileSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <system_error>

namespace converters::input {
namespace {

/// An open file, closed at the end of its life.
class OpenFile {
public:
    OpenFile(const std::filesystem::path& file, const Refuse& refuse)
        : m_refuse(refuse), m_descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (m_descriptor < 0) {
            refuseBySystem("the file cannot be opened: ");
        }
    }
    ~OpenFile() { close(m_descriptor); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    /// The size of a regular file; 0 for others.
    std::uint64_t size() const {
        struct stat status = {};
        const bool isKnown = fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode);
        return isKnown ? static_cast<std::uint64_t>(status.st_size) : 0;
    }

    /// Reads at most `room` bytes; 0 at the end.
    std::size_t readSome(void* bytes, std::size_t room) const {
        ssize_t count = 0;
        do {
            count = read(m_descriptor, bytes, room);
        } while (count < 0 && errno == EINTR);
        if (count < 0) {
            refuseBySystem("the file cannot be read: ");
        }
        return static_cast<std::size_t>(count);
    }

private:
    void refuseBySystem(const std::string& what) const {
        const int error = errno;
        m_refuse(what + std::generic_category().message(error));
    }

    Refuse m_refuse;
    int m_descriptor;
};

} // namespace

ByteWindow openFile(const std::filesystem::path& file, const Refuse& refuse, std::size_t capacity) {
    const auto opened = std::make_shared<const OpenFile>(file, refuse);
    return {[opened](void* bytes, std::size_t room) { return opened->readSome(bytes, room); },
            opened->size(), capacity};
}

} // namespace converters::input
