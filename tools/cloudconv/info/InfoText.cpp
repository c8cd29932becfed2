#include "tools/cloudconv/info/InfoText.h"

#include "tools/cloudconv/StandardError.h"
#include "tools/cloudconv/Wording.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <utility>

namespace {

using Json = nlohmann::ordered_json;

std::string scalarText(const Json& value) {
    if (value.is_string()) {
        return printable(value.get<std::string>());
    }
    if (value.is_boolean()) {
        return value.get<bool>() ? "yes" : "no";
    }
    if (value.is_number_float()) {
        return numberText(value.get<double>(), 9);
    }
    return value.is_null() ? "none" : value.dump();
}

/// Whether a value is for one line: scalars, or lists of such.
bool isRow(const Json& value) {
    return std::none_of(value.begin(), value.end(), [](const Json& part) {
        return part.is_object() || (part.is_array() && !isRow(part));
    });
}

std::string keyText(std::string key) {
    std::replace(key.begin(), key.end(), '_', ' ');
    return key;
}

/// "name x, type float": the parts of an object or a list in one line.
std::string rowText(const Json& row) {
    std::string text;
    for (const auto& [key, value] : row.items()) {
        text += text.empty() ? "" : ", ";
        text += row.is_object() ? keyText(key) + ' ' : "";
        text += value.is_structured() ? '(' + rowText(value) + ')' : scalarText(value);
    }
    return text.empty() ? "none" : text;
}

/// Lists that are longer are cut.
constexpr std::size_t mostRows = 20;

/// The entities that are left out, counted by kind and reason, with the number of their layers.
Json summedUp(const Json& leftOut) {
    Json sums = Json::array();
    std::map<std::pair<std::string, std::string>, std::size_t> indices;
    for (const Json& part : leftOut) {
        const auto [known, isNew] = indices.emplace(
            std::pair(part["kind"].get<std::string>(), part["reason"].get<std::string>()),
            sums.size());
        if (isNew) {
            sums.push_back({{"kind", part["kind"]},
                            {"layers", 0U},
                            {"number", std::uint64_t(0)},
                            {"reason", part["reason"]}});
        }
        Json& sum = sums[known->second];
        sum["layers"] = sum["layers"].get<std::size_t>() + 1;
        sum["number"] = sum["number"].get<std::uint64_t>() + part["number"].get<std::uint64_t>();
    }
    return sums;
}

void appendText(const Json& value, const std::string& indent, std::string& text) {
    std::size_t rows = 0;
    for (const auto& [key, part] : value.items()) {
        const std::string start = indent + (value.is_object() ? keyText(key) + ":" : "-");
        if (value.is_array() && ++rows > mostRows) {
            text += indent + "- and " + std::to_string(value.size() - mostRows) +
                    " more, all with --json\n";
            return;
        }
        if (!part.is_structured()) {
            text += start + ' ' + scalarText(part) + '\n';
        } else if (part.empty() || isRow(part)) {
            text += start + ' ' + rowText(part) + '\n';
        } else if (value.is_object()) {
            text += start + '\n';
            appendText(part, indent + "  ", text);
        } else {
            // The first of the part's lines stands behind the dash.
            const std::size_t firstLine = text.size();
            appendText(part, indent + "  ", text);
            text.replace(firstLine, start.size(), start);
        }
    }
}

} // namespace

std::string asText(const nlohmann::ordered_json& description) {
    std::string text;
    const auto leftOut = description.find("left_out");
    if (leftOut == description.end() || leftOut->size() <= mostRows) {
        appendText(description, "", text);
    } else {
        Json shorter = description;
        shorter["left_out"] = summedUp(*leftOut);
        appendText(shorter, "", text);
    }
    return text;
}
