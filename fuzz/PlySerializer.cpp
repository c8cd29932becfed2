// PLYSerializer on clouds of any width, height, fields and data, against a plain writer.
#include "converters/PlySerializerDeserializer.h"
#include "fuzz/support/ByteSource.h"
#include "fuzz/support/Verify.h"
#include "tests/support/ReferencePlyWriter.h"

namespace {

constexpr std::size_t mostElements = 2000;

/// Few different values mean that most clouds make sense, the others that some do not.
std::uint32_t anyNumber(ByteSource& source) {
    switch (source.upTo(7)) {
    case 0:
        return source.take<std::uint32_t>();
    case 1:
        return ~static_cast<std::uint32_t>(source.upTo(3));
    case 2:
        return source.take<std::uint16_t>();
    default:
        return static_cast<std::uint32_t>(source.upTo(9));
    }
}

pcl::PCLPointField anyField(ByteSource& source) {
    static const char* const names[] = {"x",        "y",    "z",        "intensity",
                                        "rgb",      "rgba", "normal_x", "normal_y",
                                        "normal_z", "",     "my_rgba2", "scan"};
    pcl::PCLPointField field;
    const std::size_t name = source.upTo(std::size(names));
    field.name = name < std::size(names) ? names[name] : source.text(source.upTo(20));
    field.offset = anyNumber(source);
    const std::size_t datatype = source.upTo(9);
    field.datatype = static_cast<std::uint8_t>(datatype == 9 ? source.upTo(255) : datatype);
    field.count = source.upTo(2) == 0 ? anyNumber(source) : 1;
    return field;
}

pcl::PCLPointCloud2 anyCloud(ByteSource& source) {
    pcl::PCLPointCloud2 cloud;
    cloud.width = anyNumber(source);
    cloud.height = anyNumber(source);
    cloud.point_step = anyNumber(source);
    cloud.row_step = anyNumber(source);
    cloud.is_bigendian = static_cast<std::uint8_t>(source.upTo(1));
    cloud.is_dense = static_cast<std::uint8_t>(source.upTo(1));
    for (std::size_t fields = source.upTo(8); fields > 0; --fields) {
        cloud.fields.push_back(anyField(source));
    }
    const std::string data = source.rest();
    cloud.data.assign(data.begin(), data.end());
    return cloud;
}

/// Upper bound of the elements that the bodies have. Billions of points or elements are what the
/// cloud asks for.
std::uint64_t elements(const pcl::PCLPointCloud2& cloud) {
    const std::uint32_t product = cloud.width * cloud.height;
    const std::uint64_t points = product > INT32_MAX ? 0 : product;
    std::uint64_t perPoint = 1;
    for (const pcl::PCLPointField& field : cloud.fields) {
        perPoint += field.count > INT32_MAX ? 1 : field.count;
    }
    return std::max<std::uint64_t>(points, 1) * perPoint;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    ByteSource source(bytes, size);
    const pcl::PCLPointCloud2 cloud = anyCloud(source);
    const PLYSerializer serializer;
    FUZZ_VERIFY(serializer.GenerateHeader(cloud, true) == reference::header(cloud, true));
    FUZZ_VERIFY(serializer.GenerateHeader(cloud, false) == reference::header(cloud, false));
    if (elements(cloud) > mostElements) {
        return 0;
    }

    std::vector<unsigned char> binary = {'h'};
    serializer.AppendContentBinary(cloud, binary);
    FUZZ_VERIFY(binary.front() == 'h');
    binary.erase(binary.begin());
    FUZZ_VERIFY(binary == reference::binaryBody(cloud));

    std::ostringstream ascii;
    serializer.WriteDataASCII(cloud, ascii);
    FUZZ_VERIFY(ascii.str() == reference::asciiBody(cloud));
    return 0;
}
