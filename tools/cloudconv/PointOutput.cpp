#include "tools/cloudconv/PointOutput.h"

#include "tools/cloudconv/OutputFile.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace {

template <typename Number>
double read(const unsigned char* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return static_cast<double>(number);
}

} // namespace

converters::ScanOutput pointOutputOf(FileFormat format, bool ascii) {
    switch (format) {
    case FileFormat::Csv:
        return converters::ScanOutput::csv;
    case FileFormat::Xyz:
        return converters::ScanOutput::xyz;
    case FileFormat::Dxf:
        return converters::ScanOutput::dxf;
    case FileFormat::Ply:
        break;
    }
    return ascii ? converters::ScanOutput::plyAscii : converters::ScanOutput::plyBinary;
}

converters::ByteSink sinkTo(OutputFile& file) {
    return [&file](const void* bytes, std::size_t size) {
        file.write(bytes, size);
        return true;
    };
}

double valueOf(const unsigned char* record, const converters::ScanField& field) {
    const unsigned char* const bytes = record + field.offset;
    switch (field.type) {
    case converters::ScalarType::int8:
        return read<std::int8_t>(bytes);
    case converters::ScalarType::uint8:
        return read<std::uint8_t>(bytes);
    case converters::ScalarType::int16:
        return read<std::int16_t>(bytes);
    case converters::ScalarType::uint16:
        return read<std::uint16_t>(bytes);
    case converters::ScalarType::int32:
        return read<std::int32_t>(bytes);
    case converters::ScalarType::uint32:
        return read<std::uint32_t>(bytes);
    case converters::ScalarType::float32:
        return read<float>(bytes);
    case converters::ScalarType::float64:
        return read<double>(bytes);
    case converters::ScalarType::int64:
        return read<std::int64_t>(bytes);
    case converters::ScalarType::uint64:
        return read<std::uint64_t>(bytes);
    }
    return 0.0;
}

std::array<converters::ScanField, 3> coordinatesOf(const converters::ScanLayout& layout) {
    std::array<converters::ScanField, 3> coordinates;
    for (const converters::ScanField& field : layout.fields) {
        const auto axis = field.name.size() == 1
                              ? std::tolower(static_cast<unsigned char>(field.name[0])) - 'x'
                              : -1;
        if (axis >= 0 && axis < 3) {
            coordinates[static_cast<std::size_t>(axis)] = field;
        }
    }
    return coordinates;
}
