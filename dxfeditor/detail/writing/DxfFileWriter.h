#pragma once

#include "dxfeditor/detail/writing/DxfTextWriter.h"

#include <memory>
#include <string>

namespace dxfeditor {

/// Writes the groups into a file, in large blocks, and remembers whether any byte was lost.
class DxfFileWriter : public DxfTextWriter {
public:
    /// Writes into the file at `path`, which is created or emptied.
    /// @return an empty pointer when the file cannot be opened
    static std::unique_ptr<DxfFileWriter> create(const std::string& path,
                                                 DL_Codes::version dxfVersion);

    /// Writes into an open file, from where it stands, through a descriptor of its own.
    /// @return an empty pointer when there is no such file or the process may have no further one
    static std::unique_ptr<DxfFileWriter> onFile(int descriptor, DL_Codes::version dxfVersion);

    /// Writes what is left and closes the file.
    ~DxfFileWriter() override;

    bool isOpen() const { return m_descriptor >= 0; }
    /// False once a byte could not be written.
    bool succeeded() const { return m_succeeded; }

    /// Hands what is left to the system.
    void flush();
    /// Writes what is left and closes the file, once.
    void close();

private:
    static std::unique_ptr<DxfFileWriter> owning(int descriptor, DL_Codes::version dxfVersion);

    DxfFileWriter(int descriptor, DL_Codes::version dxfVersion);
    void groupWritten() const override;
    void takeBlock(const char* groups, std::size_t length) const override;
    void drain() const;
    void write(const char* text, std::size_t length) const;

    int m_descriptor;
    mutable bool m_succeeded = true;
};

} // namespace dxfeditor
