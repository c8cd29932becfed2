#include "converters/Converters.h"

#include "converters/PlySerializerDeserializer.h"
#include "converters/mpaths.h"
#include "universal_log_interface/universal_log_interface.h"

#include <fstream>

namespace converters {

const std::filesystem::path tmpDxfPath = std::filesystem::path(mpaths::getTMP_DIRECTORY()) /=
    "temp_dxf_files";

bool from_file(const std::string& path, std::vector<unsigned char>& out) {
    std::ifstream file(path, std::ios::in | std::ios::binary);
    out.clear();
    if (!file.is_open()) {
        return false;
    }

    constexpr std::size_t blockSize = 1 << 16;
    std::size_t length = 0;
    while (file) {
        out.resize(length + blockSize);
        file.read(reinterpret_cast<char*>(out.data() + length), blockSize);
        length += static_cast<std::size_t>(file.gcount());
    }
    // A directory opens but cannot be read: that sets badbit, the end of a file does not.
    if (file.bad()) {
        length = 0;
    }
    out.resize(length);
    return !file.bad();
}

bool toPlyBinary(const pcl::PointCloud<pcl::PointXYZI>& cloud, std::vector<unsigned char>& out) {
    return PLYSerializer().SerializePlyBinaryT(cloud, out);
}

bool toPlyAscii(const pcl::PointCloud<pcl::PointXYZI>& cloud, std::vector<unsigned char>& out) {
    return PLYSerializer().SerializePlyASCIIT(cloud, out);
}

PlyReadResult fromPly(const std::vector<unsigned char>& data,
                      pcl::PointCloud<pcl::PointXYZI>& cloud) {
    PLYDeserializer deserializer;
    const bool success = deserializer.DeserializePlyT(data, cloud);
    return {success, deserializer.isEmptySceneInTeach()};
}

} // namespace converters
