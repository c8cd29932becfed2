#pragma once

#include <map>
#include <optional>
#include <string>

/// A kind of file that the program reads and writes.
enum class FileFormat { Ply, Dxf, Csv, Xyz };

/// The kinds that are read, and those that are written, by the names that the command line has for
/// them.
const std::map<std::string, FileFormat>& inputFormatNames();
const std::map<std::string, FileFormat>& outputFormatNames();

/// The format of a file: the one that was asked for, else by the path's extension, in any case.
///
/// @throws UsageError when nothing was asked for and the path has none of the extensions
FileFormat inputFormatOf(const std::string& path, std::optional<FileFormat> asked);
FileFormat outputFormatOf(const std::string& path, std::optional<FileFormat> asked);
