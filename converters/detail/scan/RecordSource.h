#pragma once

#include "converters/detail/scan/BinaryRecords.h"
#include "converters/detail/scan/Columns.h"
#include "converters/detail/scan/TextRecords.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace converters::scan {

/// Gives the records of the vertices in blocks: their scalar properties without gaps.
class RecordSource {
public:
    virtual ~RecordSource() = default;

    /// The next records, at least one; valid until the next call.
    /// @param most  how many at most, and no more than are left
    /// @throws Fault
    virtual RecordBytes next(std::size_t most, std::size_t& count) = 0;
};

/// Binary records as they lie in the file.
class FixedSource : public RecordSource {
public:
    FixedSource(input::ByteWindow& window, const ScanElement& vertices);
    RecordBytes next(std::size_t most, std::size_t& count) override;

private:
    input::ByteWindow& m_window;
    const ScanElement& m_vertices;
    std::size_t m_size;
    std::uint64_t m_taken = 0;
};

/// Records that are taken one by one, by BinaryRecords or TextRecords.
template <typename Records>
class GatheredSource : public RecordSource {
public:
    GatheredSource(Records& records, std::size_t size) : m_records(records), m_size(size) {}

    RecordBytes next(std::size_t most, std::size_t& count) override {
        constexpr std::size_t usualBytes = 32768;
        count = std::min(most, std::max<std::size_t>(usualBytes / m_size, 1));
        m_block.resize(count * m_size);
        for (std::size_t i = 0; i < count; ++i) {
            m_records.take(m_block.data() + i * m_size);
        }
        return {m_block.data(), m_size};
    }

private:
    Records& m_records;
    std::size_t m_size;
    std::vector<unsigned char> m_block;
};

/// Records that were taken already, then those of another source.
class ReplayedSource : public RecordSource {
public:
    /// Takes `count` records of `size` bytes from `source`.
    ReplayedSource(std::unique_ptr<RecordSource> source, std::size_t size, std::size_t count);
    RecordBytes next(std::size_t most, std::size_t& count) override;

    /// Those that were taken already.
    RecordBytes records() const { return {m_records.data(), m_size}; }

private:
    std::unique_ptr<RecordSource> m_source;
    std::size_t m_size;
    std::vector<unsigned char> m_records;
    std::size_t m_given = 0;
};

} // namespace converters::scan
