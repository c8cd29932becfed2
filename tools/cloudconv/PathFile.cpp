#include "tools/cloudconv/PathFile.h"

#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/Progress.h"

#include <array>
#include <utility>

using converters::LengthUnit;

converters::DrawingPath readPathFile(const std::string& name,
                                     const std::vector<unsigned char>& bytes,
                                     converters::PathOptions options, Progress& progress) {
    options.progress = progress.beginParts("following " + name);
    converters::DrawingPath path;
    const converters::ReadResult result =
        converters::readPath(bytes.data(), bytes.size(), path, options);
    if (!result) {
        throw FileError(name, result.reason);
    }
    return path;
}

std::string shortName(LengthUnit unit) {
    constexpr std::array<std::pair<LengthUnit, const char*>, 5> names = {
        {{LengthUnit::millimetre, "mm"},
         {LengthUnit::centimetre, "cm"},
         {LengthUnit::metre, "m"},
         {LengthUnit::inch, "in"},
         {LengthUnit::foot, "ft"}}};
    for (const auto& [known, name] : names) {
        if (known == unit) {
            return name;
        }
    }
    return {};
}
