#pragma once

#include "converters/ByteSource.h"
#include "converters/Export.h"
#include "converters/ReadResult.h"
#include "converters/Scan.h"
#include "converters/ScanLayout.h"

#include <pcl/point_types.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>

namespace converters {

/// Reads a scan in blocks of points, of any size in constant memory: a few MiB, and the header.
/// Pipes will do: the file is read once, from its start to its end.
///
///     ScanReader reader(std::filesystem::path("scan.ply"));
///     std::vector<pcl::PointXYZI> block(65536);
///     std::size_t count = 0;
///     ReadResult result = reader.open();
///     while ((result = result ? reader.read(block.data(), block.size(), count) : result) && count)
///         use(block.data(), count);
///
/// The points are those of readScan(), which refuses the same files with the same reasons. But a
/// fault shows only when the reader comes to it, perhaps behind the last point: a file is whole
/// when read() has succeeded with a count of 0.
///
/// A reader is used by one thread at a time.
class CONVERTERS_EXPORT ScanReader {
public:
    /// Reads a file in memory.
    ///
    /// @param bytes    the file; has to outlive the reader
    /// @param size     how many bytes
    /// @param options  how it is read
    ScanReader(const void* bytes, std::size_t size, const ScanOptions& options = {});
    /// Reads a file, a pipe or a device, which open() opens.
    ///
    /// @param file     its path
    /// @param options  how it is read
    explicit ScanReader(const std::filesystem::path& file, const ScanOptions& options = {});
    /// Reads what `source` gives.
    ///
    /// @param source   asked for the bytes in their order
    /// @param options  how it is read
    /// @param size     of the whole file, where known, for progress only; else 0
    explicit ScanReader(ByteSource source, const ScanOptions& options = {}, std::uint64_t size = 0);
    ~ScanReader();
    /// Takes over from another reader, which is of no use then.
    ScanReader(ScanReader&& other) noexcept;
    /// Takes over from another reader, which is of no use then.
    ScanReader& operator=(ScanReader&& other) noexcept;

    /// Reads the header; to be called once, before all that follows.
    ///
    /// @return a failure, with its reason, when the file is refused
    /// @throws std::bad_alloc
    ReadResult open();

    /// What is known so far: after open() what the header says, at the end everything.
    const ScanReport& report() const;

    /// The records that read(void*, ...) gives: the scalar properties of the vertices, in the order
    /// of the file and without gaps. Coordinates stay of their type, but whole numbers that are
    /// shifted become float64.
    const ScanLayout& layout() const;

    /// Reads the next points with all their scalar properties.
    ///
    /// @param records  room for `most` records of layout().recordSize bytes
    /// @param most     not 0
    /// @param count    set to how many were read: `most`, but for the last ones; 0 when all points
    ///                 have been read and what is behind them has been checked, and after a failure
    /// @return a failure, with its reason, when the file is refused; every later call gives the
    ///         same
    /// @throws std::bad_alloc
    ReadResult read(void* records, std::size_t most, std::size_t& count);

    /// Reads the next points, position and intensity alone. One reader gives either records or
    /// points.
    ReadResult read(pcl::PointXYZI* points, std::size_t most, std::size_t& count);

private:
    class CONVERTERS_HIDDEN State;
    std::unique_ptr<State> m_state;
};

} // namespace converters
