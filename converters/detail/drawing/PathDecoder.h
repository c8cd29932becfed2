#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/PathWriter.h"
#include "converters/detail/drawing/Progress.h"
#include "converters/detail/drawing/geometry/Curve.h"
#include "converters/detail/input/ByteWindow.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace converters::drawing {

/// From the bytes of a drawing to its contours.
class PathDecoder {
public:
    /// Reads all but the points: what is drawn, and how it is joined to contours.
    ///
    /// @param options  have to outlive this object
    /// @throws Refusal
    PathDecoder(input::ByteWindow file, const PathOptions& options);
    ~PathDecoder();
    PathDecoder(const PathDecoder&) = delete;
    PathDecoder& operator=(const PathDecoder&) = delete;

    /// Its bounds and lengths are those of what is written so far.
    const PathReport& report() const { return m_report; }
    PathReport takeReport() { return std::move(m_report); }

    /// Writes the next contours, all of them where they are put into an order.
    ///
    /// @param contours  has none; gets them, and keeps none when there are no more
    /// @param enough    when there are so many points, no further contour begins
    /// @throws Refusal
    void write(PathContours& contours, std::size_t enough);

    /// How many points the contours have that are not written.
    ///
    /// @throws Refusal
    std::uint64_t countPoints() const;

private:
    struct Joined;

    void addLengths(const PathContours& contours);

    const PathOptions& m_options;
    Progress m_progress;
    PathReport m_report;
    std::unique_ptr<Joined> m_joined;
    std::optional<Point> m_end;
};

} // namespace converters::drawing
