// Both converters::fromDxf on any bytes.
#include "converters/Converters.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFReader.h"
#include "fuzz/support/ClaimedWork.h"
#include "fuzz/support/Verify.h"

#include <cstring>

namespace {

bool isNear(float narrow, double wide) {
    const auto expected = static_cast<float>(wide);
    return std::memcmp(&narrow, &expected, sizeof narrow) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::vector<char> data(bytes, bytes + size);
    DXFDocument document;
    const bool isRead = DXFReader(document).load(data.data(), data.size());
    FUZZ_VERIFY(isRead == !data.empty());
    if (claimedWork(document) > mostClaimedWork) {
        return 0;
    }

    std::vector<cv::Point3_<double>> points(1);
    FUZZ_VERIFY(converters::fromDxf(data, points) == isRead);
    FUZZ_VERIFY(isRead || points.size() == 1);

    pcl::PointCloud<pcl::PointXYZ> cloud;
    FUZZ_VERIFY(converters::fromDxf(data, cloud) == isRead);
    if (isRead) {
        FUZZ_VERIFY(cloud.size() == points.size() && cloud.width == 0 && cloud.height == 0);
        for (std::size_t i = 0; i < points.size(); ++i) {
            FUZZ_VERIFY(isNear(cloud[i].x, points[i].x) && isNear(cloud[i].y, points[i].y) &&
                        isNear(cloud[i].z, points[i].z));
        }
    }
    return 0;
}
