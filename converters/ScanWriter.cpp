#include "converters/ScanWriter.h"

#include "converters/detail/scan/PointFormats.h"

#include <algorithm>
#include <utility>

namespace converters {

class ScanWriter::State {
public:
    State(ByteSink sink, ScanLayout layout, ScanOutput output, const ScanWriteOptions& options)
        : m_sink(std::move(sink)), m_layout(std::move(layout)), m_options(options),
          m_format(scan::makePointFormat(output, m_layout, m_options)) {}

    bool begin(std::uint64_t count) {
        m_announced = count;
        m_isOpen = m_format->isPossible();
        if (m_isOpen) {
            m_format->begin(count, m_bytes);
        }
        return m_isOpen;
    }

    bool write(const unsigned char* records, std::size_t count) {
        m_written += count;
        while (m_isOpen && count != 0) {
            const std::size_t some = std::min(count, pointsAtOnce());
            m_format->add(records, some, m_bytes);
            records += some * m_layout.recordSize;
            count -= some;
            m_isOpen = m_bytes.size() < blockSize || drain();
        }
        return m_isOpen;
    }

    bool finish() {
        if (m_isOpen) {
            m_format->end(m_bytes);
            m_isOpen = drain();
        }
        return std::exchange(m_isOpen, false) && m_written == m_announced;
    }

private:
    static constexpr std::size_t blockSize = std::size_t{1} << 18;

    /// So that what is held back stays small.
    std::size_t pointsAtOnce() const {
        constexpr std::size_t usual = 1024;
        return std::max<std::size_t>(
            std::min(usual, blockSize / std::max<std::size_t>(m_layout.recordSize, 1)), 1);
    }

    bool drain() {
        const bool isTaken = m_bytes.empty() || m_sink(m_bytes.data(), m_bytes.size());
        m_bytes.clear();
        return isTaken;
    }

    ByteSink m_sink;
    ScanLayout m_layout;
    ScanWriteOptions m_options;
    std::unique_ptr<scan::PointFormat> m_format;
    std::string m_bytes;
    std::uint64_t m_announced = 0;
    std::uint64_t m_written = 0;
    bool m_isOpen = false;
};

ScanWriter::ScanWriter(ByteSink sink, ScanLayout layout, ScanOutput output,
                       const ScanWriteOptions& options)
    : m_state(new State(std::move(sink), std::move(layout), output, options)) {}

ScanWriter::~ScanWriter() = default;
ScanWriter::ScanWriter(ScanWriter&& other) noexcept = default;
ScanWriter& ScanWriter::operator=(ScanWriter&& other) noexcept = default;

bool ScanWriter::begin(std::uint64_t count) {
    return m_state->begin(count);
}

bool ScanWriter::write(const void* records, std::size_t count) {
    return m_state->write(static_cast<const unsigned char*>(records), count);
}

bool ScanWriter::finish() {
    return m_state->finish();
}

} // namespace converters
