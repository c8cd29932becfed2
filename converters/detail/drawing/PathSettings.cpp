#include "converters/detail/drawing/PathSettings.h"

#include "converters/detail/drawing/Refusal.h"

#include <cmath>
#include <string>

namespace converters::drawing {

namespace {

constexpr auto lastUnit = static_cast<std::uint8_t>(LengthUnit::surveyFoot);

void checkPositive(const char* name, std::optional<double> value) {
    if (value && !(*value > 0)) {
        throw Refusal{std::string("the ") + name + " has to be above 0"};
    }
}

LengthUnit unitOf(const Header& header, std::vector<std::string>& notes) {
    if (header.units >= 0 && header.units <= lastUnit) {
        return static_cast<LengthUnit>(header.units);
    }
    notes.push_back("the drawing names a unit that is not known, number " +
                    std::to_string(header.units));
    return LengthUnit::none;
}

/// What the numbers of a drawing are taken as when they are to be converted.
LengthUnit assumedUnit(const Header& header, std::vector<std::string>& notes) {
    notes.emplace_back(std::string("the drawing names no unit; its numbers are taken as ") +
                       (header.isImperial ? "inches" : "millimetres"));
    return header.isImperial ? LengthUnit::inch : LengthUnit::millimetre;
}

Affine mapTo(PathAxes axes, double factor) {
    if (axes == PathAxes::drawing) {
        return Affine::scaling(factor);
    }
    return {{factor, 0, 0}, {0, 0, factor}, {0, 0, 0}, {0, 0, 0}};
}

} // namespace

void checkOptions(const PathOptions& options) {
    checkPositive("tolerance", options.tolerance);
    checkPositive("step", options.step);
    checkPositive("scale", options.scale);
    if (!std::isfinite(options.scale)) {
        throw Refusal{"the scale has to be finite"};
    }
    if (options.joinDistance &&
        !(*options.joinDistance >= 0 && std::isfinite(*options.joinDistance))) {
        throw Refusal{"the join distance has to be 0 or above, and finite"};
    }
    if (static_cast<std::uint8_t>(options.unit) > lastUnit) {
        throw Refusal{"the unit asked for is not known"};
    }
}

PathSettings settingsFor(const Drawing& drawing, const PathOptions& options,
                         std::vector<std::string>& notes) {
    constexpr double defaultMetres = 0.01e-3;
    constexpr double defaultTolerance = 0.01;
    PathSettings settings{};
    settings.drawingUnit = unitOf(drawing.header, notes);
    settings.unit = options.unit == LengthUnit::none ? settings.drawingUnit : options.unit;
    double factor = options.scale;
    if (options.unit != LengthUnit::none && options.unit != settings.drawingUnit) {
        const LengthUnit from = settings.drawingUnit == LengthUnit::none
                                    ? assumedUnit(drawing.header, notes)
                                    : settings.drawingUnit;
        factor *= metresPer(from) / metresPer(options.unit);
    }
    if (!std::isfinite(factor) || factor == 0) {
        throw Refusal{"the scale is too large or too small for the units"};
    }
    settings.map = mapTo(options.axes, factor);
    const bool hasUnit = settings.unit != LengthUnit::none;
    settings.limits.tolerance = options.tolerance.value_or(
        hasUnit ? defaultMetres / metresPer(settings.unit) : defaultTolerance);
    if (options.step) {
        settings.limits.step = *options.step;
    }
    settings.limits.maximumPoints = options.maximumPoints;
    settings.joinDistance = options.joinDistance.value_or(defaultJoinDistance * factor);
    return settings;
}

} // namespace converters::drawing
