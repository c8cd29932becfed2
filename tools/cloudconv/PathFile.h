#pragma once

#include "converters/DrawingPath.h"

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

/// The name of a unit as the command line has it: "mm"; of others, and none, empty.
std::string shortName(converters::LengthUnit unit);
