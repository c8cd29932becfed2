#include "tools/cloudconv/PathFile.h"

#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/Progress.h"

#include <array>
#include <utility>

using converters::DrawingPath;
using converters::LengthUnit;

namespace {

/// @param read  reads the path with these options
template <typename Read>
DrawingPath readNamed(const std::string& name, converters::PathOptions options, Progress& progress,
                      Read read) {
    options.progress = progress.beginParts("following " + name);
    DrawingPath path;
    const converters::ReadResult result = read(path, options);
    if (!result) {
        throw FileError(name, result.reason);
    }
    return path;
}

} // namespace

DrawingPath readPathFile(const std::string& name, const std::vector<unsigned char>& bytes,
                         converters::PathOptions options, Progress& progress) {
    return readNamed(name, std::move(options), progress,
                     [&](DrawingPath& path, const converters::PathOptions& reading) {
                         return converters::readPath(bytes.data(), bytes.size(), path, reading);
                     });
}

DrawingPath readPathFile(const InputFile& file, converters::PathOptions options,
                         Progress& progress) {
    const auto source = [&file](void* bytes, std::size_t room) {
        return file.readSome(bytes, room);
    };
    return readNamed(file.name(), std::move(options), progress,
                     [&](DrawingPath& path, const converters::PathOptions& reading) {
                         return converters::readPath(source, path, reading, file.expectedSize());
                     });
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
