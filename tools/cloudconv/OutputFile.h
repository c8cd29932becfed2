#pragma once

#include "tools/cloudconv/Interrupt.h"

#include <sys/stat.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

class Progress;

/// The name of an output in messages: the path, or "standard output" for "-".
std::string outputName(const std::string& path);

/// A file that appears whole or not at all.
///
/// The bytes go to a temporary file in the folder of the file. commit() puts it in the file's
/// place in one step; without it, what was at the path stays as it was and the temporary file is
/// removed, also when Ctrl-C ends the program.
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

    /// For those that write by themselves; stays this object's.
    int descriptor() const { return m_descriptor; }

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
    std::optional<RemovedWhenInterrupted> m_guard;
    int m_descriptor = -1;
};

/// Makes or replaces a file in one go.
///
/// @param path      "-" is standard output
/// @param progress  told that this is done, and how far it is
/// @throws FileError when that fails
void writeOutputFile(const std::string& path, const std::vector<unsigned char>& bytes,
                     Progress& progress);
