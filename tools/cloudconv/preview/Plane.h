#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

/// A place in the plane of a picture: in coordinates of what is shown, or in pixels with y down.
struct Place {
    double x;
    double y;
};

/// Whether a place can be shown. Coordinates beyond 1e300 are as little a place as nan: differences
/// of such numbers overflow.
inline bool canBeShown(const Place& place) {
    constexpr double farthest = 1e300;
    return std::abs(place.x) <= farthest && std::abs(place.y) <= farthest;
}

inline double distanceOf(const Place& a, const Place& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

/// A stretch of numbers; empty when low is above high, as at first.
struct Interval {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    bool isEmpty() const { return low > high; }
    void add(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
};

/// The smallest rectangle around places.
struct Bounds {
    Interval x;
    Interval y;

    bool isEmpty() const { return x.isEmpty(); }
    void add(const Place& place) {
        x.add(place.x);
        y.add(place.y);
    }
};

/// A part of a picture, in pixels with y down.
struct Rectangle {
    double left;
    double top;
    double width;
    double height;

    double right() const { return left + width; }
    double bottom() const { return top + height; }
};
