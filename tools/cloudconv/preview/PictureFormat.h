#pragma once

#include <map>
#include <optional>
#include <string>

/// A kind of picture that the program draws. Html is a page, which needs no canvas.
enum class PictureFormat { Png, Svg, Pdf, Html };

/// The kinds by the names that the command line has for them.
const std::map<std::string, PictureFormat>& pictureFormatNames();

/// The format of a picture: the one that was asked for, else by the path's extension, in any case.
///
/// @throws UsageError when nothing was asked for and the path has none of the extensions
PictureFormat pictureFormatOf(const std::string& path, std::optional<PictureFormat> asked);
