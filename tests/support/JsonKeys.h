#pragma once

#include <nlohmann/json.hpp>

#include <string>

/// The keys of an object in their order, and those of the first object in each list.
inline std::string keysOf(const nlohmann::ordered_json& value) {
    std::string keys;
    for (const auto& [key, part] : value.items()) {
        const nlohmann::ordered_json& inner = part.is_array() && !part.empty() ? part[0] : part;
        keys += (keys.empty() ? "" : " ") + key;
        keys += inner.is_object() && !inner.empty() ? '(' + keysOf(inner) + ')' : "";
    }
    return keys;
}
