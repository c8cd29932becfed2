#include "dxfeditor/detail/writing/DxfFileWriter.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace dxfeditor {

namespace {

/// Those of any new file; the process's umask takes some away.
constexpr mode_t permissions = 0666;

bool writeAll(int descriptor, const char* text, std::size_t length) {
    while (length > 0) {
        const ssize_t written = ::write(descriptor, text, length);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        text += written;
        length -= static_cast<std::size_t>(written);
    }
    return true;
}

} // namespace

std::unique_ptr<DxfFileWriter> DxfFileWriter::create(const std::string& path,
                                                     DL_Codes::version dxfVersion) {
    return owning(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, permissions),
                  dxfVersion);
}

std::unique_ptr<DxfFileWriter> DxfFileWriter::onFile(int descriptor, DL_Codes::version dxfVersion) {
    return owning(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0), dxfVersion);
}

std::unique_ptr<DxfFileWriter> DxfFileWriter::owning(int descriptor, DL_Codes::version dxfVersion) {
    if (descriptor < 0) {
        return nullptr;
    }
    return std::unique_ptr<DxfFileWriter>(new DxfFileWriter(descriptor, dxfVersion));
}

DxfFileWriter::DxfFileWriter(int descriptor, DL_Codes::version dxfVersion)
    : DxfTextWriter(dxfVersion), m_descriptor(descriptor) {}

DxfFileWriter::~DxfFileWriter() {
    close();
}

void DxfFileWriter::groupWritten() const {
    if (m_text.size() >= textBlockSize) {
        drain();
    }
}

void DxfFileWriter::takeBlock(const char* groups, std::size_t length) const {
    drain();
    write(groups, length);
}

void DxfFileWriter::drain() const {
    write(m_text.data(), m_text.size());
    m_text.clear();
}

void DxfFileWriter::write(const char* text, std::size_t length) const {
    // After a lost byte the rest would stand in the wrong place: it is dropped.
    m_succeeded = m_succeeded && isOpen() && writeAll(m_descriptor, text, length);
}

void DxfFileWriter::flush() {
    drain();
}

void DxfFileWriter::close() {
    if (!isOpen()) {
        return;
    }
    drain();
    // An interrupted close has closed the file nevertheless.
    if (::close(m_descriptor) != 0 && errno != EINTR) {
        m_succeeded = false;
    }
    m_descriptor = -1;
}

} // namespace dxfeditor
