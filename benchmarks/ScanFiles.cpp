#include "benchmarks/ScanFiles.h"

#include "benchmarks/Inputs.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace {

/// Appends the numbers of a file in its format.
class Numbers {
public:
    Numbers(std::string& file, std::string_view format)
        : m_file(file), m_isAscii(format == "ascii"), m_isSwapped(format == "binary_big_endian") {}

    template <typename Number>
    void add(Number number) {
        if (m_isAscii) {
            char text[40];
            const std::to_chars_result end = std::to_chars(text, text + sizeof text, number);
            m_file.append(text, end.ptr) += ' ';
            return;
        }
        char bytes[sizeof number];
        std::memcpy(bytes, &number, sizeof number);
        if (m_isSwapped) {
            std::reverse(bytes, bytes + sizeof number);
        }
        m_file.append(bytes, sizeof number);
    }

    void endRecord() {
        if (m_isAscii) {
            m_file.back() = '\n';
        }
    }

private:
    std::string& m_file;
    bool m_isAscii;
    bool m_isSwapped;
};

void addPoints(Numbers& numbers, const ScanKind& kind, std::size_t size) {
    for (const pcl::PointXYZI& point : cloudOf(size)) {
        if (kind.isRich) {
            for (const float number : {point.x, point.y, point.z}) {
                // Digits that no float holds.
                numbers.add(4500000 + static_cast<double>(number) * 1.0123456789);
            }
            for (int i = 0; i < 3; ++i) {
                numbers.add(static_cast<std::uint8_t>(point.intensity));
            }
        }
        for (const float number : {point.x, point.y, point.z}) {
            numbers.add(kind.isRich ? number / 100 : number);
        }
        if (!kind.isRich) {
            numbers.add(point.intensity);
        }
        numbers.endRecord();
    }
}

} // namespace

std::vector<unsigned char> scanFileOf(const ScanKind& kind, std::size_t size) {
    std::string file = std::string("ply\nformat ") + kind.format + " 1.0\nelement vertex " +
                       std::to_string(size) + '\n';
    file += kind.isRich ? "property double x\nproperty double y\nproperty double z\n"
                          "property uchar red\nproperty uchar green\nproperty uchar blue\n"
                          "property float nx\nproperty float ny\nproperty float nz\n"
                        : "property float x\nproperty float y\nproperty float z\n"
                          "property float intensity\n";
    if (kind.hasFaces) {
        file += "element face " + std::to_string(2 * size) +
                "\nproperty list uchar int vertex_indices\n";
    }
    file += "end_header\n";
    Numbers numbers(file, kind.format);
    addPoints(numbers, kind, size);
    for (std::size_t i = 0; kind.hasFaces && i < 2 * size; ++i) {
        numbers.add(std::uint8_t{3});
        for (std::size_t k = 0; k < 3; ++k) {
            numbers.add(static_cast<std::int32_t>((i * 7 + k * 1001) % size));
        }
        numbers.endRecord();
    }
    return {file.begin(), file.end()};
}

std::size_t headerSizeOf(const std::vector<unsigned char>& file) {
    constexpr std::string_view last = "end_header\n";
    return static_cast<std::size_t>(
               std::search(file.begin(), file.end(), last.begin(), last.end()) - file.begin()) +
           last.size();
}
