#include "converters/detail/scan/Roles.h"

#include "converters/detail/scan/Fault.h"
#include "converters/detail/scan/Wording.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace converters::scan {
namespace {

using Properties = std::vector<ScanProperty>;

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return result;
}

/// The first scalar property that `isIt`.
template <typename Predicate>
std::optional<std::size_t> findScalar(const Properties& properties, Predicate isIt) {
    for (std::size_t i = 0; i < properties.size(); ++i) {
        if (!properties[i].countType && isIt(properties[i].name)) {
            return i;
        }
    }
    return std::nullopt;
}

bool hasProperty(const Properties& properties, std::string_view name) {
    return std::any_of(properties.begin(), properties.end(),
                       [&](const ScanProperty& each) { return each.name == name; });
}

std::size_t findCoordinate(const Properties& properties, char lower) {
    const std::string names[] = {std::string(1, lower),
                                 std::string(1, static_cast<char>(lower - 'a' + 'A'))};
    for (const std::string& name : names) {
        const auto isName = [&](const ScanProperty& each) { return each.name == name; };
        if (std::count_if(properties.begin(), properties.end(), isName) > 1) {
            refuse("property " + name + " is there twice");
        }
        const auto found = findScalar(properties, [&](const auto& each) { return each == name; });
        if (found) {
            return *found;
        }
        if (hasProperty(properties, name)) {
            refuse("property " + name + " is a list");
        }
    }
    refuse("property " + names[0] + " is missing");
}

std::optional<std::size_t> findIntensity(const Properties& properties) {
    for (const std::string_view name : {"intensity", "scalar_intensity", "reflectance",
                                        "scalar_reflectance", "remission", "scalar_remission"}) {
        const auto found =
            findScalar(properties, [&](const auto& each) { return lowered(each) == name; });
        if (found) {
            return found;
        }
    }
    return std::nullopt;
}

std::string namesOf(const Properties& properties) {
    constexpr std::size_t most = 20;
    std::string names;
    for (std::size_t i = 0; i < std::min(properties.size(), most); ++i) {
        names += (i == 0 ? "" : ", ") + inQuotes(properties[i].name);
    }
    return names + (properties.size() > most ? " and others" : "");
}

std::size_t findAskedIntensity(const Properties& properties, const std::string& name) {
    const auto found = findScalar(properties, [&](const auto& each) { return each == name; });
    if (found) {
        return *found;
    }
    if (hasProperty(properties, name)) {
        refuse("property " + inQuotes(name) + ", wanted as intensity, is a list");
    }
    refuse("the vertices have no property " + inQuotes(name) + ", wanted as intensity; they have " +
           namesOf(properties));
}

void keepFirstScalars(Properties& properties) {
    std::unordered_set<std::string_view> names;
    for (ScanProperty& property : properties) {
        if (!property.countType && names.insert(property.name).second) {
            property.use = ScanPropertyUse::kept;
        }
    }
}

} // namespace

Roles assignRoles(ScanElement& vertices, const std::string& intensity) {
    Properties& properties = vertices.properties;
    keepFirstScalars(properties);
    Roles roles;
    if (vertices.count == 0) {
        return roles;
    }
    roles.x = findCoordinate(properties, 'x');
    roles.y = findCoordinate(properties, 'y');
    roles.z = findCoordinate(properties, 'z');
    roles.intensity =
        intensity.empty() ? findIntensity(properties) : findAskedIntensity(properties, intensity);
    if (roles.intensity) {
        properties[*roles.intensity].use = ScanPropertyUse::intensity;
    }
    properties[*roles.x].use = ScanPropertyUse::x;
    properties[*roles.y].use = ScanPropertyUse::y;
    properties[*roles.z].use = ScanPropertyUse::z;
    return roles;
}

} // namespace converters::scan
