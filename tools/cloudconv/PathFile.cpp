#include "tools/cloudconv/PathFile.h"

#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/Progress.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace {

using converters::LeftOut;
using converters::LeftOutReason;
using converters::LengthUnit;

/// Of each reason the kinds and numbers, in the order in which they came up.
using KindCounts = std::vector<std::pair<std::string, std::uint64_t>>;

void add(KindCounts& counts, const LeftOut& part) {
    // Of layers that hide things a person wants to know the name.
    const bool namesLayer = part.reason == LeftOutReason::layerOff ||
                            part.reason == LeftOutReason::layerFrozen ||
                            part.reason == LeftOutReason::layerNotAsked;
    const std::string what = namesLayer ? "of layer " + part.layer : part.kind;
    const auto known = std::find_if(counts.begin(), counts.end(),
                                    [&](const auto& count) { return count.first == what; });
    if (known == counts.end()) {
        counts.emplace_back(what, part.number);
    } else {
        known->second += part.number;
    }
}

} // namespace

converters::DrawingPath readPathFile(const std::string& name,
                                     const std::vector<unsigned char>& bytes,
                                     converters::PathOptions options, Progress& progress) {
    constexpr double parts = 1000.0;
    progress.begin("following " + name, static_cast<std::size_t>(parts));
    options.progress = [&progress](double done) {
        progress.reached(static_cast<std::size_t>(done * parts));
        return true;
    };
    converters::DrawingPath path;
    const converters::ReadResult result =
        converters::readPath(bytes.data(), bytes.size(), path, options);
    if (!result) {
        throw FileError(name, result.reason);
    }
    return path;
}

std::string leftOutText(const converters::DrawingPath& path) {
    constexpr std::size_t mostKinds = 8;
    std::map<LeftOutReason, KindCounts> reasons;
    for (const LeftOut& part : path.leftOut) {
        add(reasons[part.reason], part);
    }
    std::string text;
    for (const auto& [reason, counts] : reasons) {
        text += text.empty() ? "left out: " : "; ";
        for (std::size_t i = 0; i < std::min(counts.size(), mostKinds); ++i) {
            text += (i == 0 ? "" : ", ") + std::to_string(counts[i].second) + ' ' + counts[i].first;
        }
        if (counts.size() > mostKinds) {
            text += " and " + std::to_string(counts.size() - mostKinds) + " more";
        }
        text += std::string(" (") + nameOf(reason) + ')';
    }
    return text;
}

std::string shortName(LengthUnit unit) {
    constexpr std::array<std::pair<LengthUnit, const char*>, 5> names = {
        {{LengthUnit::millimetre, "mm"},
         {LengthUnit::centimetre, "cm"},
         {LengthUnit::metre, "m"},
         {LengthUnit::inch, "in"},
         {LengthUnit::foot, "ft"}}};
    for (const auto& [known, name] : names) {
        if (known == unit) {
            return name;
        }
    }
    return {};
}
