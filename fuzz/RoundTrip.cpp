// What the library writes, it reads back: clouds through both PLY forms, points through DXF.
#include "converters/Converters.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFReader.h"
#include "fuzz/support/ByteSource.h"
#include "fuzz/support/Verify.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

using Bytes = std::vector<unsigned char>;
using Cloud = pcl::PointCloud<pcl::PointXYZI>;
using Points = std::vector<cv::Point3_<double>>;

/// The value that six significant digits of `value` say.
float bySixDigits(float value) {
    if (!std::isfinite(value)) {
        return value;
    }
    char digits[32];
    const int length = std::snprintf(digits, sizeof digits, "%.6g", static_cast<double>(value));
    // Smaller than the smallest: the reader gives 0 with the sign, larger than the largest: that.
    const double wide =
        std::strtod(std::string(digits, static_cast<std::size_t>(length)).c_str(), nullptr);
    const auto narrow = static_cast<float>(wide);
    return std::isinf(narrow) ? std::copysign(std::numeric_limits<float>::max(), narrow) : narrow;
}

bool isSame(float a, float b) {
    return std::isnan(a) ? std::isnan(b) : a == b;
}

void clouds(const Cloud& cloud) {
    Bytes file;
    FUZZ_VERIFY(converters::toPlyBinary(cloud, file) == !cloud.empty());
    Cloud back;
    const converters::PlyReadResult result = converters::fromPly(file, back);
    FUZZ_VERIFY(result.success && result.emptySceneInTeach == cloud.empty());
    if (cloud.empty()) {
        return;
    }
    FUZZ_VERIFY(back.size() == cloud.size() && back.width == cloud.width);
    for (std::size_t i = 0; i < cloud.size(); ++i) {
        FUZZ_VERIFY(std::memcmp(&back[i].x, &cloud[i].x, 12) == 0);
        FUZZ_VERIFY(std::memcmp(&back[i].intensity, &cloud[i].intensity, 4) == 0);
    }
    FUZZ_VERIFY(converters::toPlyAscii(cloud, file) && converters::fromPly(file, back).success);
    for (std::size_t i = 0; i < cloud.size(); ++i) {
        FUZZ_VERIFY(isSame(back[i].x, bySixDigits(cloud[i].x)));
        FUZZ_VERIFY(isSame(back[i].y, bySixDigits(cloud[i].y)));
        FUZZ_VERIFY(isSame(back[i].z, bySixDigits(cloud[i].z)));
        FUZZ_VERIFY(isSame(back[i].intensity, bySixDigits(cloud[i].intensity)));
    }
}

/// A number of few digits, which sixteen decimals tell exactly.
double plainNumber(ByteSource& source) {
    return static_cast<double>(source.take<std::int32_t>()) / 4096.0;
}

void drawings(const Points& points) {
    Bytes file;
    FUZZ_VERIFY(converters::toDxf(points, file));
    const std::vector<char> text(file.begin(), file.end());
    DXFDocument document;
    FUZZ_VERIFY(DXFReader(document).load(text));
    Points back;
    for (const auto& entity : document.entities()) {
        if (const auto* vector = dynamic_cast<const DXFPointVector*>(entity.get())) {
            back = vector->points();
        }
    }
    FUZZ_VERIFY(points.size() < 2 || back == points);
    Points walk;
    FUZZ_VERIFY(converters::fromDxf(text, walk) && walk.size() == points.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    ByteSource source(bytes, size);
    // The file system is slow.
    if (source.upTo(15) == 0) {
        Points points(std::min<std::size_t>(source.size() / 12, 300));
        for (cv::Point3_<double>& point : points) {
            point.x = plainNumber(source);
            point.y = plainNumber(source);
            point.z = plainNumber(source);
        }
        drawings(points);
        return 0;
    }
    Cloud cloud;
    for (std::size_t count = std::min<std::size_t>(source.size() / 16, 1000); count > 0; --count) {
        pcl::PointXYZI point;
        point.x = source.take<float>();
        point.y = source.take<float>();
        point.z = source.take<float>();
        point.intensity = source.take<float>();
        cloud.push_back(point);
    }
    clouds(cloud);
    return 0;
}
