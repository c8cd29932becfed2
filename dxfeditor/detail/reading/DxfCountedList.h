#pragma once

#include "dxfeditor/detail/reading/DxfGroupSet.h"
#include "dxfeditor/text/DxfGroups.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace dxfeditor {

/// No list gets more elements: dxflib computes four times a count as an int.
constexpr std::size_t greatestDxfCount = std::size_t{1} << 28;

/// How an entity announces and gives a list of values.
struct DxfListCodes {
    /// The code of the count.
    int count;
    /// The code that each value of the list begins with.
    int first;
    /// All codes of the values.
    DxfGroupSet members;
    /// Whether dxflib reports zeros in place of values that the count promises but the entity does
    /// not have. (It reports the others only.)
    bool padded;
};

inline constexpr DxfListCodes lwPolylineVertices = {90, 10, {10, 20, 30, 42}, false};
inline constexpr DxfListCodes splineKnots = {72, 40, {40}, true};
inline constexpr DxfListCodes splineControlPoints = {73, 10, {10, 20, 30, 41}, true};
inline constexpr DxfListCodes splineFitPoints = {74, 11, {11, 21, 31}, true};

/// One list of one entity: where it begins, and a count of it that does dxflib no harm.
class DxfCountedList {
public:
    DxfCountedList(const DxfListCodes& codes, std::string_view entity);

    /// Whether dxflib makes use of the group, one of the entity's. It begins the list anew at each
    /// count, so it does not of values before the last one; and the counts are replaced.
    bool takes(const DxfGroup& group) const;

    /// The code of the count.
    int countCode() const { return m_codes.count; }

    /// The count for dxflib, which allocates what it says: that of the entity unless it is more
    /// than the text can hold, and the number of values when the entity has none.
    ///
    /// @param textEnd  the end of the whole text
    /// @param padding  the number of values that all lists of the text together may still promise
    ///                 without having them; what this one promises is taken off
    int count(const char* textEnd, std::size_t& padding) const;

    /// The same for a list that is not padded.
    int count() const;

private:
    /// The entity's own count.
    int stated() const;

    const DxfListCodes& m_codes;
    /// The last count.
    std::optional<DxfGroup> m_count;
    /// Values after it.
    std::size_t m_values = 0;
};

} // namespace dxfeditor
