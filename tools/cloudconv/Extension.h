#pragma once

#include <strings.h>

#include <map>
#include <optional>
#include <string>

/// The format that a path's extension stands for, in any case; none when no name fits.
///
/// @param names  the formats by their extensions, without the dot
template <typename Format>
std::optional<Format> formatByExtension(const std::string& path,
                                        const std::map<std::string, Format>& names) {
    for (const auto& [name, format] : names) {
        const std::string extension = '.' + name;
        if (path.size() > extension.size() &&
            strcasecmp(path.c_str() + path.size() - extension.size(), extension.c_str()) == 0) {
            return format;
        }
    }
    return std::nullopt;
}
