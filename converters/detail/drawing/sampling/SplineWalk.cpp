// From corner to corner, chord by chord, each about as long as the limits allow.

#include "converters/detail/drawing/sampling/SplineWalk.h"

#include "converters/detail/drawing/geometry/SplineSpans.h"
#include "converters/detail/drawing/sampling/SplineChord.h"
#include "converters/detail/drawing/sampling/SplineCorners.h"
#include "converters/detail/drawing/sampling/SplineSteps.h"
#include "converters/detail/drawing/sampling/StepSearch.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace converters::drawing {

namespace {

class Walk {
public:
    Walk(const BSpline& spline, const SamplingLimits& limits, PointSink& sink)
        : m_spans(spline), m_curves(m_spans), m_limits(limits), m_sink(sink),
          m_here(placeOn(m_curves, m_spans.from(), m_spans.spanOf(m_spans.from()))),
          m_last(m_here.point) {
        const double most = std::max(std::fabs(m_spans.from()), std::fabs(m_spans.to()));
        m_leastStep = std::max(0x1p-50 * most, 0x1p-60 * (m_spans.to() - m_spans.from()));
    }

    bool whole() {
        const std::vector<double> corners = cornersOf(m_spans);
        const double first = corners.front();
        // A loop that is smaller than the tolerance keeps its shape as a triangle.
        const bool loops =
            corners.size() == 1 && distance(m_spans.start(), m_spans.end()) <= m_limits.tolerance;
        m_longestStep = loops ? (first - m_spans.from()) / 3 : first - m_spans.from();
        for (const double corner : corners) {
            m_guess = corner - m_here.parameter;
            if (!walkTo(corner, corner == corners.back()) || !jump()) {
                return false;
            }
            m_longestStep = m_spans.to() - m_spans.from();
        }
        return true;
    }

private:
    /// The place at a parameter that is not before the present one.
    SplinePlace placeAt(double parameter) {
        std::size_t span = m_here.span;
        while (span + 1 < m_spans.last() && m_spans.knot(span + 1) < parameter) {
            ++span;
        }
        while (!(m_spans.width(span) > 0)) {
            --span;
        }
        return placeOn(m_curves, parameter, span);
    }

    /// The next place towards a corner; none where a step would have to be too short to be one.
    std::optional<SplinePlace> next(double corner) {
        const double rest = corner - m_here.parameter;
        SplinePlace place = m_here;
        const double behind = m_here.parameter - m_spans.knot(m_here.span);
        const double within = m_curves.isPlain() ? m_spans.width(m_here.span) - behind : 0;
        const auto tryStep = [&](double step) {
            if (step <= within) {
                const double excess =
                    excessWithin(m_curves.span(m_here.span).motion, behind, step, m_limits);
                if (std::isfinite(excess)) {
                    return excess;
                }
            }
            place = placeAt(step == rest ? corner : m_here.parameter + step);
            return excessOf(m_curves, m_here, place, m_limits);
        };
        if (rest <= m_leastStep) {
            return placeAt(corner);
        }
        const Step step = longestStep(m_guess, std::min(rest, m_longestStep), m_leastStep, tryStep);
        m_guess = step.next;
        const double parameter = step.length == rest ? corner : m_here.parameter + step.length;
        if (!(parameter > m_here.parameter)) {
            return std::nullopt;
        }
        return place.parameter == parameter ? place : placeAt(parameter);
    }

    bool walkTo(double corner, bool isEnd) {
        if (!m_curves.isPlain() || !m_steps.divide(m_here, corner)) {
            return walkByTrying(corner, isEnd);
        }
        return m_steps.visit([&](const SplinePlace& place, bool fits) {
            const bool isLast = place.parameter == corner;
            if (!fits) {
                m_guess = 0.5 * (place.parameter - m_here.parameter);
                return walkByTrying(place.parameter, isEnd && isLast);
            }
            m_here = isLast ? placeAt(corner) : place;
            return isEnd && isLast ? takeEnd() : take(m_here.point);
        });
    }

    bool walkByTrying(double corner, bool isEnd) {
        while (m_here.parameter < corner) {
            const std::optional<SplinePlace> place = next(corner);
            if (!place) {
                return false;
            }
            m_here = *place;
            const bool ended = isEnd && m_here.parameter == corner;
            if (!(ended ? takeEnd() : take(m_here.point))) {
                return false;
            }
        }
        return true;
    }

    /// Goes on where the curve does, should it be broken at a knot that is one too many times
    /// there.
    bool jump() {
        const std::size_t span = m_spans.spanOf(m_here.parameter);
        if (span == m_here.span || m_here.parameter >= m_spans.to()) {
            return true;
        }
        m_here = placeOn(m_curves, m_here.parameter, span);
        const bool broken = m_spans.knot(span - m_spans.degree()) == m_here.parameter;
        return !broken || take(m_here.point);
    }

    /// Takes a point, but none twice: where all control points of a span are one, the curve stands
    /// still.
    bool take(const Point& point) {
        if (isWhereLastWas(point)) {
            return true;
        }
        if (!takeWaiting()) {
            return false;
        }
        m_last = point;
        m_isWaiting = true;
        return true;
    }

    bool takeEnd() {
        const Point end = m_spans.end();
        return ((m_isWaiting && isWhereLastWas(end)) || takeWaiting()) &&
               m_sink.take([&] { return end; });
    }

    bool takeWaiting() {
        return !std::exchange(m_isWaiting, false) || m_sink.take([&] { return m_last; });
    }

    /// But for rounding.
    bool isWhereLastWas(const Point& point) const {
        constexpr double rounding = 1e-15;
        const double size = std::fabs(point.x) + std::fabs(point.y) + std::fabs(point.z);
        return distance(point, m_last) <= rounding * size;
    }

    const SplineSpans m_spans;
    SplineCurves m_curves;
    const SamplingLimits& m_limits;
    PointSink& m_sink;
    SplinePlace m_here;
    /// The point taken last; it waits for the next, since the end may take its place.
    Point m_last;
    bool m_isWaiting = false;
    double m_leastStep = 0;
    double m_longestStep = 0;
    double m_guess = 0;
    SplineSteps m_steps{m_curves, m_limits};
};

} // namespace

bool walkSpline(const BSpline& spline, const SamplingLimits& limits, PointSink& sink) {
    return Walk(spline, limits, sink).whole();
}

} // namespace converters::drawing
