// scan_to_ply OUT.ply [--ascii]: makes a small scan as a 3D camera delivers it, rows of pixels of
// which some are missing, and writes it as a PLY file.

#include "converters/Converters.h"

#include <cmath>
#include <fstream>
#include <iostream>
#include <limits>
#include <string>

namespace {

/// A rippled surface seen from above, in metres. Its corners are missing: nan, by which programs
/// that read the file know them.
pcl::PointCloud<pcl::PointXYZI> takeScan() {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr unsigned columns = 16;
    constexpr unsigned rows = 12;
    constexpr float pixel = 0.01F;

    pcl::PointCloud<pcl::PointXYZI> scan(columns, rows);
    scan.is_dense = false;
    for (unsigned row = 0; row < rows; ++row) {
        for (unsigned column = 0; column < columns; ++column) {
            const bool missing =
                (row == 0 || row == rows - 1) && (column == 0 || column == columns - 1);
            const float x = pixel * static_cast<float>(column);
            const float y = pixel * static_cast<float>(row);
            const float z = 0.005F * std::sin(60.0F * x);
            scan(column, row) = missing ? pcl::PointXYZI(nan, nan, nan, 0.0F)
                                        : pcl::PointXYZI(x, y, z, static_cast<float>(row));
        }
    }
    return scan;
}

bool writeFile(const std::string& path, const std::vector<unsigned char>& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    file.close();
    return !file.fail();
}

} // namespace

int main(int argc, char* argv[]) {
    const bool ascii = argc == 3 && std::string(argv[2]) == "--ascii";
    if (argc != 2 && !ascii) {
        std::cerr << "usage: scan_to_ply OUT.ply [--ascii]\n";
        return 2;
    }

    // The scan is organised: its width and height go into the file, and come back from it.
    const pcl::PointCloud<pcl::PointXYZI> scan = takeScan();
    std::vector<unsigned char> file;
    const bool made =
        ascii ? converters::toPlyAscii(scan, file) : converters::toPlyBinary(scan, file);
    if (!made || !writeFile(argv[1], file)) {
        std::cerr << "scan_to_ply: cannot write " << argv[1] << '\n';
        return 1;
    }
    std::cout << argv[1] << ": " << scan.width << " x " << scan.height << " pixels, " << file.size()
              << " bytes\n";
    return 0;
}
