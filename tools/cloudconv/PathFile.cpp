#include "tools/cloudconv/PathFile.h"

#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/Progress.h"

#include <array>
#include <cstdint>
#include <utility>

using converters::DrawingPath;
using converters::LengthUnit;

namespace {

converters::PathOptions shownOn(Progress& progress, const std::string& name,
                                converters::PathOptions options) {
    options.progress = progress.beginParts("following " + name);
    return options;
}

converters::ByteSource bytesOf(const InputFile& file) {
    return [&file](void* bytes, std::size_t room) { return file.readSome(bytes, room); };
}

/// @param read  reads the path with these options
template <typename Read>
DrawingPath readNamed(const std::string& name, converters::PathOptions options, Progress& progress,
                      Read read) {
    DrawingPath path;
    const converters::ReadResult result = read(path, shownOn(progress, name, std::move(options)));
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
    return readNamed(file.name(), std::move(options), progress,
                     [&](DrawingPath& path, const converters::PathOptions& reading) {
                         return converters::readPath(bytesOf(file), path, reading,
                                                     file.expectedSize());
                     });
}

PathFileReader::PathFileReader(const InputFile& file, converters::PathOptions options,
                               Progress& progress)
    : m_name(file.name()),
      m_reader(bytesOf(file), shownOn(progress, m_name, std::move(options)), file.expectedSize()) {
    check(m_reader.open());
}

bool PathFileReader::read(converters::PathContours& contours) {
    check(m_reader.read(contours));
    return !contours.contours.empty();
}

std::size_t PathFileReader::countPoints() {
    std::uint64_t points = 0;
    check(m_reader.countPoints(points));
    return static_cast<std::size_t>(points);
}

void PathFileReader::check(const converters::ReadResult& result) const {
    if (!result) {
        throw FileError(m_name, result.reason);
    }
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
