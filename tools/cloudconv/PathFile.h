#pragma once

#include "converters/DrawingPath.h"
#include "converters/PathReader.h"

#include <cstddef>
#include <string>
#include <vector>

class InputFile;
class Progress;

/// Reads the path of a drawing's bytes.
///
/// @param name      the file's name, for messages
/// @param progress  told that this is done, and how far it is
/// @throws FileError with the reader's reason
converters::DrawingPath readPathFile(const std::string& name,
                                     const std::vector<unsigned char>& bytes,
                                     converters::PathOptions options, Progress& progress);

/// Reads the path of a file, which is read once and not kept.
///
/// @throws FileError with the reader's reason, or the system's
converters::DrawingPath readPathFile(const InputFile& file, converters::PathOptions options,
                                     Progress& progress);

/// Reads the path of a file a few contours at a time; the file is read once and not kept.
class PathFileReader {
public:
    /// Reads the drawing, to its end.
    ///
    /// @param progress  told how far all is, as long as this lives
    /// @throws FileError, as the other functions, with the reader's reason, or the system's
    PathFileReader(const InputFile& file, converters::PathOptions options, Progress& progress);

    /// As PathReader::report().
    const converters::PathReport& report() const { return m_reader.report(); }

    /// @param contours  replaced by the next ones
    /// @return whether there were any
    bool read(converters::PathContours& contours);

    /// How many points the contours have that are to come.
    std::size_t countPoints();

private:
    void check(const converters::ReadResult& result) const;

    std::string m_name;
    converters::PathReader m_reader;
};

/// The name of a unit as the command line has it: "mm"; of others, and none, empty.
std::string shortName(converters::LengthUnit unit);
