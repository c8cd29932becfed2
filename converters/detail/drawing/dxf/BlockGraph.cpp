#include "converters/detail/drawing/dxf/BlockGraph.h"

#include "converters/detail/drawing/dxf/Saturating.h"
#include "converters/detail/drawing/dxf/SpaceNames.h"

#include <string>
#include <unordered_map>

namespace converters::drawing {

namespace {

/// How far a block is followed.
enum State : std::uint8_t { unseen, entered, weighed };

/// Why a name is that of no block to insert. What the drawing itself and its sheets hold is
/// followed, or listed, by itself.
LeftOutReason reasonOfNoBlock(std::string_view name) {
    if (isModelSpace(name)) {
        return LeftOutReason::blockHoldsItself;
    }
    return isPaperSpace(name) ? LeftOutReason::paperSpace : LeftOutReason::blockMissing;
}

} // namespace

BlockGraph::BlockGraph(const Drawing& drawing, const TextDecoder& decoder)
    : m_drawing(drawing), m_closesCircle(drawing.inserts.size()), m_weights(drawing.blocks.size()) {
    findTargets(decoder);
    std::vector<std::uint8_t> states(drawing.blocks.size(), unseen);
    for (std::uint32_t block = 0; block < drawing.blocks.size(); ++block) {
        if (states[block] == unseen) {
            weigh(block, states);
        }
    }
}

/// Of blocks with equal names the first one counts that holds anything.
void BlockGraph::findTargets(const TextDecoder& decoder) {
    std::unordered_map<std::string, std::uint32_t> numbers;
    std::vector<std::uint32_t> blockOfName;
    std::vector<std::uint32_t> canonical;
    for (const std::string_view name : m_drawing.blockNames.names()) {
        const auto next = static_cast<std::uint32_t>(numbers.size());
        canonical.push_back(numbers.emplace(caseFolded(decoder.decoded(name)), next).first->second);
    }
    blockOfName.resize(numbers.size(), noBlock);
    for (std::uint32_t i = 0; i < m_drawing.blocks.size(); ++i) {
        std::uint32_t& named = blockOfName[canonical[m_drawing.blocks[i].name]];
        if (named == noBlock || m_drawing.blocks[named].contents.isEmpty()) {
            named = i;
        } else if (!m_drawing.blocks[i].contents.isEmpty()) {
            ++m_shadowedBlocks;
        }
    }
    for (const Insert& insert : m_drawing.inserts) {
        m_targets.push_back(blockOfName[canonical[insert.block]]);
    }
}

/// Follows a block and all in it, with a stack of its own: blocks may be nested as deep as there
/// are bytes.
void BlockGraph::weigh(std::uint32_t root, std::vector<std::uint8_t>& states) {
    struct Visit {
        std::uint32_t block;
        std::size_t nextEntity;
    };
    std::vector<Visit> stack;
    const auto enter = [&](std::uint32_t block) {
        states[block] = entered;
        stack.push_back({block, m_drawing.blocks[block].contents.firstEntity});
    };
    enter(root);
    while (!stack.empty()) {
        Visit& visit = stack.back();
        const Contents& contents = m_drawing.blocks[visit.block].contents;
        if (visit.nextEntity == contents.endEntity) {
            m_weights[visit.block] = weightOf(contents);
            states[visit.block] = weighed;
            stack.pop_back();
            continue;
        }
        const Entity& entity = m_drawing.entities[visit.nextEntity++];
        if (entity.kind != EntityKind::insert || m_targets[entity.data] == noBlock) {
            continue;
        }
        const std::uint32_t target = m_targets[entity.data];
        if (states[target] == entered) {
            m_closesCircle[entity.data] = true;
        } else if (states[target] == unseen) {
            enter(target);
        }
    }
}

BlockGraph::Target BlockGraph::targetOf(std::size_t insert) const {
    if (m_targets[insert] == noBlock) {
        const std::uint32_t name = m_drawing.inserts[insert].block;
        return {nullptr, reasonOfNoBlock(m_drawing.blockNames.names()[name])};
    }
    if (m_closesCircle[insert]) {
        return {nullptr, LeftOutReason::blockHoldsItself};
    }
    const Block& block = m_drawing.blocks[m_targets[insert]];
    if (block.isExternal && block.contents.isEmpty()) {
        return {nullptr, LeftOutReason::blockExternal};
    }
    return {&block, LeftOutReason::blockMissing};
}

BlockGraph::Weight BlockGraph::weightOf(const Contents& contents) const {
    Weight total;
    total.listSteps = contents.endNotDrawn - contents.firstNotDrawn;
    total.isEmpty = total.listSteps == 0;
    for (std::size_t i = contents.firstEntity; i != contents.endEntity; ++i) {
        total.steps = saturatingSum(total.steps, 1);
        const Entity& entity = m_drawing.entities[i];
        if (entity.kind != EntityKind::insert) {
            total.drawn = saturatingSum(total.drawn, 1);
            total.vertices = saturatingSum(total.vertices, verticesOf(entity, m_drawing));
            total.isEmpty = false;
        } else {
            addInsert(total, entity.data);
        }
    }
    return total;
}

void BlockGraph::addInsert(Weight& total, std::size_t number) const {
    const Block* const block = targetOf(number).block;
    if (block == nullptr) {
        total.isEmpty = false;
        return;
    }
    const Insert& insert = m_drawing.inserts[number];
    const std::uint64_t items = std::uint64_t{insert.columns} * insert.rows;
    const Weight& inner = weightOf(*block);
    if (inner.isEmpty) {
        return;
    }
    total.isEmpty = false;
    total.listSteps = saturatingSum(total.listSteps, inner.listSteps);
    if (inner.drawn > 0) {
        total.drawn = saturatingSum(total.drawn, saturatingProduct(inner.drawn, items));
        total.vertices = saturatingSum(total.vertices, saturatingProduct(inner.vertices, items));
        total.steps = saturatingSum(total.steps, saturatingProduct(inner.steps, items));
    } else {
        total.listSteps = saturatingSum(total.listSteps, inner.steps);
    }
}

const BlockGraph::Weight& BlockGraph::weightOf(const Block& block) const {
    return m_weights[static_cast<std::size_t>(&block - m_drawing.blocks.data())];
}

} // namespace converters::drawing
