#include "converters/ScanLayout.h"

#include <cstddef>

namespace converters {

ScanLayout layoutOfPointXYZI() {
    using Point = pcl::PointXYZI;
    return {{{"x", ScalarType::float32, offsetof(Point, x)},
             {"y", ScalarType::float32, offsetof(Point, y)},
             {"z", ScalarType::float32, offsetof(Point, z)},
             {"intensity", ScalarType::float32, offsetof(Point, intensity)}},
            sizeof(Point)};
}

ScanLayout layoutOf(const pcl::PCLPointCloud2& cloud) {
    ScanLayout layout;
    for (const pcl::PCLPointField& field : cloud.fields) {
        if (field.count == 1 && field.datatype >= pcl::PCLPointField::INT8 &&
            field.datatype <= pcl::PCLPointField::FLOAT64) {
            layout.fields.push_back(
                {field.name, static_cast<ScalarType>(field.datatype), field.offset});
        }
    }
    layout.recordSize = cloud.point_step;
    return layout;
}

} // namespace converters
