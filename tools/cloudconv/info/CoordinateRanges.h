#pragma once

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

/// The range of some numbers, those that are not finite left out.
class Range {
public:
    void add(double value) {
        if (std::isfinite(value)) {
            m_least = std::min(m_least, value);
            m_most = std::max(m_most, value);
        }
    }
    bool isEmpty() const { return m_least > m_most; }
    double least() const { return m_least; }
    double most() const { return m_most; }
    nlohmann::ordered_json json() const {
        return isEmpty() ? nlohmann::ordered_json() : nlohmann::ordered_json{m_least, m_most};
    }

private:
    double m_least = std::numeric_limits<double>::infinity();
    double m_most = -std::numeric_limits<double>::infinity();
};

/// The ranges of coordinates.
class CoordinateRanges {
public:
    void add(double x, double y, double z) {
        m_x.add(x);
        m_y.add(y);
        m_z.add(z);
    }
    nlohmann::ordered_json json() const {
        return {{"x", m_x.json()}, {"y", m_y.json()}, {"z", m_z.json()}};
    }

private:
    Range m_x;
    Range m_y;
    Range m_z;
};
