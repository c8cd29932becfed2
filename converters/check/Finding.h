#pragma once

#include <opencv2/core/types.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace converters {

/// What a user must know of a drawing before a robot or a machine follows it.
enum class FindingKind : std::uint8_t {
    /// Ends of open contours that are near and not joined.
    nearMiss,
    /// An entity that equals an earlier one, in either direction and of any kind.
    duplicate,
    /// An entity that has no extent, or none that is walked.
    withoutExtent,
    /// Geometry of the drawing that is not followed.
    leftOut,
    /// An open contour that touches or crosses itself.
    touchesItself,
    /// A closed contour that crosses itself.
    crossesItself,
    /// The drawing does not say how long its unit is.
    noUnit,

    // Of the walk by the fixed rules of fromDxf() alone.

    /// An arc that is walked as its chord.
    walkedStraight,
    /// The closing edge of a polyline, which is walked backwards after a jump.
    closingEdge,
    /// Walked mirrored or flat: its extrusion is passed over.
    mirrored,
    /// Walked although the drawing does not show it.
    hidden,
    /// Walked although it is on a sheet of paper.
    paperSpace,
    /// Not walked: its kind is not taken, or it is in a block.
    notWalked,
    /// Shorter than a step, of which only the start is walked.
    tooShort,
    /// The drawing is not read to its end.
    cutShort
};

/// The kind in words: "near miss". A string of static duration.
const char* nameOf(FindingKind kind);

/// An entity, by what the file says of it.
struct FoundEntity {
    /// As the file spells it: "LWPOLYLINE".
    std::string kind;
    /// Group 5, a hexadecimal number in the file; 0 where it has none.
    std::uint64_t handle = 0;
    std::string layer;
    /// The handle of the outermost INSERT that draws it; 0 where none does.
    std::uint64_t insert = 0;
};

/// Something that was found.
struct Finding {
    FindingKind kind;
    /// In words, with entities and places; without the kind.
    std::string text;
    /// Where, in the coordinates of the path or the walk; empty where it has no place.
    std::vector<cv::Point3_<double>> places;
    /// The entity that this is about, and of a duplicate the one that it repeats; empty where it is
    /// about none.
    std::vector<FoundEntity> entities;
};

/// "LINE 2F": kind and handle.
std::string shortNameOf(const FoundEntity& entity);

/// A handle as the file has it; empty for none.
std::string handleText(std::uint64_t handle);

/// A place in a plane: "(0, 6.998)".
std::string placeText(double x, double y);

/// A length, which is no more exact than the places that it lies between.
std::string lengthText(double length);

} // namespace converters
