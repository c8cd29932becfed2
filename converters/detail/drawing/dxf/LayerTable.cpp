#include "converters/detail/drawing/dxf/LayerTable.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace converters::drawing {

namespace {

constexpr std::uint16_t blackOrWhite = 7;

std::vector<std::string> folded(const std::vector<std::string>& patterns) {
    std::vector<std::string> result;
    std::transform(patterns.begin(), patterns.end(), std::back_inserter(result),
                   [](const std::string& pattern) { return caseFolded(pattern); });
    return result;
}

bool matchesAny(const std::string& name, const std::vector<std::string>& patterns) {
    return std::any_of(patterns.begin(), patterns.end(),
                       [&](const std::string& pattern) { return matches(name, pattern); });
}

} // namespace

LayerTable::LayerTable(const Drawing& drawing, const TextDecoder& decoder,
                       const PathOptions& options)
    : m_takesHidden(options.hidden) {
    addNames(drawing, decoder);
    addEntries(drawing);
    findAsked(options);
}

void LayerTable::addNames(const Drawing& drawing, const TextDecoder& decoder) {
    std::unordered_map<std::string, std::uint32_t> layers;
    for (const std::string_view raw : drawing.layerNames.names()) {
        std::string name = decoder.decoded(raw);
        const auto next = static_cast<std::uint32_t>(m_layers.size());
        const auto [layer, isNew] = layers.emplace(caseFolded(name), next);
        if (isNew) {
            m_layers.push_back({std::move(name), blackOrWhite, false, false});
        }
        m_layerOfName.push_back(layer->second);
    }
}

void LayerTable::addEntries(const Drawing& drawing) {
    m_colours.resize(m_layers.size(), blackOrWhite);
    m_trueColours.resize(m_layers.size(), noTrueColour);
    for (const LayerEntry& entry : drawing.layers) {
        const std::uint32_t number = layerOf(entry.name);
        PathLayer& layer = m_layers[number];
        layer.colour = entry.colour;
        layer.off = entry.off;
        layer.frozen = entry.frozen;
        m_colours[number] = entry.colour;
        m_trueColours[number] = entry.trueColour;
    }
}

void LayerTable::findAsked(const PathOptions& options) {
    const std::vector<std::string> taken = folded(options.layers);
    const std::vector<std::string> excepted = folded(options.exceptLayers);
    for (const PathLayer& layer : m_layers) {
        const std::string name = caseFolded(layer.name);
        m_asked.push_back((taken.empty() || matchesAny(name, taken)) &&
                          !matchesAny(name, excepted));
    }
}

std::optional<LeftOutReason> LayerTable::hiddenBecause(std::uint32_t layer) const {
    if (!m_asked[layer]) {
        return LeftOutReason::layerNotAsked;
    }
    if (m_layers[layer].frozen && !m_takesHidden) {
        return LeftOutReason::layerFrozen;
    }
    if (m_layers[layer].off && !m_takesHidden) {
        return LeftOutReason::layerOff;
    }
    return std::nullopt;
}

} // namespace converters::drawing
