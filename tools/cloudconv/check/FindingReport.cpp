#include "tools/cloudconv/check/FindingReport.h"

#include "tools/cloudconv/StandardError.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <map>

namespace {

using converters::Finding;
using converters::FindingKind;
using Json = nlohmann::ordered_json;

/// How many findings of a kind are listed.
constexpr std::size_t mostOfAKind = 20;

/// JSON knows no nan.
Json placeOf(const cv::Point3_<double>& place) {
    Json numbers = Json::array();
    for (const double number : {place.x, place.y, place.z}) {
        numbers.push_back(std::isfinite(number) ? Json(number) : Json());
    }
    return numbers;
}

} // namespace

std::string asText(const FindingReport& report, bool all) {
    std::map<FindingKind, std::vector<const Finding*>> kinds;
    for (const Finding& finding : report.findings) {
        kinds[finding.kind].push_back(&finding);
    }
    std::string text;
    for (const auto& [kind, findings] : kinds) {
        const std::string start = report.file + ": " + nameOf(kind) + ": ";
        const std::size_t listed = all ? findings.size() : std::min(findings.size(), mostOfAKind);
        for (std::size_t i = 0; i < listed; ++i) {
            text += printable(start + findings[i]->text) + '\n';
        }
        if (listed < findings.size()) {
            text += printable(start + "and " + std::to_string(findings.size() - listed) +
                              " more, listed with --all") +
                    '\n';
        }
    }
    return text;
}

nlohmann::ordered_json asJson(const FindingReport& report) {
    Json findings = Json::array();
    for (const Finding& finding : report.findings) {
        Json places = Json::array();
        for (const cv::Point3_<double>& place : finding.places) {
            places.push_back(placeOf(place));
        }
        Json entity;
        if (!finding.entities.empty()) {
            const converters::FoundEntity& first = finding.entities.front();
            const std::string handle = converters::handleText(first.handle);
            entity = {{"kind", first.kind},
                      {"handle", handle.empty() ? Json() : Json(handle)},
                      {"layer", first.layer}};
        }
        findings.push_back({{"kind", nameOf(finding.kind)},
                            {"text", finding.text},
                            {"places", std::move(places)},
                            {"entity", std::move(entity)}});
    }
    return {{"file", report.file}, {"findings", std::move(findings)}, {"notes", report.notes}};
}
