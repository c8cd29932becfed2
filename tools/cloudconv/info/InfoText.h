#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

/// A description as lines for people. Long lists are cut.
std::string asText(const nlohmann::ordered_json& description);
