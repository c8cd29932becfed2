#pragma once

#include <filesystem>

namespace base {

/// A file that exists for the length of a call, at a path that is known in advance.
///
/// What is left over at the path (a file, a symbolic link, a pipe, an empty directory) is removed,
/// never followed or opened, and a new file is created in its place, readable by its owner alone.
/// The file is held open meanwhile, so that it can be told from another one put at its path.
class TransientFile {
public:
    /// Creates the file; see isCreated() for whether that worked.
    explicit TransientFile(std::filesystem::path path);
    /// Removes the file from its path, if it is still there, unless keep() was called.
    ~TransientFile();
    TransientFile(const TransientFile&) = delete;
    TransientFile& operator=(const TransientFile&) = delete;

    /// True while the path leads to the very file that was created.
    bool isInPlace() const;

    /// False when the file could not be created. Its path must not be opened then: somebody else
    /// may put a link there at any moment.
    bool isCreated() const { return m_descriptor >= 0; }

    /// The open file, to write to; negative when it could not be created. It is closed with this
    /// object.
    int descriptor() const { return m_descriptor; }

    /// A path by which to read the very file, whatever is put at its own path meanwhile: nobody can
    /// have another one opened in its place. The file's own path where there is no /proc.
    /// Only for a file that was created.
    std::filesystem::path openPath() const;

    /// Leaves the file where it is.
    void keep() { m_kept = true; }

    /// Removes the file.
    /// @throws std::filesystem::filesystem_error when it cannot be removed
    void remove();

private:
    std::filesystem::path m_path;
    int m_descriptor;
    bool m_kept = false;
};

} // namespace base
