#include "converters/detail/drawing/dxf/Expansion.h"

#include "converters/detail/drawing/Refusal.h"
#include "converters/detail/drawing/dxf/Saturating.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>

namespace converters::drawing {

namespace {

/// Walks through what is drawn, block by block, with a stack of its own: blocks may be nested as
/// deep as there are bytes.
class Expander {
public:
    Expander(Drawing& drawing, const BlockGraph& graph, const LayerTable& layers,
             const PathOptions& options, LeftOutTable& leftOut, const Progress& progress)
        : m_drawing(drawing), m_graph(graph), m_layers(layers), m_options(options),
          m_leftOut(leftOut), m_progress(progress), m_kinds(drawing.kindNames) {}

    Expansion expand(const Affine& map) &&;

private:
    /// A stretch, or a block that is drawn for one item of the array that an INSERT is.
    struct Visit {
        const Contents* contents;
        std::size_t nextEntity;
        std::uint32_t placement;
        /// How often what is left out counts: all items at once, in the first of them.
        std::uint64_t multiplicity;
        /// None for a stretch.
        const Insert* insert;
        Point base;
        std::uint32_t outer;
        std::uint64_t item;
        std::uint64_t items;
    };

    void checkSize(std::uint64_t& steps) const;
    void walk(const Contents& stretch);
    void draw(const Entity& entity, std::size_t index, const Visit& visit);
    void enter(const Entity& entity, const Visit& outer);
    void push(const Entity& entity, std::uint32_t layer, const Block& block, const Visit& outer);
    void place(Visit& visit);
    bool goOn(Visit& visit);
    void list(const Visit& visit);
    std::optional<LeftOutReason> hiddenBecause(std::uint8_t flags,
                                               const Placement& placement) const;
    bool isClipped(const Insert& insert) const;

    Drawing& m_drawing;
    const BlockGraph& m_graph;
    const LayerTable& m_layers;
    const PathOptions& m_options;
    LeftOutTable& m_leftOut;
    const Progress& m_progress;
    KindNumbers m_kinds;
    Expansion m_expansion;
    std::vector<Visit> m_stack;
    std::uint64_t m_steps = 0;
    std::uint64_t m_allSteps = 0;
};

Expansion Expander::expand(const Affine& map) && {
    checkSize(m_allSteps);
    Placement drawing;
    drawing.map = map;
    m_expansion.placements.push_back(drawing);
    for (const Contents& stretch : m_drawing.stretches) {
        walk(stretch);
    }
    return std::move(m_expansion);
}

/// Refuses a drawing whose blocks multiply beyond what is allowed, and reserves memory for others.
void Expander::checkSize(std::uint64_t& steps) const {
    std::uint64_t drawn = 0;
    for (const Contents& stretch : m_drawing.stretches) {
        const BlockGraph::Weight weight = m_graph.weightOf(stretch);
        drawn = saturatingSum(drawn, weight.drawn);
        steps = saturatingSum(steps, saturatingSum(weight.steps, weight.listSteps));
    }
    // Numbers of entities are short.
    constexpr std::uint64_t most = 0xFFFFFFFE;
    const std::uint64_t maximum = std::min<std::uint64_t>(m_options.maximumEntities, most);
    const std::uint64_t inFile = m_drawing.entities.size() + m_drawing.notDrawn.size();
    if (drawn > maximum || steps > saturatingSum(saturatingProduct(2, maximum), inFile)) {
        throw Refusal{"more than " + std::to_string(m_options.maximumEntities) +
                      " entities when all blocks are drawn"};
    }
    // Each draws a point at least.
    if (drawn > m_options.maximumPoints) {
        throw Refusal{"more than " + std::to_string(m_options.maximumPoints) + " points"};
    }
}

void Expander::walk(const Contents& stretch) {
    m_stack.push_back({&stretch, stretch.firstEntity, 0, 1, nullptr, {}, 0, 0, 1});
    list(m_stack.back());
    while (!m_stack.empty()) {
        Visit& visit = m_stack.back();
        if (visit.nextEntity == visit.contents->endEntity) {
            if (!goOn(visit)) {
                m_stack.pop_back();
            }
            continue;
        }
        const std::size_t index = visit.nextEntity++;
        const Entity& entity = m_drawing.entities[index];
        // A copy: the stack may move.
        const Visit here = visit;
        if (entity.kind == EntityKind::insert) {
            enter(entity, here);
        } else {
            draw(entity, index, here);
        }
        constexpr std::uint64_t stepsPerReport = 1 << 14;
        if (++m_steps % stepsPerReport == 0) {
            m_progress.report(
                std::min(1.0, static_cast<double>(m_steps) / static_cast<double>(m_allSteps)));
        }
    }
}

void Expander::draw(const Entity& entity, std::size_t index, const Visit& visit) {
    const Placement& placement = m_expansion.placements[visit.placement];
    const std::uint32_t layer = layerOf(entity, placement, m_layers);
    std::optional<LeftOutReason> reason = hiddenBecause(entity.flags, placement);
    if (!reason) {
        reason = m_layers.hiddenBecause(layer);
    }
    if (!reason) {
        m_expansion.drawn.push_back({static_cast<std::uint32_t>(index), visit.placement});
    } else if (visit.multiplicity > 0) {
        m_leftOut.add(m_kinds[entity.kind], layer, *reason, visit.multiplicity);
    }
}

/// Draws what an INSERT draws. When its layer is frozen, that is nothing; when that is off, what is
/// on other layers.
void Expander::enter(const Entity& entity, const Visit& outer) {
    const Placement& placement = m_expansion.placements[outer.placement];
    const std::uint32_t layer = layerOf(entity, placement, m_layers);
    const Insert& insert = m_drawing.inserts[entity.data];
    const std::uint64_t items = std::uint64_t{insert.columns} * insert.rows;
    const BlockGraph::Target target = m_graph.targetOf(entity.data);
    std::optional<LeftOutReason> reason = hiddenBecause(entity.flags, placement);
    if (!reason && m_layers.isFrozen(layer)) {
        reason = LeftOutReason::layerFrozen;
    }
    if (!reason && target.block == nullptr) {
        reason = target.reason;
    }
    const bool isListed = outer.multiplicity > 0;
    if (reason) {
        if (isListed) {
            m_leftOut.add(m_kinds[EntityKind::insert], layer, *reason,
                          saturatingProduct(outer.multiplicity, items));
        }
        return;
    }
    const BlockGraph::Weight& weight = m_graph.weightOf(*target.block);
    if (weight.isEmpty || (weight.drawn == 0 && !isListed)) {
        return;
    }
    if (isListed && isClipped(insert)) {
        m_leftOut.add(m_kinds[EntityKind::insert], layer, LeftOutReason::drawnUnclipped,
                      outer.multiplicity);
    }
    push(entity, layer, *target.block, outer);
}

void Expander::push(const Entity& entity, std::uint32_t layer, const Block& block,
                    const Visit& outer) {
    const Insert& insert = m_drawing.inserts[entity.data];
    const std::uint64_t items = std::uint64_t{insert.columns} * insert.rows;
    const bool drawsNothing = m_graph.weightOf(block).drawn == 0;
    Placement inner;
    inner.isBlock = true;
    inner.layer = layer;
    {
        const Placement& placement = m_expansion.placements[outer.placement];
        inner.insert = placement.isBlock ? placement.insert : entity.handle;
        inner.colour = colourOf(entity, placement, m_layers);
    }
    const auto number = static_cast<std::uint32_t>(m_expansion.placements.size());
    m_expansion.placements.push_back(inner);
    m_stack.push_back({&block.contents, block.contents.firstEntity, number,
                       saturatingProduct(outer.multiplicity, items), &insert, block.base,
                       outer.placement, 0, drawsNothing ? 1 : items});
    place(m_stack.back());
    list(m_stack.back());
}

/// Places the block where the item of the array is.
void Expander::place(Visit& visit) {
    const Insert& insert = *visit.insert;
    InsertPlacement placement = insert.placement;
    placement.base = visit.base;
    placement.arrayOffset = {
        static_cast<double>(visit.item % insert.columns) * insert.columnSpacing,
        static_cast<double>(visit.item / insert.columns) * insert.rowSpacing, 0};
    m_expansion.placements[visit.placement].map =
        m_expansion.placements[visit.outer].map * Affine::ofInsert(placement);
}

/// Goes on to the next item of an array.
/// @return false when there is none
bool Expander::goOn(Visit& visit) {
    if (++visit.item >= visit.items) {
        return false;
    }
    const Placement before = m_expansion.placements[visit.placement];
    visit.placement = static_cast<std::uint32_t>(m_expansion.placements.size());
    m_expansion.placements.push_back(before);
    visit.nextEntity = visit.contents->firstEntity;
    visit.multiplicity = 0;
    place(visit);
    return true;
}

/// Lists what the contents hold and nothing can be followed of.
void Expander::list(const Visit& visit) {
    if (visit.multiplicity == 0) {
        return;
    }
    const Placement& placement = m_expansion.placements[visit.placement];
    for (std::size_t i = visit.contents->firstNotDrawn; i != visit.contents->endNotDrawn; ++i) {
        const NotDrawn& entry = m_drawing.notDrawn[i];
        const std::uint32_t named = m_layers.layerOf(entry.layer);
        const bool inherits = placement.isBlock && named == m_layers.layerZero();
        const std::uint32_t layer = inherits ? placement.layer : named;
        std::optional<LeftOutReason> reason = hiddenBecause(entry.flags, placement);
        if (!reason) {
            reason = m_layers.hiddenBecause(layer);
        }
        m_leftOut.add(entry.kind, layer, reason.value_or(entry.reason),
                      saturatingProduct(entry.number, visit.multiplicity));
    }
}

/// Why an entity is not drawn, by its own groups. What a block holds is in the space of the INSERT.
std::optional<LeftOutReason> Expander::hiddenBecause(std::uint8_t flags,
                                                     const Placement& placement) const {
    if ((flags & entityFlag::paperSpace) != 0 && !placement.isBlock && !m_options.paperSpace) {
        return LeftOutReason::paperSpace;
    }
    if ((flags & entityFlag::invisible) != 0 && !m_options.hidden) {
        return LeftOutReason::invisible;
    }
    return std::nullopt;
}

bool Expander::isClipped(const Insert& insert) const {
    return insert.dictionary != 0 &&
           std::binary_search(m_drawing.clippingDictionaries.begin(),
                              m_drawing.clippingDictionaries.end(), insert.dictionary);
}

} // namespace

std::uint32_t layerOf(const Entity& entity, const Placement& placement, const LayerTable& layers) {
    const std::uint32_t layer = layers.layerOf(entity.layer);
    return placement.isBlock && layer == layers.layerZero() ? placement.layer : layer;
}

Colour colourOf(const Entity& entity, const Placement& placement, const LayerTable& layers) {
    if (entity.trueColour == noTrueColour && entity.colour == colourByBlock) {
        return placement.colour;
    }
    const std::uint32_t layer = layerOf(entity, placement, layers);
    const bool isByLayer = entity.colour == colourByLayer || entity.colour == colourByBlock;
    const std::uint16_t index = isByLayer ? layers[layer].colour : entity.colour;
    const bool isLayers = entity.trueColour == noTrueColour && entity.colour == colourByLayer;
    return {index, isLayers ? layers.trueColour(layer) : entity.trueColour};
}

Expansion expand(Drawing& drawing, const BlockGraph& graph, const LayerTable& layers,
                 const Affine& map, const PathOptions& options, LeftOutTable& leftOut,
                 const Progress& progress) {
    return Expander(drawing, graph, layers, options, leftOut, progress).expand(map);
}

} // namespace converters::drawing
