#pragma once

#include "converters/ByteSource.h"
#include "converters/DrawingPath.h"
#include "converters/Export.h"
#include "converters/ReadResult.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>

namespace converters {

/// Reads the path of a drawing a few contours at a time: in memory are its entities, and the points
/// of these contours.
///
///     PathReader reader(std::filesystem::path("drawing.dxf"));
///     PathContours contours;
///     ReadResult result = reader.open();
///     while ((result = result ? reader.read(contours) : result) && !contours.contours.empty())
///         follow(contours);
///
/// The contours are those of readPath(), in its order. Where another order than that of the drawing
/// is asked for, all come at once, and all their points are in memory.
///
/// A reader is used by one thread at a time.
class CONVERTERS_EXPORT PathReader {
public:
    /// Reads a drawing in memory.
    ///
    /// @param bytes    the file; has to be there until open() has returned
    /// @param size     how many bytes
    /// @param options  what is followed, and how closely
    PathReader(const void* bytes, std::size_t size, const PathOptions& options = {});
    /// Reads a file, a pipe or a device, which open() opens and closes.
    ///
    /// @param file     its path
    /// @param options  as above
    explicit PathReader(const std::filesystem::path& file, const PathOptions& options = {});
    /// Reads what `source` gives.
    ///
    /// @param source   asked for the bytes in their order
    /// @param options  as above
    /// @param size     of the whole file, for progress and for memory to have ready; 0 where it is
    ///                 not known
    explicit PathReader(ByteSource source, const PathOptions& options = {}, std::uint64_t size = 0);
    ~PathReader();
    /// Takes over from another reader, which is of no use then.
    PathReader(PathReader&& other) noexcept;
    /// Takes over from another reader, which is of no use then.
    PathReader& operator=(PathReader&& other) noexcept;

    /// Reads the drawing, to its end; to be called once, before all that follows.
    ///
    /// @return a failure, with its reason, where readPath() has one; but of too many points, often
    ///         only read() and countPoints() know
    /// @throws as readPath(): std::bad_alloc, and what the source or `progress` throws
    ReadResult open();

    /// What there is to say of the path; from open() on everything but its bounds and lengths,
    /// which are those of the contours read so far.
    const PathReport& report() const;

    /// Reads the next contours.
    ///
    /// @param contours  replaced by them, which their ranges and indexes refer to; empty when there
    ///                  are no more, and when reading fails
    /// @param points    contours follow until they have so many points; the last one is whole
    /// @return a failure, with its reason, when the path has more points than allowed or `progress`
    ///         stops the work; every later call gives the same. A failure, too, before open()
    /// @throws as readPath()
    ReadResult read(PathContours& contours, std::size_t points = 4096);

    /// Counts the points of the contours that read() has not given yet, in less time than reading
    /// them takes: for formats that say first how many points follow.
    ///
    /// @param points  set to their number; 0 when counting fails
    /// @return as read()
    /// @throws as readPath()
    ReadResult countPoints(std::uint64_t& points);

private:
    class CONVERTERS_HIDDEN State;
    std::unique_ptr<State> m_state;
};

} // namespace converters
