#pragma once

#include "converters/detail/drawing/geometry/SplineSpans.h"
#include "converters/detail/drawing/sampling/Sampling.h"

#include <array>
#include <cstddef>
#include <optional>

namespace converters::drawing {

/// The derivatives of a cubic curve at the lower end of its span, by the parameter of the spline.
struct Motion {
    Vector velocity;
    Vector acceleration;
    Vector jerk;
};

/// The polynomial curves of a spline as they are needed: the last few are kept.
class SplineCurves {
public:
    explicit SplineCurves(const SplineSpans& spans)
        : m_spans(spans), m_isPlain(!spans.isRational() && spans.degree() <= 3) {}

    struct Span {
        BezierCurve curve{0};
        /// By the parameter of the spline, not that of [0, 1].
        BezierCurve second{0};
        Motion motion;
        std::size_t index = 0;
    };

    const SplineSpans& spans() const { return m_spans; }

    /// Whether spans have a motion: without weights, and at most cubic.
    bool isPlain() const { return m_isPlain; }

    /// The span with this index, which is not empty. Valid until the next but seven.
    const Span& span(std::size_t index) {
        Span& kept = m_kept[index % m_kept.size()];
        // No span has the index 0, which empty places have: the first is that of the degree.
        if (kept.index != index) {
            keep(index, kept);
        }
        return kept;
    }

private:
    void keep(std::size_t index, Span& span) const;

    const SplineSpans& m_spans;
    const bool m_isPlain;
    std::array<Span, 8> m_kept;
};

/// A place on a spline.
struct SplinePlace {
    double parameter;
    /// The span that it is in; of two that meet there, either.
    std::size_t span;
    Point point;
    double weight;
};

/// The place at a parameter in this span.
SplinePlace placeOn(SplineCurves& curves, double parameter, std::size_t span);

/// What the chord of a step within a span takes of the limits; at most 1 is proven to keep them.
/// Infinite where nothing is known.
///
/// @param from  how far behind the lower end of the span the step begins
double excessWithin(const Motion& motion, double from, double step, const SamplingLimits& limits);

/// The same between any two places.
double excessOf(SplineCurves& curves, const SplinePlace& from, const SplinePlace& to,
                const SamplingLimits& limits);

} // namespace converters::drawing
