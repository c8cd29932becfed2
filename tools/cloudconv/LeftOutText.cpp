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

/// A group for each reason, and, if asked for, for each layer that is a reason.
std::vector<Group> groupsOf(const std::vector<LeftOut>& leftOut, bool byLayer) {
    std::vector<Group> groups;
    std::map<std::pair<LeftOutReason, std::string>, std::size_t> indices;
    for (const LeftOut& entry : leftOut) {
        const std::string layer = byLayer && isForItsLayer(entry.reason) ? entry.layer : "";
        const auto [known, isNew] = indices.emplace(std::pair(entry.reason, layer), groups.size());
        if (isNew) {
            groups.emplace_back(entry.reason);
        }
        groups[known->second].add(entry);
    }
    return groups;
}

} // namespace

std::string leftOutText(const std::vector<LeftOut>& leftOut) {
    constexpr std::size_t mostGroups = 20;
    std::vector<Group> groups = groupsOf(leftOut, true);
    if (groups.size() > mostGroups) {
        groups = groupsOf(leftOut, false);
    }
    std::string text;
    for (const Group& group : groups) {
        text += (text.empty() ? "" : "; ") + group.text();
    }
    return text;
}
