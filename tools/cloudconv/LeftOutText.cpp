#include "tools/cloudconv/LeftOutText.h"

#include "tools/cloudconv/Wording.h"

#include <algorithm>
#include <utility>

namespace {

using converters::LeftOut;
using converters::LeftOutReason;

bool isForItsLayer(LeftOutReason reason) {
    return reason == LeftOutReason::layerOff || reason == LeftOutReason::layerFrozen ||
           reason == LeftOutReason::layerNotAsked;
}

std::string reasonOf(const LeftOut& leftOut) {
    const std::string reason = converters::nameOf(leftOut.reason);
    return isForItsLayer(leftOut.reason) ? reason + ": " + asPrintableUtf8(leftOut.layer) : reason;
}

/// Numbers by kind, in the order in which the kinds come.
struct Group {
    std::string reason;
    std::vector<std::pair<std::string, std::uint64_t>> kinds;

    void add(const LeftOut& leftOut) {
        const auto found = std::find_if(kinds.begin(), kinds.end(), [&](const auto& kind) {
            return kind.first == leftOut.kind;
        });
        if (found == kinds.end()) {
            kinds.emplace_back(leftOut.kind, leftOut.number);
        } else {
            found->second += leftOut.number;
        }
    }

    std::string text() const {
        std::string text;
        for (const auto& [kind, number] : kinds) {
            text +=
                (text.empty() ? "" : ", ") + std::to_string(number) + ' ' + asPrintableUtf8(kind);
        }
        return text + " (" + reason + ')';
    }
};

} // namespace

std::string leftOutText(const std::vector<LeftOut>& leftOut) {
    std::vector<Group> groups;
    for (const LeftOut& entry : leftOut) {
        const std::string reason = reasonOf(entry);
        auto group = std::find_if(groups.begin(), groups.end(),
                                  [&](const Group& other) { return other.reason == reason; });
        if (group == groups.end()) {
            group = groups.insert(groups.end(), {reason, {}});
        }
        group->add(entry);
    }
    std::string text;
    for (const Group& group : groups) {
        text += (text.empty() ? "" : "; ") + group.text();
    }
    return text;
}
