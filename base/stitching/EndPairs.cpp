// A chained hash table. Space is a grid of cells; two ends that meet are in the same cell, or in
// two neighbouring ones whose common side both are near. An end is compared with those that came
// before it to its cell and to the cells in reach, 1 to 8 of them, and then put into its own:
//
//       m_slots          m_next
//     ┌─────────┐
//     │  crowd  │        the end before each in its slot
//     ├─────────┤      ┌─────┐      ┌─────┐
//     │ end 17 ─┼────► │ 17 ─┼────► │  4  │
//     ├─────────┤      └─────┘      └─────┘
//     │ nothing │
//     └─────────┘
//
// The slots of a square of the spatial index lie together, and the ends come in the order of these
// squares: the table is walked through rather than jumped about in. A cell of one square may share
// a slot with another one of that square. That costs comparisons, and is no error: what counts in
// the end is the distance. A chain of more than 16 ends is given up as a crowd, so that no drawing
// costs more than 8 times 16 comparisons an end.
//
// Not done: sorting the ends by cell, which costs n log n and a second copy of all; and a table of
// one slot a cell, which needs memory for the extent of the drawing instead of for its ends.

#include "base/stitching/EndPairs.h"

#include "base/LargePages.h"
#include "base/Prefetch.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace base {

namespace {

std::uint32_t hashOf(Row x, Row y, Row z) {
    const std::uint64_t hash = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15 +
                               static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4F +
                               static_cast<std::uint64_t>(z) * 0xD6E8FEB86659FD93;
    return static_cast<std::uint32_t>(hash >> 32);
}

/// The one or two rows in which coordinates in reach of one lie: the row of each of those lies
/// between the rows of the two farthest in reach, which are the same row or neighbours.
struct RowsInReach {
    Row rows[2];
    int count;

    RowsInReach(double coordinate, const JoinDistance& distance)
        : rows{rowOf(coordinate - distance.reach(), distance.rowsPerUnit()),
               rowOf(coordinate + distance.reach(), distance.rowsPerUnit())},
          count(rows[0] == rows[1] ? 1 : 2) {}
};

/// Finds the pairs among ends that are added one by one.
class EndGrid {
public:
    /// A finite end on its way into the grid.
    struct Entry {
        RankedEnd end;
        /// The slot of its cell, and those of all cells in reach.
        std::uint32_t ownSlot;
        std::uint32_t slots[8];
        unsigned slotCount;
    };

    EndGrid(const RankedEnds& ends, const SpatialIndex& index, const JoinDistance& distance)
        : m_ends(ends), m_index(index), m_distance(distance) {
        reserveLarge(m_slots, index.size());
        m_slots.resize(index.size());
        reserveLarge(m_met, ends.size());
        m_met.resize(ends.size());
        reserveLarge(m_next, ends.size());
        m_next.resize(ends.size());
    }

    // The steps of adding an end: each asks for the memory that the next one needs, which takes as
    // long as some hundred additions.

    void locate(RankedEnd end, const Point& point, Entry& entry) const {
        entry.end = end;
        entry.slotCount = 0;
        const RowsInReach x(point.x, m_distance);
        const RowsInReach y(point.y, m_distance);
        const RowsInReach z(point.z, m_distance);
        for (int i = 0; i < x.count; ++i) {
            for (int j = 0; j < y.count; ++j) {
                for (int k = 0; k < z.count; ++k) {
                    const std::uint32_t slot = slotOf(x.rows[i], y.rows[j], z.rows[k]);
                    base::prefetch(&m_slots[slot]);
                    entry.slots[entry.slotCount++] = slot;
                }
            }
        }
        entry.ownSlot =
            entry.slotCount == 1
                ? entry.slots[0]
                : slotOf(m_index.rowOf(point.x), m_index.rowOf(point.y), m_index.rowOf(point.z));
    }

    /// Whether an end meets itself: not where a coordinate is infinite or not a number.
    bool canMeet(const Point& point) const { return m_distance.meet(point, point); }

    void fetch(const Entry& entry) const {
        for (unsigned i = 0; i < entry.slotCount; ++i) {
            const EndOrCrowd held = m_slots[entry.slots[i]];
            if (held.isEnd()) {
                m_ends.prefetch(held.end());
                base::prefetch(&m_met[held.end().index()]);
                base::prefetch(&m_next[held.end().index()]);
            }
        }
    }

    /// Compares the end with those before it, and adds it.
    void add(const Entry& entry) {
        for (unsigned i = 0; i < entry.slotCount; ++i) {
            compare(entry.end, entry.slots[i]);
        }
        EndOrCrowd& held = m_slots[entry.ownSlot];
        if (held.isCrowd()) {
            metBy(entry.end) = EndOrCrowd::crowd();
        } else {
            nextOf(entry.end) = held.end();
            held = entry.end;
        }
    }

    /// Notes that two ends meet.
    void note(RankedEnd a, RankedEnd b) {
        noteOne(a, b);
        noteOne(b, a);
    }

    /// What each end has met. The end of the grid.
    std::vector<EndOrCrowd> met() && {
        for (std::size_t i = 0; i < m_met.size(); ++i) {
            const RankedEnd end = RankedEnd::at(i);
            // A pair only if it is one to both; an end that is a crowd by now was no pair to this.
            if (metBy(end).isEnd() && metBy(metBy(end).end()) != end) {
                metBy(end) = EndOrCrowd::crowd();
            }
        }
        return std::move(m_met);
    }

private:
    EndOrCrowd& metBy(RankedEnd end) { return m_met[end.index()]; }
    RankedEnd& nextOf(RankedEnd end) { return m_next[end.index()]; }

    std::uint32_t slotOf(Row x, Row y, Row z) const {
        const SpatialIndex::Range range = m_index.rangeOf(x, z);
        return range.begin +
               static_cast<std::uint32_t>(std::uint64_t{hashOf(x, y, z)} * range.size >> 32);
    }

    void noteOne(RankedEnd end, RankedEnd other) {
        EndOrCrowd& met = metBy(end);
        met = met == EndOrCrowd() || met == other ? other : EndOrCrowd::crowd();
    }

    void compare(RankedEnd end, std::uint32_t slot) {
        constexpr int mostEnds = 16;
        if (m_slots[slot].isCrowd()) {
            metBy(end) = EndOrCrowd::crowd();
            return;
        }
        const Point point = m_ends[end];
        int count = 0;
        for (RankedEnd other = m_slots[slot].end(); other.exists(); other = nextOf(other)) {
            if (++count > mostEnds) {
                makeCrowd(slot);
                metBy(end) = EndOrCrowd::crowd();
                return;
            }
            if (m_distance.meet(point, m_ends[other])) {
                note(end, other);
            }
        }
    }

    /// Makes the ends in a slot, and all that come, a crowd.
    void makeCrowd(std::uint32_t slot) {
        for (RankedEnd end = m_slots[slot].end(); end.exists(); end = nextOf(end)) {
            metBy(end) = EndOrCrowd::crowd();
        }
        m_slots[slot] = EndOrCrowd::crowd();
    }

    const RankedEnds& m_ends;
    const SpatialIndex& m_index;
    const JoinDistance m_distance;
    /// What each end has met so far.
    std::vector<EndOrCrowd> m_met;
    /// The end added before each to the same slot.
    std::vector<RankedEnd> m_next;
    /// The end added last to each slot, or crowd.
    std::vector<EndOrCrowd> m_slots;
};

/// Ends that are added together, after the memory for all of them has been asked for.
struct Batch {
    static constexpr std::size_t mostEnds = 32;

    EndGrid::Entry entries[mostEnds];
    std::size_t size = 0;

    /// Takes the ends from `begin` on, as many as fit.
    void locate(const RankedEnds& ends, std::size_t begin, EndGrid& grid) {
        size = 0;
        const std::size_t behind = std::min(begin + mostEnds, ends.size());
        // Those of the next batch.
        for (std::size_t i = behind; i < std::min(behind + mostEnds, ends.size()); ++i) {
            ends.prefetch(RankedEnd::at(i));
        }
        for (std::size_t i = begin; i < behind; ++i) {
            const RankedEnd end = RankedEnd::at(i);
            const Point point = ends[end];
            if (!grid.canMeet(point)) {
                continue; // Meets nothing, not even itself.
            }
            if (end.isLast() && point == ends[RankedEnd::first(end.run())]) {
                grid.note(RankedEnd::first(end.run()), end);
            } else {
                grid.locate(end, point, entries[size++]);
            }
        }
    }
    void fetch(const EndGrid& grid) const {
        for (std::size_t i = 0; i < size; ++i) {
            grid.fetch(entries[i]);
        }
    }
    void add(EndGrid& grid) {
        for (std::size_t i = 0; i < size; ++i) {
            grid.add(entries[i]);
        }
        size = 0;
    }
};

/// Adds all finite ends, in three steps that the memory has time between. Each round does one step
/// with each of three batches:
///
///     round   added      located    fetched
///       0                 0 - 31
///       1                32 - 63     0 - 31
///       2      0 - 31    64 - 95    32 - 63
///       3     32 - 63    96 - 127   64 - 95
///
/// The batch that was added has room for the next ends to locate.
void addAll(const RankedEnds& ends, EndGrid& grid, StageProgress progress) {
    Batch batches[3];
    Batch* located = &batches[0];
    Batch* fetched = &batches[1];
    Batch* added = &batches[2];
    // Two rounds more than there are batches, until the last one has been added.
    const std::size_t behind = ends.size() + 2 * Batch::mostEnds;
    progress.begin(behind);
    for (std::size_t begin = 0; begin < behind; begin += Batch::mostEnds) {
        progress.reached(begin);
        added->add(grid);
        located->locate(ends, begin, grid);
        fetched->fetch(grid);
        Batch* const empty = added;
        added = fetched;
        fetched = located;
        located = empty;
    }
}

} // namespace

std::vector<EndOrCrowd> pairEnds(const RankedEnds& ends, const SpatialIndex& index,
                                 const JoinDistance& distance, StageProgress progress) {
    EndGrid grid(ends, index, distance);
    addAll(ends, grid, progress);
    return std::move(grid).met();
}

} // namespace base
