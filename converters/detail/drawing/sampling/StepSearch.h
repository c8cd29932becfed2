#pragma once

#include <algorithm>
#include <cmath>

namespace converters::drawing {

/// A step that keeps a limit, and a good guess at the one behind it.
struct Step {
    /// 0 where none was found.
    double length;
    double next;
};

/// About the longest step that keeps a limit.
///
/// `excess(h)` says how much a step h takes of what is allowed: at most 1 keeps the limit. It grows
/// about with the square of the step, at least for short ones; nothing else is expected of it, and
/// only steps that it has allowed are returned.
///
/// @param guess  where to begin, above 0
/// @param most   the longest step asked for
/// @param least  shorter steps than this are none
/// @return a step, mostly with an excess of 0.86 to 1
template <typename Excess>
Step longestStep(double guess, double most, double least, const Excess& excess) {
    // More would often take one try more, for points fewer by a hundredth.
    constexpr double wanted = 0.95;
    constexpr double enough = 0.86;
    constexpr int worthwhile = 6;
    constexpr int mostTries = 100;
    double allowed = 0;
    double forbidden = 2 * most;
    double step = std::min(guess, most);
    double next = step;
    for (int i = 0; i < mostTries && step >= least; ++i) {
        const double taken = excess(step);
        next =
            std::isfinite(taken) ? step * std::sqrt(wanted / std::max(taken, 0.06)) : 0.25 * step;
        if (taken <= 1) {
            allowed = step;
            if (step == most || taken >= enough || i >= worthwhile) {
                break;
            }
        } else {
            forbidden = step;
        }
        step = std::min(next, most);
        if (step >= forbidden || step <= allowed) {
            step = 0.5 * (allowed + forbidden);
        }
    }
    return {allowed, next};
}

} // namespace converters::drawing
