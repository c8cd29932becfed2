#include "converters/detail/drawing/dxf/Expansion.h"

#include "base/LargePages.h"
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
        std::size_t nextNotDrawn;
        Placement placement;
        /// Its index in the expansion, once anything is drawn.
        std::uint32_t number;
        /// How often what is left out counts: all items at once, in the first of them.
        std::uint64_t multiplicity;
        /// None for a stretch.
        const Insert* insert;
        Point base;
        std::uint64_t item;
        std::uint64_t items;
    };
    static constexpr std::uint32_t noNumber = 0xFFFFFFFF;

    void checkSize();
    std::uint64_t verticesInFile() const;
    void walk(const Contents& stretch, const Affine& map);
    const Entity* drawUpToInsert(Visit& visit);
    void draw(const Entity& entity, std::size_t index, Visit& visit);
    void enter(const Entity& entity);
    void push(const Entity& entity, std::uint32_t layer, const Block& block);
    void place(Visit& visit, const Affine& outer) const;
    bool goOn();
    void list(Visit& visit);
    void countStep();
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

std::uint64_t itemsOf(const Insert& insert) {
    return std::uint64_t{insert.columns} * insert.rows;
}

Expansion Expander::expand(const Affine& map) && {
    checkSize();
    for (const Contents& stretch : m_drawing.stretches) {
        walk(stretch, map);
    }
    return std::move(m_expansion);
}

/// Refuses a drawing whose blocks multiply beyond what is allowed, and reserves memory for others.
void Expander::checkSize() {
    BlockGraph::Weight all;
    for (const Contents& stretch : m_drawing.stretches) {
        const BlockGraph::Weight weight = m_graph.weightOf(stretch);
        all.drawn = saturatingSum(all.drawn, weight.drawn);
        all.vertices = saturatingSum(all.vertices, weight.vertices);
        m_allSteps = saturatingSum(m_allSteps, saturatingSum(weight.steps, weight.listSteps));
    }
    // Numbers of entities are short.
    constexpr std::uint64_t most = 0xFFFFFFFE;
    // INSERTs are steps, too; some are nested, and some draw text alone.
    constexpr std::uint64_t stepsPerEntity = 4;
    const std::uint64_t maximum = std::min<std::uint64_t>(m_options.maximumEntities, most);
    const std::uint64_t inFile = m_drawing.entities.size() + m_drawing.notDrawn.size();
    if (all.drawn > maximum ||
        m_allSteps > saturatingSum(saturatingProduct(stepsPerEntity, maximum), inFile)) {
        throw Refusal{"more than " + std::to_string(m_options.maximumEntities) +
                      " entities when all blocks are drawn"};
    }
    // Each entity draws a point at least, and equal vertices no more.
    constexpr std::uint64_t verticesPerPoint = 4;
    if (all.drawn > m_options.maximumPoints ||
        all.vertices > saturatingSum(saturatingProduct(verticesPerPoint, m_options.maximumPoints),
                                     verticesInFile())) {
        throw Refusal{"more than " + std::to_string(m_options.maximumPoints) + " points"};
    }
    base::reserveLarge(m_expansion.drawn, all.drawn);
}

std::uint64_t Expander::verticesInFile() const {
    std::uint64_t vertices = 0;
    for (const Entity& entity : m_drawing.entities) {
        vertices += entity.kind == EntityKind::insert ? 0 : verticesOf(entity, m_drawing);
    }
    return vertices;
}

void Expander::walk(const Contents& stretch, const Affine& map) {
    Visit drawing{
        &stretch, stretch.firstEntity, stretch.firstNotDrawn, {}, noNumber, 1, nullptr, {}, 0, 1};
    drawing.placement.map = map;
    m_stack.push_back(drawing);
    while (!m_stack.empty()) {
        if (const Entity* const insert = drawUpToInsert(m_stack.back())) {
            enter(*insert);
        } else if (!goOn()) {
            m_stack.pop_back();
        }
    }
}

/// Draws what comes before the next INSERT.
/// @return that; null at the end of the contents
const Entity* Expander::drawUpToInsert(Visit& visit) {
    while (visit.nextEntity != visit.contents->endEntity) {
        list(visit);
        const std::size_t index = visit.nextEntity++;
        const Entity& entity = m_drawing.entities[index];
        countStep();
        if (entity.kind == EntityKind::insert) {
            return &entity;
        }
        draw(entity, index, visit);
    }
    list(visit);
    return nullptr;
}

void Expander::countStep() {
    constexpr std::uint64_t stepsPerReport = 1 << 14;
    if (++m_steps % stepsPerReport == 0) {
        m_progress.report(
            std::min(1.0, static_cast<double>(m_steps) / static_cast<double>(m_allSteps)));
    }
}

void Expander::draw(const Entity& entity, std::size_t index, Visit& visit) {
    const std::uint32_t layer = layerOf(entity.layer, visit.placement, m_layers);
    std::optional<LeftOutReason> reason = hiddenBecause(entity.flags, visit.placement);
    if (!reason) {
        reason = m_layers.hiddenBecause(layer);
    }
    if (reason) {
        if (visit.multiplicity > 0) {
            m_leftOut.add(m_kinds[entity.kind], layer, *reason, visit.multiplicity);
        }
        return;
    }
    if (visit.number == noNumber) {
        visit.number = static_cast<std::uint32_t>(m_expansion.placements.size());
        m_expansion.placements.push_back(visit.placement);
    }
    m_expansion.drawn.push_back({static_cast<std::uint32_t>(index), visit.number});
}

/// Draws what an INSERT draws. When its layer is frozen, that is nothing; when that is off, what is
/// on other layers.
void Expander::enter(const Entity& entity) {
    const Visit& outer = m_stack.back();
    const std::uint32_t layer = layerOf(entity.layer, outer.placement, m_layers);
    const Insert& insert = m_drawing.inserts[entity.data];
    const BlockGraph::Target target = m_graph.targetOf(entity.data);
    std::optional<LeftOutReason> reason = hiddenBecause(entity.flags, outer.placement);
    if (!reason && m_layers.isFrozen(layer)) {
        reason = LeftOutReason::layerFrozen;
    }
    if (!reason && target.block == nullptr) {
        reason = target.reason;
    }
    const bool isListed = outer.multiplicity > 0;
    if (reason) {
        if (isListed) {
            m_leftOut.add(m_kinds[EntityKind::insert], layer, *reason, outer.multiplicity);
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
    push(entity, layer, *target.block);
}

void Expander::push(const Entity& entity, std::uint32_t layer, const Block& block) {
    const Insert& insert = m_drawing.inserts[entity.data];
    const Visit& outer = m_stack.back();
    const Contents& contents = block.contents;
    const bool drawsNothing = m_graph.weightOf(block).drawn == 0;
    Visit inner{&contents,
                contents.firstEntity,
                contents.firstNotDrawn,
                {},
                noNumber,
                saturatingProduct(outer.multiplicity, itemsOf(insert)),
                &insert,
                block.base,
                0,
                drawsNothing ? 1 : itemsOf(insert)};
    inner.placement.isBlock = true;
    inner.placement.layer = layer;
    inner.placement.insert = outer.placement.isBlock ? outer.placement.insert : entity.handle;
    inner.placement.colour = colourOf(entity, outer.placement, m_layers);
    place(inner, outer.placement.map);
    m_stack.push_back(inner);
}

/// Places the block where the item of the array is.
void Expander::place(Visit& visit, const Affine& outer) const {
    const Insert& insert = *visit.insert;
    InsertPlacement placement = insert.placement;
    placement.base = visit.base;
    placement.arrayOffset = {
        static_cast<double>(visit.item % insert.columns) * insert.columnSpacing,
        static_cast<double>(visit.item / insert.columns) * insert.rowSpacing, 0};
    visit.placement.map = outer * Affine::ofInsert(placement);
}

/// Goes on to the next item of an array.
/// @return false when there is none
bool Expander::goOn() {
    Visit& visit = m_stack.back();
    if (++visit.item >= visit.items) {
        return false;
    }
    visit.number = noNumber;
    visit.nextEntity = visit.contents->firstEntity;
    visit.nextNotDrawn = visit.contents->endNotDrawn;
    visit.multiplicity = 0;
    place(visit, m_stack[m_stack.size() - 2].placement.map);
    return true;
}

/// Lists what the contents hold up to here and nothing can be followed of.
void Expander::list(Visit& visit) {
    const bool isListed = visit.multiplicity > 0;
    while (isListed && visit.nextNotDrawn != visit.contents->endNotDrawn &&
           m_drawing.notDrawn[visit.nextNotDrawn].nextEntity <= visit.nextEntity) {
        const NotDrawn& entry = m_drawing.notDrawn[visit.nextNotDrawn++];
        const std::uint32_t layer = layerOf(entry.layer, visit.placement, m_layers);
        std::optional<LeftOutReason> reason = hiddenBecause(entry.flags, visit.placement);
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

std::uint32_t layerOf(std::uint32_t name, const Placement& placement, const LayerTable& layers) {
    const std::uint32_t layer = layers.layerOf(name);
    return placement.isBlock && layer == layers.layerZero() ? placement.layer : layer;
}

Colour colourOf(const Entity& entity, const Placement& placement, const LayerTable& layers) {
    if (entity.trueColour == noTrueColour && entity.colour == colourByBlock) {
        return placement.colour;
    }
    const std::uint32_t layer = layerOf(entity.layer, placement, layers);
    const bool isByLayer = entity.colour == colourByLayer || entity.colour == colourByBlock;
    const std::uint16_t index = isByLayer ? layers.colour(layer) : entity.colour;
    const bool isLayers = entity.trueColour == noTrueColour && entity.colour == colourByLayer;
    return {index, isLayers ? layers.trueColour(layer) : entity.trueColour};
}

Expansion expand(Drawing& drawing, const BlockGraph& graph, const LayerTable& layers,
                 const Affine& map, const PathOptions& options, LeftOutTable& leftOut,
                 const Progress& progress) {
    return Expander(drawing, graph, layers, options, leftOut, progress).expand(map);
}

} // namespace converters::drawing
