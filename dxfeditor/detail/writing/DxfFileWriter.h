#pragma once

#include "dxfeditor/detail/writing/DxfTextWriter.h"

#include <memory>
#include <string>

namespace dxfeditor {

/// Writes the groups into a file, in large blocks, and remembers whether any byte was lost.
class DxfFileWriter : public DxfTextWriter {
public:
    /// Writes into the existing file at `path`, from its start.
    /// @return an empty pointer when the file cannot be opened
    static std::unique_ptr<DxfFileWriter> open(const std::string& path,
                                               DL_Codes::version dxfVersion);

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
    DxfFileWriter(int descriptor, DL_Codes::version dxfVersion);
    void groupWritten() const override;
    void drain() const;

    int m_descriptor;
    mutable bool m_succeeded = true;
};

} // namespace dxfeditor
