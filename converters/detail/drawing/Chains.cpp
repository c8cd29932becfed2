#include "converters/detail/drawing/Chains.h"

#include "base/LargePages.h"
#include "base/stitching/RunPool.h"
#include "converters/detail/drawing/dxf/EntityCurves.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace converters::drawing {

namespace {

using base::RankedEnd;
using base::RunNumber;
using base::RunRank;

/// What an entity is to joining.
enum class Role : std::uint8_t { alone, closed, open, dot };

/// Ends that are closer than the distance make no contour closed that is shorter than so many of
/// it: it would be mostly gap.
constexpr double leastClosedLength = 4;

/// Ends closer than this part of the distance are nearly equal: they differ by rounding.
constexpr double nearlyEqual = 0.01;

constexpr std::uint32_t entitiesPerReport = 1 << 14;

Role roleOf(const Entity& entity, const EntityCurves::Extent& extent, double joinDistance) {
    if (entity.kind == EntityKind::point) {
        return Role::alone;
    }
    if (extent.isDot) {
        return Role::dot;
    }
    const bool isRound = extent.start == extent.end && entity.kind != EntityKind::line;
    const bool isNearlyRound = extent.length > leastClosedLength * joinDistance &&
                               distance(extent.start, extent.end) < joinDistance;
    return isRound || isNearlyRound ? Role::closed : Role::open;
}

base::JoinDistance joinDistanceOf(double distance) {
    // Closer ends than this are equal.
    constexpr double least = 1e-150;
    return base::JoinDistance(std::max(distance, least));
}

/// Ends of the stitching lie along the plane of x and z, drawings along that of x and y.
base::Point endAt(const Point& point) {
    return {point.x, point.z, point.y};
}

/// The entities whose ends are to be joined.
struct Runs {
    /// The first and the last point of each.
    base::EndPoints ends;
    /// Indexes into Expansion::drawn.
    std::vector<std::uint32_t> drawn;
    std::vector<double> lengths;

    void reserve(std::size_t runs) {
        ends.reserve(runs);
        base::reserveLarge(drawn, runs);
        base::reserveLarge(lengths, runs);
    }

    void add(std::uint32_t index, const EntityCurves::Extent& extent) {
        ends.add(endAt(extent.start), endAt(extent.end));
        drawn.push_back(index);
        lengths.push_back(extent.length);
    }
};

/// Joins runs, chain by chain.
class ChainBuilder {
public:
    /// @param runs  those that are dots come first: they join wherever they are
    ChainBuilder(const Runs& runs, std::size_t dots, double joinDistance)
        : m_runs(runs), m_dots(dots), m_joinDistance(joinDistance),
          m_leastLength(leastClosedLength * joinDistance),
          m_nearly(joinDistanceOf(nearlyEqual * joinDistance)),
          m_pool(runs.ends, joinDistanceOf(joinDistance)) {}

    /// Whether the run is in a chain already.
    bool isJoined(RunNumber run) const { return !m_pool.contains(m_pool.rankOf(run)); }

    /// Appends the chain that grows from a run.
    void append(RunNumber run, std::vector<ChainLink>& links);

private:
    struct Joined {
        RunNumber run;
        bool reversed;
    };
    base::Point pointOf(RankedEnd end) const {
        const RunNumber run = m_pool.numberOf(end.run());
        return m_runs
            .ends[end.isLast() ? base::NumberedEnd::last(run) : base::NumberedEnd::first(run)];
    }
    bool isShort(RankedEnd end) const {
        return m_runs.lengths[m_pool.numberOf(end.run())] <= m_joinDistance;
    }
    bool areNearlyEqual(RankedEnd a, RankedEnd b) const {
        return m_nearly.meet(pointOf(a), pointOf(b));
    }
    bool closes(RankedEnd front, RankedEnd back) const;
    bool goesOnNearer(RankedEnd tip) const;
    RankedEnd nextAt(RankedEnd tip) const;
    std::optional<Joined> extend(RankedEnd& tip);

    const Runs& m_runs;
    std::size_t m_dots;
    double m_joinDistance;
    double m_leastLength;
    base::JoinDistance m_nearly;
    base::RunPool m_pool;
    /// Of the chain that grows.
    double m_length = 0;
    std::vector<Joined> m_front;
};

void ChainBuilder::append(RunNumber run, std::vector<ChainLink>& links) {
    const RunRank rank = m_pool.rankOf(run);
    RankedEnd front = RankedEnd::first(rank);
    RankedEnd back = RankedEnd::last(rank);
    m_pool.remove(rank);
    m_length = m_runs.lengths[run];
    m_front.clear();
    const std::size_t begin = links.size();
    links.push_back({m_runs.drawn[run], false, false, false});
    while (!closes(front, back)) {
        const std::optional<Joined> next = extend(back);
        if (!next) {
            break;
        }
        links.push_back({m_runs.drawn[next->run], next->reversed, false, false});
    }
    while (!closes(front, back)) {
        const std::optional<Joined> next = extend(front);
        if (!next) {
            break;
        }
        // Its far end is where the chain starts now.
        m_front.push_back({next->run, !next->reversed});
    }
    std::vector<ChainLink> ahead;
    std::for_each(m_front.rbegin(), m_front.rend(), [&](const Joined& joined) {
        ahead.push_back({m_runs.drawn[joined.run], joined.reversed, false, false});
    });
    links.insert(links.begin() + static_cast<std::ptrdiff_t>(begin), ahead.begin(), ahead.end());
    links.back().endsChain = true;
    links.back().closesChain = closes(front, back);
}

/// Whether a chain with these ends is back at its start.
bool ChainBuilder::closes(RankedEnd front, RankedEnd back) const {
    if (!m_pool.meet(back, front)) {
        return false;
    }
    if (m_length <= m_leastLength) {
        return pointOf(back) == pointOf(front);
    }
    const bool mayHaveGap =
        !(isShort(back) && isShort(front)) && !goesOnNearer(back) && !goesOnNearer(front);
    return mayHaveGap || areNearlyEqual(back, front);
}

/// Whether the chain goes on here with a run so short that it may be what fills the gap.
bool ChainBuilder::goesOnNearer(RankedEnd tip) const {
    const RankedEnd next = m_pool.isCrowded(tip) ? m_pool.lowestWithin(m_nearly, tip) : RankedEnd();
    return next.exists() && m_runs.lengths[m_pool.numberOf(next.run())] <= m_leastLength;
}

/// The end that comes next at the tip of a chain: the lowest of those that are nearly equal, else
/// of all that meet it. Between two runs that are shorter than the distance a gap would be as long
/// as they are.
RankedEnd ChainBuilder::nextAt(RankedEnd tip) const {
    const RankedEnd lowest = m_pool.lowestAt(tip);
    if (!lowest.exists() || m_pool.numberOf(lowest.run()) < m_dots) {
        return lowest;
    }
    const bool areShort = isShort(tip) && isShort(lowest);
    const bool isCrowded = m_pool.isCrowded(tip);
    if ((!areShort && !isCrowded) || areNearlyEqual(lowest, tip)) {
        return lowest;
    }
    const RankedEnd nearer = isCrowded ? m_pool.lowestWithin(m_nearly, tip) : RankedEnd();
    return nearer.exists() || areShort ? nearer : lowest;
}

/// Joins the run that comes next at the tip of the chain, by its first end when both are there. Of
/// dots, which stand before all others, the tip stays where it is.
std::optional<ChainBuilder::Joined> ChainBuilder::extend(RankedEnd& tip) {
    const RankedEnd met = nextAt(tip);
    if (!met.exists()) {
        return std::nullopt;
    }
    const RunRank rank = met.run();
    const RunNumber run = m_pool.numberOf(rank);
    m_pool.remove(rank);
    const bool reversed = met.isLast();
    if (run >= m_dots) {
        tip = reversed ? RankedEnd::first(rank) : RankedEnd::last(rank);
        m_length += m_runs.lengths[run];
    }
    return Joined{run, reversed};
}

/// Chains, and dots that are chains by themselves, in one order.
/// @param seeds   the first entity of each chain in the order of the drawing, ascending
/// @param dots    ascending
std::vector<ChainLink> merged(const std::vector<ChainLink>& links,
                              const std::vector<std::uint32_t>& seeds,
                              const std::vector<std::uint32_t>& dots) {
    std::vector<ChainLink> result;
    base::reserveLarge(result, links.size() + dots.size());
    auto dot = dots.begin();
    auto link = links.begin();
    for (const std::uint32_t seed : seeds) {
        for (; dot != dots.end() && *dot < seed; ++dot) {
            result.push_back({*dot, false, true, false});
        }
        do {
            result.push_back(*link);
        } while (!(link++)->endsChain);
    }
    for (; dot != dots.end(); ++dot) {
        result.push_back({*dot, false, true, false});
    }
    return result;
}

/// Sorts drawn entities by their roles, and joins them.
class Joiner {
public:
    Joiner(Drawing& drawing, Expansion& expansion, double joinDistance)
        : m_drawing(drawing), m_expansion(expansion), m_joinDistance(joinDistance) {}

    void sortByRole(const LayerTable& layers, LeftOutTable& leftOut, const Progress& progress);
    std::vector<ChainLink> join(const Progress& progress) &&;

private:
    void add(std::uint32_t index, const Entity& entity, const EntityCurves::Extent& extent);
    Runs allRuns();

    Drawing& m_drawing;
    Expansion& m_expansion;
    double m_joinDistance;
    std::vector<Role> m_roles;
    Runs m_dots;
    Runs m_open;
};

/// Keeps what is finite where it is drawn.
void Joiner::sortByRole(const LayerTable& layers, LeftOutTable& leftOut, const Progress& progress) {
    const KindNumbers kinds(m_drawing.kindNames);
    std::vector<DrawnEntity>& drawn = m_expansion.drawn;
    base::reserveLarge(m_roles, drawn.size());
    // Of very many, most may be closed.
    constexpr std::size_t mostReserved = 1 << 20;
    m_open.reserve(std::min(drawn.size(), mostReserved));
    std::uint32_t kept = 0;
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        const Entity& entity = m_drawing.entities[drawn[i].entity];
        const Placement& placement = m_expansion.placements[drawn[i].placement];
        const EntityCurves::Extent extent = EntityCurves(m_drawing, entity, placement.map).extent();
        if (!extent.isFinite) {
            leftOut.add(kinds[entity.kind], layerOf(entity.layer, placement, layers),
                        LeftOutReason::broken);
        } else {
            drawn[kept] = drawn[i];
            add(kept++, entity, extent);
        }
        if (i % entitiesPerReport == entitiesPerReport - 1) {
            progress.report(static_cast<double>(i) / static_cast<double>(drawn.size()));
        }
    }
    drawn.resize(kept);
}

void Joiner::add(std::uint32_t index, const Entity& entity, const EntityCurves::Extent& extent) {
    const Role role = roleOf(entity, extent, m_joinDistance);
    m_roles.push_back(role);
    if (role == Role::open) {
        m_open.add(index, extent);
    } else if (role == Role::dot) {
        m_dots.add(index, extent);
    }
}

/// The dots, then the others.
Runs Joiner::allRuns() {
    if (m_dots.drawn.empty()) {
        return std::move(m_open);
    }
    Runs runs = std::move(m_dots);
    runs.ends.add(m_open.ends);
    runs.drawn.insert(runs.drawn.end(), m_open.drawn.begin(), m_open.drawn.end());
    runs.lengths.insert(runs.lengths.end(), m_open.lengths.begin(), m_open.lengths.end());
    m_open = {};
    return runs;
}

std::vector<ChainLink> Joiner::join(const Progress& progress) && {
    const std::size_t dots = m_dots.drawn.size();
    const Runs runs = allRuns();
    ChainBuilder builder(runs, dots, m_joinDistance);
    std::vector<ChainLink> links;
    base::reserveLarge(links, m_roles.size());
    std::vector<std::uint32_t> seeds;
    auto open = static_cast<RunNumber>(dots);
    for (std::uint32_t i = 0; i < m_roles.size(); ++i) {
        if (i % entitiesPerReport == entitiesPerReport - 1) {
            progress.report(static_cast<double>(i) / static_cast<double>(m_roles.size()));
        }
        const std::size_t before = links.size();
        if (m_roles[i] == Role::open) {
            if (!builder.isJoined(open)) {
                builder.append(open, links);
            }
            ++open;
        } else if (m_roles[i] != Role::dot) {
            links.push_back({i, false, true, m_roles[i] == Role::closed});
        }
        if (dots > 0 && links.size() != before) {
            seeds.push_back(i);
        }
    }
    // What is nothing but a dot and in no chain is one by itself.
    std::vector<std::uint32_t> lonely;
    for (RunNumber dot = 0; dot < dots; ++dot) {
        if (!builder.isJoined(dot)) {
            lonely.push_back(runs.drawn[dot]);
        }
    }
    return lonely.empty() ? links : merged(links, seeds, lonely);
}

} // namespace

std::vector<ChainLink> joinToChains(Drawing& drawing, Expansion& expansion,
                                    const LayerTable& layers, double joinDistance,
                                    LeftOutTable& leftOut, const Progress& progress) {
    Joiner joiner(drawing, expansion, joinDistance);
    // The stages, by what they take for drawings of lines.
    constexpr double endOfSorting = 0.3;
    constexpr double endOfPairing = 0.7;
    joiner.sortByRole(layers, leftOut, progress.part(0, endOfSorting));
    return std::move(joiner).join(progress.part(endOfPairing, 1));
}

} // namespace converters::drawing
