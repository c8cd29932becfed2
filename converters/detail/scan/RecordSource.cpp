#include "converters/detail/scan/RecordSource.h"

#include "converters/detail/scan/Elements.h"
#include "converters/detail/scan/Fault.h"

#include <algorithm>
#include <utility>

namespace converters::scan {

FixedSource::FixedSource(input::ByteWindow& window, const ScanElement& vertices)
    : m_window(window), m_vertices(vertices), m_size(scalarBytes(vertices)) {}

RecordBytes FixedSource::next(std::size_t most, std::size_t& count) {
    if (!m_window.need(m_size)) {
        refuse(endsAfter(m_vertices, m_taken));
    }
    count = std::min(most, m_window.available() / m_size);
    const auto* data = reinterpret_cast<const unsigned char*>(m_window.begin());
    m_window.take(m_window.begin() + count * m_size);
    m_taken += count;
    return {data, m_size};
}

ReplayedSource::ReplayedSource(std::unique_ptr<RecordSource> source, std::size_t size,
                               std::size_t count)
    : m_source(std::move(source)), m_size(size) {
    for (std::size_t taken = 0; taken < count;) {
        std::size_t more = 0;
        const RecordBytes next = m_source->next(count - taken, more);
        m_records.insert(m_records.end(), next.data, next.data + more * m_size);
        taken += more;
    }
}

RecordBytes ReplayedSource::next(std::size_t most, std::size_t& count) {
    if (m_given == m_records.size()) {
        m_records = {};
        m_given = 0;
        return m_source->next(most, count);
    }
    count = std::min(most, (m_records.size() - m_given) / m_size);
    const unsigned char* const data = m_records.data() + m_given;
    m_given += count * m_size;
    return {data, m_size};
}

} // namespace converters::scan
