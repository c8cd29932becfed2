#pragma once

#include <map>
#include <optional>
#include <string>

/// A kind of file that the program reads and writes.
enum class FileFormat { Ply, Dxf };

/// The kinds by the names that the command line has for them.
const std::map<std::string, FileFormat>& fileFormatNames();

/// The format of a file: the one that was asked for, else by the path's extension. ".dxf", in any
/// case, is DXF; every other name is PLY, as those of pipes and devices are.
///
/// @param option  the option that asks for a format, for messages
/// @throws UsageError for "-", which has no extension, when nothing was asked for
FileFormat formatOf(const std::string& path, std::optional<FileFormat> asked,
                    const std::string& option);
