#include "tools/cloudconv/LeftOutText.h"

#include "tools/cloudconv/Wording.h"

#include <map>
#include <set>
#include <utility>

namespace {

using converters::LeftOut;
using converters::LeftOutReason;

bool isForItsLayer(LeftOutReason reason) {
    return reason == LeftOutReason::layerOff || reason == LeftOutReason::layerFrozen ||
           reason == LeftOutReason::layerNotAsked;
}

/// Numbers by kind, in the order in which the kinds come, of one reason.
class Group {
public:
    explicit Group(LeftOutReason reason) : m_reason(reason) {}

    void add(const LeftOut& leftOut) {
        const auto [known, isNew] = m_indices.emplace(leftOut.kind, m_numbers.size());
        if (isNew) {
            m_numbers.emplace_back(leftOut.kind, 0);
        }
        m_numbers[known->second].second += leftOut.number;
        if (isForItsLayer(m_reason)) {
            m_layers.insert(leftOut.layer);
        }
    }

    std::string text() const {
        std::string text;
        for (const auto& [kind, number] : m_numbers) {
            text +=
                (text.empty() ? "" : ", ") + std::to_string(number) + ' ' + asPrintableUtf8(kind);
        }
        text += std::string(" (") + converters::nameOf(m_reason);
        if (!m_layers.empty()) {
            text += ": " + (m_layers.size() == 1 ? asPrintableUtf8(*m_layers.begin())
                                                 : counted(m_layers.size(), "layer"));
        }
        return text + ')';
    }

private:
    LeftOutReason m_reason;
    /// Those that are the reason, if layers are.
    std::set<std::string> m_layers;
    std::vector<std::pair<std::string, std::uint64_t>> m_numbers;
    std::map<std::string, std::size_t> m_indices;
};

/// The reasons that are so many layers that naming each would hide the rest.
std::set<LeftOutReason> reasonsOfManyLayers(const std::vector<LeftOut>& leftOut) {
    constexpr std::size_t mostLayers = 5;
    std::map<LeftOutReason, std::set<std::string>> layers;
    std::set<LeftOutReason> reasons;
    for (const LeftOut& entry : leftOut) {
        if (isForItsLayer(entry.reason)) {
            layers[entry.reason].insert(entry.layer);
        }
    }
    for (const auto& [reason, names] : layers) {
        if (names.size() > mostLayers) {
            reasons.insert(reason);
        }
    }
    return reasons;
}

/// A group for each reason, and for each layer that is one.
std::vector<Group> groupsOf(const std::vector<LeftOut>& leftOut) {
    const std::set<LeftOutReason> summedUp = reasonsOfManyLayers(leftOut);
    std::vector<Group> groups;
    std::map<std::pair<LeftOutReason, std::string>, std::size_t> indices;
    for (const LeftOut& entry : leftOut) {
        const bool isNamed = isForItsLayer(entry.reason) && summedUp.count(entry.reason) == 0;
        const auto [known, isNew] = indices.emplace(
            std::pair(entry.reason, isNamed ? entry.layer : std::string()), groups.size());
        if (isNew) {
            groups.emplace_back(entry.reason);
        }
        groups[known->second].add(entry);
    }
    return groups;
}

} // namespace

std::string leftOutText(const std::vector<LeftOut>& leftOut) {
    std::string text;
    for (const Group& group : groupsOf(leftOut)) {
        text += (text.empty() ? "" : "; ") + group.text();
    }
    return text;
}
