// What a program that uses the library looks like: headers of every folder, one conversion.
#include <converters/Converters.h>
#include <converters/mpaths.h>
#include <dxfeditor/DXFAdapter.h>
#include <dxfeditor/DXFDocument.h>
#include <dxfeditor/DXFPointVector.h>
#include <universal_log_interface/universal_log_interface.h>

#include <iostream>

int main() {
    pcl::PointCloud<pcl::PointXYZI> cloud;
    pcl::PointXYZI point;
    point.x = 1.0F;
    point.y = 2.0F;
    point.z = 3.0F;
    point.intensity = 4.0F;
    cloud.push_back(point);

    std::vector<unsigned char> file;
    if (!converters::toPlyAscii(cloud, file)) {
        return 1;
    }
    std::cout.write(reinterpret_cast<const char*>(file.data()),
                    static_cast<std::streamsize>(file.size()));

    DXFDocument drawing;
    drawing.addEntity(DXFAdapter::makePointVector({cv::Point3_<double>(1.0, 2.0, 3.0)}));
    drawing.setup();
    p7::deliver(p7::level_info, __LINE__, "consumer", "main", "%s",
                mpaths::getTMP_DIRECTORY().c_str());
    return drawing.entities().size() == 1 ? 0 : 1;
}
