#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <string>

/// The name of an output in messages: the path, or "standard output" for "-".
std::string outputName(const std::string& path);

/// A file that appears whole or not at all.
///
/// The bytes go to a temporary file in the folder of the file. commit() puts it in the file's
/// place in one step; without it, what was at the path stays as it was and the temporary file is
/// removed.
///
/// A new file gets the mode of any new file; one that is replaced keeps its mode and, where the
/// system allows it, its owner. A path that is a symbolic link stays one: the file that it points
/// to is replaced. A device or pipe is never replaced: the bytes go straight to it, as
/// they go to standard output, whose path is "-".
class OutputFile {
public:
    /// Creates the temporary file.
    ///
    /// @throws FileError, as the other functions, with the system's reason
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Appends bytes.
    void write(const void* bytes, std::size_t size);

    /// Waits until all bytes are on the disk and puts the file in its place. Nothing can be
    /// written afterwards.
    void commit();

private:
    OutputFile() = default;

    void createTemporary();
    void takeOverModeOf(const struct stat& replaced);
    void check(bool succeeded) const;

    /// For messages.
    std::string m_name;
    /// The file to replace, behind symbolic links.
    std::string m_target;
    /// Empty when the bytes go straight to the target, and after commit().
    std::string m_temporary;
    int m_descriptor = -1;
};
