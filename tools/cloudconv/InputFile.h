#pragma once

#include <cstddef>
#include <string>
#include <vector>

class Progress;

/// The name of an input in messages: the path, or "standard input" for "-".
std::string inputName(const std::string& path);

/// An open file, pipe or device, closed at the end of its life.
class InputFile {
public:
    /// @param path  "-" is standard input
    /// @throws FileError, as the other functions, with the system's reason
    explicit InputFile(const std::string& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// For messages.
    const std::string& name() const { return m_name; }

    /// The size of a regular file; 0 for others.
    std::size_t expectedSize() const;

    /// Reads at most `room` bytes; 0 at the end.
    std::size_t readSome(void* bytes, std::size_t room) const;

    /// Whether it is the file at this path, by this name or another.
    bool isAlso(const std::string& path) const;

private:
    void check(bool succeeded) const;

    std::string m_name;
    int m_descriptor;
};

/// Reads a whole file, or what a pipe or device gives until its end.
///
/// @param progress  told that this is done, and how far it is
/// @throws FileError with the system's reason when that fails
std::vector<unsigned char> readInputFile(const InputFile& file, Progress& progress);

/// Opens and reads a file.
///
/// @param path  "-" is standard input
std::vector<unsigned char> readInputFile(const std::string& path, Progress& progress);

/// @param force  whether an output may be the input
/// @throws UsageError when it is, by its name or another, and may not
void checkReplacement(const InputFile& input, const std::string& output, bool force);
