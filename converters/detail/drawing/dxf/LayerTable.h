#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/dxf/Text.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace converters::drawing {

/// The layers of a drawing: names that differ in case only are one layer.
class LayerTable {
public:
    LayerTable(const Drawing& drawing, const TextDecoder& decoder, const PathOptions& options);

    /// The number of a layer, of its number in Drawing::layerNames.
    std::uint32_t layerOf(std::uint32_t name) const { return m_layerOfName[name]; }

    /// The layer "0", on which what a block holds is drawn as on the layer of the INSERT.
    std::uint32_t layerZero() const { return m_layerOfName[0]; }

    const PathLayer& operator[](std::uint32_t layer) const { return m_layers[layer]; }

    /// The colour of a layer, 1 to 255.
    std::uint16_t colour(std::uint32_t layer) const { return m_colours[layer]; }

    /// The colour of a layer as 0xRRGGBB, or noTrueColour.
    std::int32_t trueColour(std::uint32_t layer) const { return m_trueColours[layer]; }

    /// Why nothing on the layer is drawn; none when it is.
    std::optional<LeftOutReason> hiddenBecause(std::uint32_t layer) const;

    /// Whether the layer is frozen, and frozen layers are not asked for.
    bool isFrozen(std::uint32_t layer) const { return m_layers[layer].frozen && !m_takesHidden; }

    /// Nothing but numbers and colours of layers is known afterwards.
    std::vector<PathLayer> takeLayers() { return std::move(m_layers); }

private:
    void addNames(const Drawing& drawing, const TextDecoder& decoder);
    void addEntries(const Drawing& drawing);
    void findAsked(const PathOptions& options);

    std::vector<PathLayer> m_layers;
    std::vector<std::uint16_t> m_colours;
    std::vector<std::int32_t> m_trueColours;
    std::vector<bool> m_asked;
    std::vector<std::uint32_t> m_layerOfName;
    bool m_takesHidden;
};

} // namespace converters::drawing
