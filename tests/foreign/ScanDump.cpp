// scan_dump FILE...: reads scans and tells what came of them, a line of JSON for each file. What
// was read goes into FILE.points (x, y, z, intensity as floats) and FILE.records (all scalar
// properties).

#include "converters/Scan.h"
#include "converters/ScanLayout.h"

#include <cstdio>
#include <fstream>
#include <string>

namespace {

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte >= 0x7F || c == '"' || c == '\\') {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x", byte);
            result += code;
        } else {
            result += c;
        }
    }
    return result;
}

void write(const std::string& path, const void* bytes, std::size_t size) {
    std::ofstream(path, std::ios::binary)
        .write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
}

void writePoints(const std::string& path, const pcl::PointCloud<pcl::PointXYZI>& cloud) {
    std::vector<float> numbers;
    for (const pcl::PointXYZI& point : cloud) {
        numbers.insert(numbers.end(), {point.x, point.y, point.z, point.intensity});
    }
    write(path, numbers.data(), numbers.size() * sizeof(float));
}

void dump(const std::string& path) {
    pcl::PointCloud<pcl::PointXYZI> cloud;
    pcl::PCLPointCloud2 records;
    const converters::ScanResult result = converters::readScan(std::filesystem::path(path), cloud);
    const converters::ScanResult again = converters::readScan(std::filesystem::path(path), records);
    std::printf("{\"success\": %s, \"reason\": \"%s\", \"line\": %llu, \"points\": %zu, "
                "\"size\": %u, \"fields\": [",
                result && again ? "true" : "false", escaped(result.reason).c_str(),
                static_cast<unsigned long long>(result.line), cloud.size(), records.point_step);
    const char* separator = "";
    for (const converters::ScanField& field : converters::layoutOf(records).fields) {
        std::printf("%s[\"%s\", \"%s\", %zu]", separator, escaped(field.name).c_str(),
                    nameOf(field.type), field.offset);
        separator = ", ";
    }
    std::printf("]}\n");
    writePoints(path + ".points", cloud);
    write(path + ".records", records.data.data(), records.data.size());
}

} // namespace

int main(int count, char** arguments) {
    for (int i = 1; i < count; ++i) {
        dump(arguments[i]);
    }
    return 0;
}
