#pragma once

#include "converters/detail/drawing/geometry/SplineSpans.h"
#include "converters/detail/drawing/sampling/Sampling.h"

#include <array>
#include <cstddef>
#include <optional>

namespace converters::drawing {

/// The polynomial curves of a spline as they are needed: the last few are kept.
class SplineCurves {
public:
    explicit SplineCurves(const SplineSpans& spans) : m_spans(spans) {}

    struct Span {
        BezierCurve curve{0};
        /// By the parameter of the spline, not that of [0, 1].
        BezierCurve second{0};
        std::size_t index = 0;
    };

    const SplineSpans& spans() const { return m_spans; }

    /// The span with this index, which is not empty. Valid until the next but seven.
    const Span& span(std::size_t index);

private:
    const SplineSpans& m_spans;
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

/// What the chord between two places takes of the limits; at most 1 is proven to keep them.
/// Infinite where nothing is known.
double excessOf(SplineCurves& curves, const SplinePlace& from, const SplinePlace& to,
                const SamplingLimits& limits);

} // namespace converters::drawing
