#pragma once

namespace converters::drawing {

constexpr double pi = 3.14159265358979323846;
constexpr double fullTurn = 2 * pi;

/// An angle, with its cosine and sine.
///
/// Made of degrees, multiples of 90 have exact cosines and sines: a block that is turned by 90
/// degrees keeps straight lines straight.
class Angle {
public:
    /// @param degrees  any; what is not finite counts as 0
    static Angle fromDegrees(double degrees);
    /// @param radians  any; what is not finite counts as 0
    static Angle fromRadians(double radians);

    double radians() const { return m_radians; }
    double cos() const { return m_cos; }
    double sin() const { return m_sin; }

private:
    Angle(double radians, double cosine, double sine)
        : m_radians(radians), m_cos(cosine), m_sin(sine) {}

    double m_radians;
    double m_cos;
    double m_sin;
};

} // namespace converters::drawing
