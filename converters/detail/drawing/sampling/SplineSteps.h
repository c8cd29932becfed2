#pragma once

#include "converters/detail/drawing/sampling/EvenSteps.h"
#include "converters/detail/drawing/sampling/Sampling.h"
#include "converters/detail/drawing/sampling/SplineChord.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace converters::drawing {

/// A smooth way along a plain spline, divided at once into steps that take about the same of the
/// limits: a good deal faster than trying how far each may go, where spans have some steps each.
class SplineSteps {
public:
    /// @param curves  isPlain(); as the limits, they have to outlive this object
    SplineSteps(SplineCurves& curves, const SamplingLimits& limits)
        : m_curves(curves), m_limits(limits) {}

    /// Divides the way from a place to a parameter above it.
    ///
    /// @return false where trying is better
    bool divide(const SplinePlace& from, double to);

    /// Calls take(place, fits) for the end of each step until it returns false; `fits` says whether
    /// its chord is proven to keep the limits.
    ///
    /// @return what it returned last
    template <typename Take>
    bool visit(const Take& take) const {
        for (const Piece& piece : m_pieces) {
            for (std::size_t i = std::max<std::size_t>(piece.begin, 1); i < piece.end; ++i) {
                const SplinePlace place{m_ends[i], piece.span, piece.at(m_ends[i] - piece.knot), 1};
                if (!take(place, m_excess[i - 1] <= 1)) {
                    return false;
                }
            }
        }
        return true;
    }

private:
    /// The way's part on a span.
    struct Piece {
        std::size_t span;
        double knot;
        Point start;
        Motion motion;
        /// Which ends of steps are within.
        std::size_t begin;
        std::size_t end;

        Point at(double behind) const {
            const double third = behind * (1. / 3);
            return start + behind * (motion.velocity +
                                     (0.5 * behind) * (motion.acceleration + third * motion.jerk));
        }
    };

    bool planByBends(const SplinePlace& from, double to);
    void plan(const Piece& piece, double from, double to);
    bool planByExcess();
    void layOut(double number);
    bool measure();
    void measureWithin(const Piece& piece);
    double excessBetween(const Piece& piece, const Piece& next, std::size_t step);

    SplineCurves& m_curves;
    const SamplingLimits& m_limits;
    EvenSteps m_plan;
    std::vector<Piece> m_pieces;
    /// The start, and the ends of all steps.
    std::vector<double> m_ends;
    /// Of the steps.
    std::vector<double> m_excess;
};

} // namespace converters::drawing
