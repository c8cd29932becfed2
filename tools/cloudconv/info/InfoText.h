#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

/// A description as lines for people. Long lists are cut; what is left out of a drawing is summed
/// up by kind and reason before.
std::string asText(const nlohmann::ordered_json& description);
