// drawing_to_walk IN.dxf: prints the walk along a drawing as lines "contour,x,y,z", and tells the
// contours on standard error.

#include "dxfeditor/DXFContour.h"
#include "dxfeditor/DXFDocument.h"

#include <cmath>
#include <cstddef>
#include <iostream>
#include <limits>
#include <memory>
#include <vector>

namespace {

using Points = std::vector<cv::Point3_<double>>;

/// Length of the walk along a contour, in drawing units.
double lengthOf(const DXFContour& contour, const Points& walk) {
    double length = 0.0;
    for (std::size_t i = contour.begin + 1; i < contour.end; ++i) {
        const cv::Point3_<double>& from = walk[i - 1];
        const cv::Point3_<double>& to = walk[i];
        length += std::hypot(to.x - from.x, to.y - from.y, to.z - from.z);
    }
    return length;
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::cerr << "usage: drawing_to_walk IN.dxf\n";
        return 2;
    }
    const std::shared_ptr<DXFDocument> drawing = DXFDocument::load(argv[1]);
    if (!drawing) {
        std::cerr << "drawing_to_walk: cannot read " << argv[1] << '\n';
        return 1;
    }

    drawing->setup();
    std::vector<DXFContour> contours;
    const Points walk = drawing->getPoints(contours);

    std::cout.precision(std::numeric_limits<double>::max_digits10);
    std::cout << "contour,x,y,z\n";
    for (std::size_t number = 0; number < contours.size(); ++number) {
        const DXFContour& contour = contours[number];
        for (std::size_t i = contour.begin; i < contour.end; ++i) {
            std::cout << number << ',' << walk[i].x << ',' << walk[i].y << ',' << walk[i].z << '\n';
        }
        std::cerr << "contour " << number << ": " << (contour.closed ? "closed" : "open") << ", "
                  << contour.end - contour.begin << " points, " << lengthOf(contour, walk)
                  << " long\n";
    }
    return std::cout.flush() ? 0 : 1;
}
