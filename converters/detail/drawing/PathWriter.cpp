#include "converters/detail/drawing/PathWriter.h"

#include "converters/detail/drawing/ContourCounter.h"
#include "converters/detail/drawing/ContourWalk.h"
#include "converters/detail/drawing/ContourWriter.h"
#include "converters/detail/drawing/PathSizes.h"

#include <algorithm>
#include <cmath>

namespace converters::drawing {

namespace {

/// Calls follow(link) from a link on until it returns false.
/// @return the link that it did so for, or the number of links
template <typename Follow>
std::size_t followLinks(const std::vector<ChainLink>& links, std::size_t from,
                        const Progress& progress, const Follow& follow) {
    constexpr std::size_t linksPerReport = 1 << 12;
    for (std::size_t i = from; i < links.size(); ++i) {
        if (!follow(links[i])) {
            return i;
        }
        if (i % linksPerReport == linksPerReport - 1) {
            progress.report(static_cast<double>(i) / static_cast<double>(links.size()));
        }
    }
    return links.size();
}

/// Room for what so many entities mostly become: memory that is not touched costs nothing, moving
/// what has grown does.
void reserveFor(const std::vector<ChainLink>& links, const SamplingLimits& limits,
                std::size_t mostPoints, PathContours& contours) {
    const std::size_t entities = links.size();
    const std::size_t pointsOfOne = std::isinf(limits.step) ? 64 : 192;
    constexpr std::size_t piecesOfOne = 4;
    constexpr std::size_t arcsOfOne = 2;
    const auto ends = static_cast<std::size_t>(std::count_if(
        links.begin(), links.end(), [](const ChainLink& link) { return link.endsChain; }));
    PathSizes sizes;
    sizes.points = std::min(entities * pointsOfOne, mostPoints);
    sizes.pieces = std::min(entities * piecesOfOne, mostPoints);
    sizes.arcs = std::min(entities * arcsOfOne, mostPoints);
    sizes.entities = std::min(entities, mostPoints);
    sizes.contours = std::min(ends, mostPoints);
    reserve(sizes, contours);
}

} // namespace

// Up to some number of points, what is written needs no counting first.
void PathWriter::write(PathContours& contours, std::size_t enough, const Progress& progress) {
    if (isAtEnd()) {
        return;
    }
    constexpr std::size_t freely = 1 << 21;
    const std::vector<ChainLink>& links = m_joined.links;
    const std::size_t allowed = m_limits.maximumPoints - m_points;
    const std::size_t room = std::min(allowed, freely);
    if (enough == all) {
        reserveFor(links, m_limits, room, contours);
    }
    const auto isEnough = [enough](bool isInContour, std::uint64_t points) {
        return !isInContour && points >= enough && points > 0;
    };
    ContourWriter writer(m_joined, m_limits, room, m_samples, contours, m_bounds);
    ContourWalk<ContourWriter> walk(m_joined, m_limits.tolerance, writer);
    m_next = followLinks(links, m_next, progress, [&](const ChainLink& link) {
        if (isEnough(walk.isInContour(), contours.points.size())) {
            return false;
        }
        const ContourWriter::Mark mark = writer.mark();
        const ContourState state = walk.state();
        walk.follow(link);
        if (writer.isFull()) {
            writer.takeBackTo(mark);
            walk.state() = state;
        }
        return !writer.isFull();
    });
    if (writer.isFull()) {
        ContourCounter counter(m_limits, allowed, m_samples, sizesOf(contours));
        ContourWalk<ContourCounter> counting(m_joined, m_limits.tolerance, counter);
        counting.state() = walk.state();
        followLinks(links, m_next, progress.part(partDone(), partDone()),
                    [&](const ChainLink& link) {
                        if (isEnough(counting.isInContour(), counter.sizes().points)) {
                            return false;
                        }
                        counting.follow(link);
                        return true;
                    });
        reserve(counter.sizes(), contours);
        writer.goOn(allowed);
        m_next = followLinks(links, m_next, progress, [&](const ChainLink& link) {
            if (isEnough(walk.isInContour(), contours.points.size())) {
                return false;
            }
            walk.follow(link);
            return true;
        });
    }
    m_points += contours.points.size();
    progress.report(partDone());
}

// Counting gets no farther, but can be stopped.
std::uint64_t PathWriter::countPoints(const Progress& progress) {
    ContourCounter counter(m_limits, m_limits.maximumPoints - m_points, m_samples, {});
    ContourWalk<ContourCounter> counting(m_joined, m_limits.tolerance, counter);
    followLinks(m_joined.links, m_next, progress.part(partDone(), partDone()),
                [&](const ChainLink& link) {
                    counting.follow(link);
                    return true;
                });
    return counter.sizes().points;
}

double PathWriter::partDone() const {
    const std::size_t links = std::max<std::size_t>(m_joined.links.size(), 1);
    return static_cast<double>(m_next) / static_cast<double>(links);
}

} // namespace converters::drawing
