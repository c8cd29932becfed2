#pragma once

#include "converters/check/Finding.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

/// What check says of a file.
struct FindingReport {
    /// The file's name.
    std::string file;
    std::vector<converters::Finding> findings;
    /// What is no finding, and yet to be known.
    std::vector<std::string> notes;
};

/// A line for each finding, grouped by kind: "drawing.dxf: near miss: ...". Of each kind the first
/// 20, and how many more there are; all with `all`.
std::string asText(const FindingReport& report, bool all);

/// The same as JSON, in full.
nlohmann::ordered_json asJson(const FindingReport& report);
