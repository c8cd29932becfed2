// robot_loop IN.dxf SPEED PERIOD: plays the path of a drawing to a robot. Every PERIOD seconds its
// controller asks where the tool shall be; here each answer is printed as "seconds,x,y,z,works".
// The tool moves at SPEED millimetres a second, along the contours (works is 1) and on the straight
// ways between them (0), and stands still nowhere.

#include "converters/DrawingPath.h"

#include <cmath>
#include <cstdlib>
#include <iostream>

namespace {

using Point = cv::Point3_<double>;

double distance(const Point& from, const Point& to) {
    return std::hypot(to.x - from.x, to.y - from.y, to.z - from.z);
}

/// Where a tool at constant speed is at each tick of the loop.
class Loop {
public:
    Loop(const Point& start, double speed, double period)
        : m_here(start), m_speed(speed), m_period(period) {
        send(start, true);
    }

    /// Moves on to a point, and answers each tick on the way.
    void moveTo(const Point& to, bool works) {
        double rest = distance(m_here, to);
        while (m_untilTick <= rest) {
            m_here += (to - m_here) * (m_untilTick / rest);
            rest -= m_untilTick;
            send(m_here, works);
        }
        m_untilTick -= rest;
        m_here = to;
    }

private:
    void send(const Point& point, bool works) {
        std::cout << static_cast<double>(m_ticks++) * m_period << ',' << point.x << ',' << point.y
                  << ',' << point.z << ',' << works << '\n';
        m_untilTick = m_speed * m_period;
    }

    Point m_here;
    double m_speed;
    double m_period;
    /// Millimetres that are left until the next tick.
    double m_untilTick = 0;
    long m_ticks = 0;
};

} // namespace

int main(int argc, char* argv[]) {
    const double speed = argc == 4 ? std::strtod(argv[2], nullptr) : 0;
    const double period = argc == 4 ? std::strtod(argv[3], nullptr) : 0;
    if (!(speed > 0 && period > 0)) {
        std::cerr << "usage: robot_loop IN.dxf SPEED PERIOD\n";
        return 2;
    }
    converters::PathOptions options;
    options.unit = converters::LengthUnit::millimetre;
    options.order = converters::PathOrder::insideFirst;
    converters::DrawingPath path;
    const auto result = converters::readPath(std::filesystem::path(argv[1]), path, options);
    if (!result || path.contours.empty()) {
        std::cerr << "robot_loop: " << argv[1] << ": "
                  << (result ? "nothing to follow" : result.reason) << '\n';
        return 1;
    }

    Loop loop(path.points.front(), speed, period);
    for (const converters::PathContour& contour : path.contours) {
        loop.moveTo(path.points[contour.firstPoint], false);
        for (std::size_t i = contour.firstPoint + 1; i < contour.endPoint; ++i) {
            loop.moveTo(path.points[i], true);
        }
    }
    return std::cout.flush() ? 0 : 1;
}
