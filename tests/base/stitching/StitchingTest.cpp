// Runs joined at distances of many sizes, against the procedure as Stitching.h tells it.
#include "base/stitching/Stitching.h"

#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <list>
#include <string>
#include <vector>

namespace {

using base::Direction;
using base::Dropped;
using base::JoinDistance;
using base::Piece;
using base::Point;
using base::RunNumber;

/// What a walk says, to compare and to show.
std::vector<std::string> described(const base::Walk& walk) {
    std::vector<std::string> pieces;
    for (const Piece& piece : walk) {
        pieces.push_back(std::to_string(piece.run) +
                         (piece.direction == Direction::Backwards ? " backwards" : "") +
                         (piece.dropped == Dropped::First  ? " without first"
                          : piece.dropped == Dropped::Last ? " without last"
                                                           : "") +
                         (piece.endsChain ? " ends" : "") + (piece.closesChain ? " closes" : ""));
    }
    return pieces;
}

/// Both ends of each run, as the stitching takes them.
base::EndPoints endPointsOf(const std::vector<Point>& ends, const std::vector<bool>& haveOnePoint) {
    base::EndPoints points;
    for (std::size_t run = 0; run < haveOnePoint.size(); ++run) {
        if (haveOnePoint[run]) {
            points.add(ends[2 * run]);
        } else {
            points.add(ends[2 * run], ends[2 * run + 1]);
        }
    }
    return points;
}

/// The procedure, step by step.
class PlainStitcher {
public:
    PlainStitcher(const std::vector<Point>& ends, const std::vector<bool>& haveOnePoint,
                  double distance)
        : m_ends(ends), m_haveOnePoint(haveOnePoint), m_distance(distance) {}

    base::Walk walk() {
        for (std::size_t run = 0; run < m_ends.size() / 2; ++run) {
            m_pool.push_back(static_cast<RunNumber>(run));
        }
        base::Walk walk;
        while (!m_pool.empty()) {
            std::list<Piece> chain = nextChain();
            walk.insert(walk.end(), chain.begin(), chain.end());
        }
        return walk;
    }

private:
    bool meet(const Point& a, const Point& b) const {
        const double x = a.x - b.x;
        const double y = a.y - b.y;
        const double z = a.z - b.z;
        return x * x + y * y + z * z < m_distance * m_distance;
    }

    std::list<Piece> nextChain() {
        const RunNumber start = m_pool.back();
        m_pool.pop_back();
        std::list<Piece> chain = {
            {start, Direction::Forwards, Dropped::Nothing, false, false},
        };
        m_first = m_ends[2 * start];
        m_last = m_ends[2 * start + 1];
        const auto fits = [&](RunNumber run) { return joins(run, chain); };
        for (auto run = m_pool.begin(); run != m_pool.end();) {
            run = fits(*run) ? (m_pool.erase(run), m_pool.begin()) : std::next(run);
        }
        chain.back().endsChain = true;
        chain.back().closesChain = meet(m_first, m_last);
        return chain;
    }

    bool joins(RunNumber run, std::list<Piece>& chain) {
        const Point& first = m_ends[2 * run];
        const Point& last = m_ends[2 * run + 1];
        if (meet(first, m_last)) {
            chain.push_back({run, Direction::Forwards, Dropped::First, false, false});
            move(m_last, run, last);
        } else if (meet(last, m_last)) {
            chain.push_back({run, Direction::Backwards, Dropped::First, false, false});
            move(m_last, run, first);
        } else if (meet(last, m_first)) {
            chain.push_front({run, Direction::Forwards, Dropped::Last, false, false});
            move(m_first, run, first);
        } else if (meet(first, m_first)) {
            chain.push_front({run, Direction::Backwards, Dropped::Last, false, false});
            move(m_first, run, last);
        } else {
            return false;
        }
        return true;
    }

    /// Of a run of one point nothing is left when that is dropped: the chain ends where it did.
    void move(Point& tip, RunNumber run, const Point& end) const {
        if (!m_haveOnePoint[run]) {
            tip = end;
        }
    }

    const std::vector<Point>& m_ends;
    const std::vector<bool>& m_haveOnePoint;
    double m_distance;
    std::list<RunNumber> m_pool;
    Point m_first;
    Point m_last;
};

/// Ends near the points of a grid of ten distances, at up to some 0.7 distances from each other.
std::vector<Point> randomEnds(Random& random, double distance, std::size_t runs) {
    const std::size_t places = 1 + random.below(runs + 1);
    const bool isSolid = random.oneIn(2);
    const double shift = random.oneIn(2) ? 0 : 1e5 * distance;
    std::vector<Point> ends;
    for (std::size_t end = 0; end < 2 * runs; ++end) {
        const auto coordinate = [&](std::size_t cell) {
            return (10 * static_cast<double>(cell) + 0.1 * static_cast<double>(random.below(8))) *
                       distance -
                   shift;
        };
        const std::size_t place = random.below(places);
        ends.emplace_back(coordinate(place % 5), isSolid ? coordinate(place % 3) : 0.0,
                          coordinate(place / 5));
    }
    return ends;
}

/// Makes some runs such that have one point: none, all, or each by chance.
std::vector<bool> randomSingles(Random& random, std::vector<Point>& ends) {
    const std::size_t kind = random.below(4);
    std::vector<bool> haveOnePoint;
    for (std::size_t run = 0; run < ends.size() / 2; ++run) {
        haveOnePoint.push_back(kind == 0 || (kind == 1 && random.oneIn(3)));
        if (haveOnePoint.back()) {
            ends[2 * run + 1] = ends[2 * run];
        }
    }
    return haveOnePoint;
}

TEST(Stitching, JoinsWhatTheProcedureJoinsAtAnyDistance) {
    Random random(1);
    for (const double distance : {0.001, 1e-9, 0.0007, 0.05, 0.3, 1.0, 7.5, 1e6, 1e-200, 1e150}) {
        std::size_t joined = 0;
        for (int round = 0; round < 100; ++round) {
            const std::size_t runs = 1 + random.below(60);
            std::vector<Point> ends = randomEnds(random, distance, runs);
            const std::vector<bool> haveOnePoint = randomSingles(random, ends);
            const base::Walk expected = PlainStitcher(ends, haveOnePoint, distance).walk();
            const base::Walk walk =
                base::stitch(endPointsOf(ends, haveOnePoint), JoinDistance(distance));
            ASSERT_EQ(described(walk), described(expected)) << distance << ", round " << round;
            joined += runs - static_cast<std::size_t>(
                                 std::count_if(walk.begin(), walk.end(),
                                               [](const Piece& piece) { return piece.endsChain; }));
        }
        // At 1e-200 the squares of all distances are 0, which is not below 0.
        EXPECT_EQ(joined > 0, distance > 1e-100) << distance;
    }
}

TEST(Stitching, EndsAChainAtItsOwnPointWhereARunOfOnePointIsJoined) {
    // Within 0.1 of the last end of run 2 only run 1 lies, and run 0 only within 0.1 of run 1.
    const std::vector<Point> ends = {{2.15, 0, 0}, {3, 0, 0}, {2.08, 0, 0},
                                     {2.08, 0, 0}, {1, 0, 0}, {2, 0, 0}};
    EXPECT_EQ(described(base::stitch(endPointsOf(ends, {false, true, false}), JoinDistance(0.1))),
              (std::vector<std::string>{"2", "1 without first ends", "0 ends"}));
    EXPECT_EQ(described(base::stitch(endPointsOf(ends, {false, false, false}), JoinDistance(0.1))),
              (std::vector<std::string>{"2", "1 without first", "0 without first ends"}));
}

TEST(JoinDistance, RowsAreFifteenToThirtyTimesAsWide) {
    for (const double distance : {0.001, 1e-9, 0.0007, 0.05, 0.3, 1.0, 7.5, 1e6}) {
        const double rowWidth = 1 / JoinDistance(distance).rowsPerUnit();
        EXPECT_GE(rowWidth, 15 * distance);
        EXPECT_LE(rowWidth, 30 * distance);
    }
    static_assert(JoinDistance(0.001).rowsPerUnit() == 64);
    static_assert(JoinDistance(0.001).squared() == 1e-06);
}

} // namespace
