#include "tools/cloudconv/FileFormat.h"

#include "tools/cloudconv/Extension.h"
#include "tools/cloudconv/UsageError.h"

const std::map<std::string, FileFormat>& inputFormatNames() {
    static const std::map<std::string, FileFormat> names = {{"ply", FileFormat::Ply},
                                                            {"dxf", FileFormat::Dxf}};
    return names;
}

const std::map<std::string, FileFormat>& outputFormatNames() {
    static const std::map<std::string, FileFormat> names = {{"ply", FileFormat::Ply},
                                                            {"dxf", FileFormat::Dxf},
                                                            {"csv", FileFormat::Csv},
                                                            {"xyz", FileFormat::Xyz}};
    return names;
}

FileFormat inputFormatOf(const std::string& path, std::optional<FileFormat> asked) {
    const std::optional<FileFormat> known =
        asked.has_value() ? asked : formatByExtension(path, inputFormatNames());
    if (!known.has_value()) {
        throw UsageError('"' + path +
                         "\" ends neither in .ply nor in .dxf: add --from ply or --from dxf");
    }
    return *known;
}

FileFormat outputFormatOf(const std::string& path, std::optional<FileFormat> asked) {
    const std::optional<FileFormat> known =
        asked.has_value() ? asked : formatByExtension(path, outputFormatNames());
    if (!known.has_value()) {
        throw UsageError('"' + path +
                         "\" ends in none of .ply, .dxf, .csv and .xyz: add --to with one of them");
    }
    return *known;
}
