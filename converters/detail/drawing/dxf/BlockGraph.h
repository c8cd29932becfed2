#pragma once

#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/dxf/Text.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace converters::drawing {

/// Which block an INSERT draws, and how much that is, known before anything is drawn.
///
/// An INSERT that leads back to the block that it stands in draws nothing. Of a circle of blocks
/// that hold each other, that is the INSERT which closes it when the blocks are followed in the
/// order of the file.
class BlockGraph {
public:
    BlockGraph(const Drawing& drawing, const TextDecoder& decoder);

    /// How many blocks hold something and are not drawn, since an earlier one has their name.
    std::uint64_t shadowedBlocks() const { return m_shadowedBlocks; }

    /// The block that an INSERT draws, or why there is none.
    struct Target {
        const Block* block = nullptr;
        LeftOutReason reason = LeftOutReason::blockMissing;
    };
    /// @param insert  index into Drawing::inserts
    Target targetOf(std::size_t insert) const;

    /// What contents come to when all blocks in them are drawn. Numbers saturate.
    struct Weight {
        /// Entities that draw something to follow.
        std::uint64_t drawn = 0;
        /// The vertices and control points of these entities, at least one for each.
        std::uint64_t vertices = 0;
        /// Steps that it takes to go through all that is drawn, INSERTs included.
        std::uint64_t steps = 0;
        /// Steps that it takes, beside these, to list what is left out; once for an array.
        std::uint64_t listSteps = 0;
        /// Whether nothing is drawn and nothing is left out.
        bool isEmpty = true;
    };
    Weight weightOf(const Contents& contents) const;
    const Weight& weightOf(const Block& block) const;

private:
    static constexpr std::uint32_t noBlock = 0xFFFFFFFF;

    void findTargets(const TextDecoder& decoder);
    void addInsert(Weight& total, std::size_t number) const;
    void weigh(std::uint32_t root, std::vector<std::uint8_t>& states);

    const Drawing& m_drawing;
    std::uint64_t m_shadowedBlocks = 0;
    /// By INSERT: index into Drawing::blocks, or noBlock.
    std::vector<std::uint32_t> m_targets;
    std::vector<bool> m_closesCircle;
    std::vector<Weight> m_weights;
};

} // namespace converters::drawing
