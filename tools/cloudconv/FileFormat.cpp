#include "tools/cloudconv/FileFormat.h"

#include "tools/cloudconv/UsageError.h"

#include <strings.h>

#include <cstring>

const std::map<std::string, FileFormat>& fileFormatNames() {
    static const std::map<std::string, FileFormat> names = {{"ply", FileFormat::Ply},
                                                            {"dxf", FileFormat::Dxf}};
    return names;
}

FileFormat formatOf(const std::string& path, std::optional<FileFormat> asked,
                    const std::string& option) {
    constexpr char drawingExtension[] = ".dxf";
    constexpr std::size_t length = sizeof drawingExtension - 1;
    if (asked.has_value()) {
        return *asked;
    }
    if (path == "-") {
        throw UsageError("\"-\" has no extension: add " + option + " ply or " + option + " dxf");
    }
    const bool isDrawing = path.size() > length &&
                           strcasecmp(path.c_str() + path.size() - length, drawingExtension) == 0;
    return isDrawing ? FileFormat::Dxf : FileFormat::Ply;
}
