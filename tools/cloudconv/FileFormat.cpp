#include "tools/cloudconv/FileFormat.h"

#include "tools/cloudconv/Extension.h"
#include "tools/cloudconv/UsageError.h"

const std::map<std::string, FileFormat>& fileFormatNames() {
    static const std::map<std::string, FileFormat> names = {{"ply", FileFormat::Ply},
                                                            {"dxf", FileFormat::Dxf}};
    return names;
}

FileFormat formatOf(const std::string& path, std::optional<FileFormat> asked,
                    const std::string& option) {
    const std::optional<FileFormat> known =
        asked.has_value() ? asked : formatByExtension(path, fileFormatNames());
    if (!known.has_value()) {
        throw UsageError('"' + path + "\" ends neither in .ply nor in .dxf: add " + option +
                         " ply or " + option + " dxf");
    }
    return *known;
}
