#pragma once

#include <map>
#include <optional>
#include <string>

/// A kind of file that the program reads and writes.
enum class FileFormat { Ply, Dxf };

/// The kinds by the names that the command line has for them.
const std::map<std::string, FileFormat>& fileFormatNames();

/// The format of a file: the one that was asked for, else by the path's extension, in any case.
///
/// @param option  the option that asks for a format, for messages
/// @throws UsageError when nothing was asked for and the path has none of the extensions
FileFormat formatOf(const std::string& path, std::optional<FileFormat> asked,
                    const std::string& option);
