#pragma once

#include "converters/Export.h"
#include "converters/ScanLayout.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace converters {

/// Takes the next bytes of a file.
/// @return false when they cannot be taken; no more will come then
using ByteSink = std::function<bool(const void* bytes, std::size_t size)>;

/// What a ScanWriter makes of points.
enum class ScanOutput : std::uint8_t {
    /// PLY, binary little-endian: each field a property of its name and type.
    plyBinary,
    /// PLY as text: each field a property of its name and type.
    plyAscii,
    /// A line of the fields' names, then a line a point; commas between.
    csv,
    /// A line a point, blanks between, no heading.
    xyz,
    /// A drawing of release R12 with a POINT for each point, as toDxf() makes it; of fields other
    /// than x, y and z (in either case) nothing is left.
    dxf
};

/// How points are written.
struct ScanWriteOptions {
    /// Significant digits of the floating numbers of a text, 1 to 17, as "%g" prints them: with 6,
    /// those of toPlyAscii(). Without, the shortest text that reads back as the same number. DXF
    /// has sixteen decimals in any case.
    std::optional<int> digits;
    /// Rows and columns of a PLY file, for its "obj_info" lines; no such lines when both are 0.
    std::uint64_t width = 0;
    /// Number of rows.
    std::uint64_t height = 0;
    /// Lines "comment" of a PLY file; line ends in them become blanks.
    std::vector<std::string> comments;
};

/// Writes points, in blocks, in constant memory.
///
/// The text depends on no locale; missing numbers are nan or -nan, infinite ones inf or -inf. Names
/// are written as they are, but blanks and control characters in those of a PLY file as "_", and
/// names with commas, quotes or line ends in quotes in CSV.
class CONVERTERS_EXPORT ScanWriter {
public:
    /// @param sink     called with blocks of the file, in order, by write() and finish(); what it
    ///                 throws leaves the function that called it
    /// @param layout   of the records to come
    /// @param output   what is written
    /// @param options  how it is written
    ScanWriter(ByteSink sink, ScanLayout layout, ScanOutput output,
               const ScanWriteOptions& options = {});
    ~ScanWriter();
    /// Takes over from another writer, which is of no use then.
    ScanWriter(ScanWriter&& other) noexcept;
    /// Takes over from another writer, which is of no use then.
    ScanWriter& operator=(ScanWriter&& other) noexcept;

    /// Writes what comes before the points.
    ///
    /// @param count  how many points will come; PLY files say so in front
    /// @return false when x, y or z is missing (DXF alone)
    bool begin(std::uint64_t count);

    /// Writes points.
    ///
    /// @param records  records of the layout
    /// @param count    how many
    /// @return false when the sink takes no more
    bool write(const void* records, std::size_t count);

    /// Writes what comes behind the points, and what is still held back.
    ///
    /// @return false when the sink takes no more, or other than the announced number of points came
    bool finish();

private:
    class CONVERTERS_HIDDEN State;
    std::unique_ptr<State> m_state;
};

} // namespace converters
