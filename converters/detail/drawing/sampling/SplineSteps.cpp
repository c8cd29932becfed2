// Where steps are to end is planned by how much the curve bends, then each step is measured. Where
// some take more than they may, what all of them take tells the density that they need, and the
// second plan is nearly even.

#include "converters/detail/drawing/sampling/SplineSteps.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace converters::drawing {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::size_t nodesOfSpan = 4;
/// More steps than a plan asks for, so many that all fit, mostly.
constexpr double slack = 1.03;

/// Where less than this is needed for a span, steps cross many of them, and trying is better.
constexpr double leastSteps = 4;
/// More are not held at once.
constexpr double mostSteps = 1 << 16;

} // namespace

bool SplineSteps::divide(const SplinePlace& from, double to) {
    if (!planByBends(from, to)) {
        return false;
    }
    const double number = std::ceil(m_plan.total() * slack);
    if (!(number >= leastSteps * static_cast<double>(m_pieces.size()) && number <= mostSteps)) {
        return false;
    }
    layOut(number);
    if (!measure() && planByExcess()) {
        layOut(std::ceil(m_plan.total() * slack));
        measure();
    }
    return true;
}

/// @return false where a good many spans need few steps, and where there are too many of them
bool SplineSteps::planByBends(const SplinePlace& from, double to) {
    constexpr std::size_t many = 8;
    const SplineSpans& spans = m_curves.spans();
    m_pieces.clear();
    m_plan.begin(from.parameter);
    for (std::size_t span = from.span; span < spans.last() && m_plan.end() < to; ++span) {
        const double knot = spans.knot(span);
        const double begin = std::max(knot, from.parameter);
        const double end = std::min(spans.knot(span + 1), to);
        if (begin < end) {
            const SplineCurves::Span& kept = m_curves.span(span);
            m_pieces.push_back({span, knot, kept.curve.points[0].place(), kept.motion, 0, 0});
            plan(m_pieces.back(), begin, end);
        }
        const bool areFew =
            m_plan.total() < 0.5 * leastSteps * static_cast<double>(m_pieces.size());
        if ((areFew && m_pieces.size() >= many) || m_plan.total() > mostSteps) {
            return false;
        }
    }
    return m_plan.total() > 0;
}

void SplineSteps::plan(const Piece& piece, double from, double to) {
    const double bends = 1 / (8 * m_limits.tolerance);
    const double spaces = 1 / (m_limits.step * m_limits.step);
    const double part = (to - from) / static_cast<double>(nodesOfSpan);
    double bend[nodesOfSpan + 3];
    double space[nodesOfSpan + 1];
    for (std::size_t i = 0; i <= nodesOfSpan; ++i) {
        const double behind = from - piece.knot + static_cast<double>(i) * part;
        const Motion& motion = piece.motion;
        const Vector acceleration = motion.acceleration + behind * motion.jerk;
        const Vector velocity =
            motion.velocity + behind * (motion.acceleration + (0.5 * behind) * motion.jerk);
        const Vector across = acceleration.cross(velocity);
        const double square = velocity.dot(velocity);
        bend[i + 1] = bends * std::sqrt(across.dot(across) / square);
        space[i] = square * spaces;
    }
    bend[0] = bend[2];
    bend[nodesOfSpan + 2] = bend[nodesOfSpan];
    double before = 0;
    for (std::size_t i = 0; i <= nodesOfSpan; ++i) {
        // Also where it bends over: no step is all within so short a part.
        const double mean = 0.25 * (bend[i] + bend[i + 2]) + 0.5 * bend[i + 1];
        const double density = std::sqrt(std::max(mean, space[i]));
        if (i > 0) {
            m_plan.add(i == nodesOfSpan ? to : from + static_cast<double>(i) * part,
                       0.5 * part * (before + density));
        }
        before = density;
    }
}

/// @return false where the excess of a step is not known
bool SplineSteps::planByExcess() {
    constexpr double least = 0.05;
    m_plan.begin(m_ends.front());
    for (std::size_t i = 0; i < m_excess.size(); ++i) {
        m_plan.add(m_ends[i + 1], std::sqrt(std::max(m_excess[i], least)));
    }
    return std::isfinite(m_plan.total());
}

void SplineSteps::layOut(double number) {
    m_ends.clear();
    m_ends.reserve(static_cast<std::size_t>(number) + 1);
    m_ends.push_back(m_plan.start());
    auto piece = m_pieces.begin();
    piece->begin = 0;
    m_plan.divide(static_cast<std::size_t>(number), [&](const double* ends, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            while (piece + 1 != m_pieces.end() && ends[i] > (piece + 1)->knot) {
                piece->end = m_ends.size();
                ++piece;
                piece->begin = m_ends.size();
            }
            m_ends.push_back(ends[i]);
        }
        return true;
    });
    piece->end = m_ends.size();
    while (++piece != m_pieces.end()) {
        piece->begin = piece->end = m_ends.size();
    }
    m_excess.resize(m_ends.size() - 1);
}

/// @return whether all fit
bool SplineSteps::measure() {
    std::fill(m_excess.begin(), m_excess.end(), infinity);
    const Piece* last = m_pieces.data();
    for (const Piece& piece : m_pieces) {
        if (piece.begin == piece.end) {
            continue;
        }
        if (&piece != last) {
            m_excess[piece.begin - 1] = excessBetween(*last, piece, piece.begin - 1);
        }
        measureWithin(piece);
        last = &piece;
    }
    return std::all_of(m_excess.begin(), m_excess.end(), [](double excess) { return excess <= 1; });
}

double SplineSteps::excessBetween(const Piece& piece, const Piece& next, std::size_t step) {
    const double from = m_ends[step];
    const double to = m_ends[step + 1];
    if (!(from < to)) {
        return infinity;
    }
    const SplinePlace start{from, piece.span, piece.at(from - piece.knot), 1};
    const SplinePlace end{to, next.span, next.at(to - next.knot), 1};
    return excessOf(m_curves, start, end, m_limits);
}

void SplineSteps::measureWithin(const Piece& piece) {
    constexpr double evenly = 0.0641500299099585; // 1 / (9 sqrt(3))
    const double bends = evenly * evenly / (m_limits.tolerance * m_limits.tolerance);
    const double spaces = 1 / (m_limits.step * m_limits.step);
    const Motion motion = piece.motion;
    const double* const ends = m_ends.data();
    double* const excess = m_excess.data();
    for (std::size_t i = piece.begin; i + 1 < piece.end; ++i) {
        const double from = ends[i] - piece.knot;
        const double step = ends[i + 1] - ends[i];
        const double middle = from + 0.5 * step;
        const double square = step * step;
        const Vector mean = motion.velocity + middle * motion.acceleration +
                            (0.5 * middle * middle + square / 24) * motion.jerk;
        const Vector first = motion.acceleration + from * motion.jerk;
        const Vector last = first + step * motion.jerk;
        const double speed = mean.dot(mean);
        const double along = step * std::max(std::fabs(first.dot(mean)), std::fabs(last.dot(mean)));
        const Vector firstAcross = first.cross(mean);
        const Vector lastAcross = last.cross(mean);
        const double atFirst = firstAcross.dot(firstAcross);
        const double atLast = lastAcross.dot(lastAcross);
        const double sum = atFirst + atLast + 2 * std::sqrt(atFirst * atLast);
        const double bend = std::sqrt(bends * square * square * sum / speed);
        const double most = std::max(bend, square * speed * spaces);
        // What is along the chord grows all the time when it changes by less than its mean. Squares
        // of other lengths vanish or overflow.
        const double doubt =
            std::max({along / speed, 1e-100 / (square * speed), speed * 1e-100, sum * 1e-200});
        excess[i] = doubt <= 1 ? most : infinity;
    }
}

} // namespace converters::drawing
