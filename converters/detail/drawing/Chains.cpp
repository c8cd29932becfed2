#include "converters/detail/drawing/Chains.h"

#include "converters/detail/drawing/dxf/EntityCurves.h"

namespace converters::drawing {

std::vector<ChainLink> joinToChains(Drawing& drawing, Expansion& expansion,
                                    const LayerTable& layers, double joinDistance,
                                    LeftOutTable& leftOut, const Progress& progress) {
    (void)joinDistance;
    (void)progress;
    const KindNumbers kinds(drawing.kindNames);
    std::vector<ChainLink> links;
    std::uint32_t kept = 0;
    for (const DrawnEntity& drawn : expansion.drawn) {
        const Entity& entity = drawing.entities[drawn.entity];
        const Placement& placement = expansion.placements[drawn.placement];
        const EntityCurves curves(drawing, entity, placement.map);
        if (!curves.isFinite()) {
            leftOut.add(kinds[entity.kind], layerOf(entity, placement, layers),
                        LeftOutReason::broken);
            continue;
        }
        expansion.drawn[kept] = drawn;
        links.push_back({kept++, false, true, curves.isClosed() && !curves.isDot()});
    }
    expansion.drawn.resize(kept);
    return links;
}

} // namespace converters::drawing
