#include "converters/detail/input/ByteWindow.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <numeric>
#include <utility>

namespace converters::input {
namespace {

/// The number of line feeds. Sixteen sums of one byte each are kept side by side, as processors add
/// them in one step, and taken together before they overflow.
std::uint64_t countLineFeeds(const char* c, const char* end) {
    constexpr std::ptrdiff_t lanes = 16;
    constexpr std::ptrdiff_t mostRounds = std::numeric_limits<std::uint8_t>::max();
    std::uint64_t count = 0;
    while (end - c >= lanes) {
        std::array<std::uint8_t, lanes> sums{};
        for (auto rounds = std::min((end - c) / lanes, mostRounds); rounds > 0; --rounds) {
            for (std::size_t i = 0; i < sums.size(); ++i) {
                sums[i] = static_cast<std::uint8_t>(sums[i] + (c[i] == '\n' ? 1 : 0));
            }
            c += lanes;
        }
        count = std::accumulate(sums.begin(), sums.end(), count);
    }
    return count + static_cast<std::uint64_t>(std::count(c, end, '\n'));
}

} // namespace

void LineCount::add(const char* begin, const char* end) {
    const auto size = static_cast<std::size_t>(end - begin);
    const bool hasReturns = size != 0 && std::memchr(begin, '\r', size) != nullptr;
    if (!hasReturns && !m_isBehindReturn) {
        m_line += countLineFeeds(begin, end);
        return;
    }
    for (const char* c = begin; c != end; ++c) {
        m_line += *c == '\r' || (*c == '\n' && !m_isBehindReturn) ? 1 : 0;
        m_isBehindReturn = *c == '\r';
    }
}

void LineFeedCount::add(const char* begin, const char* end) {
    const char* c = begin;
    while (!m_hasLone && c != end) {
        const char* const found = std::find(c, end, '\n');
        if (found == end) {
            break;
        }
        m_hasLone = found == begin ? !m_isBehindReturn : found[-1] != '\r';
        ++m_behindReturns;
        c = found + 1;
    }
    if (begin != end) {
        m_isBehindReturn = end[-1] == '\r';
    }
}

ByteWindow::ByteWindow(const void* bytes, std::size_t size)
    : m_begin(static_cast<const char*>(bytes)), m_end(m_begin + size), m_base(m_begin),
      m_size(size), m_hasEnded(true) {}

ByteWindow::ByteWindow(ByteSource source, std::uint64_t size, std::size_t capacity)
    : m_source(std::move(source)), m_size(size), m_hasEnded(false), m_buffer(new char[capacity]),
      m_capacity(capacity) {
    m_begin = m_end = m_base = m_buffer.get();
}

bool ByteWindow::more() {
    if (m_hasEnded) {
        return false;
    }
    makeRoom();
    const auto used = static_cast<std::size_t>(m_end - m_base);
    const std::size_t room = m_capacity - used;
    const std::size_t count = std::min(m_source(m_buffer.get() + used, room), room);
    m_hasEnded = count == 0;
    m_end += count;
    if (m_lineFeeds) {
        m_lineFeeds->add(m_end - count, m_end);
    }
    return !m_hasEnded;
}

/// Makes at least half of the buffer free: moves the bytes to its front or, when they are many,
/// into a larger one.
void ByteWindow::makeRoom() {
    if (static_cast<std::size_t>(m_end - m_base) <= m_capacity / 2) {
        return;
    }
    const std::size_t kept = available();
    if (kept > m_capacity / 2) {
        std::unique_ptr<char[]> larger(new char[m_capacity * 2]);
        std::memcpy(larger.get(), m_begin, kept);
        countTakenLines();
        m_buffer.swap(larger);
        m_capacity *= 2;
    } else {
        countTakenLines();
        std::memmove(m_buffer.get(), m_begin, kept);
    }
    m_movedBytes += static_cast<std::size_t>(m_begin - m_base);
    m_begin = m_base = m_buffer.get();
    m_end = m_begin + kept;
    m_counted = m_counted == nullptr ? nullptr : m_base;
}

bool ByteWindow::bring(std::size_t size) {
    while (available() < size) {
        if (!more()) {
            return false;
        }
    }
    return true;
}

std::uint64_t ByteWindow::skip(std::uint64_t size) {
    std::uint64_t left = size;
    for (;;) {
        const auto step = static_cast<std::size_t>(std::min<std::uint64_t>(left, available()));
        m_begin += step;
        left -= step;
        if (left == 0 || !more()) {
            return size - left;
        }
    }
}

std::optional<std::uint64_t> ByteWindow::bytesLeft() const {
    if (m_hasEnded) {
        return available();
    }
    if (m_size == 0) {
        return std::nullopt;
    }
    return std::max<std::uint64_t>(m_size - std::min(m_size, position()), available());
}

double ByteWindow::done() const {
    return m_size == 0
               ? 0
               : std::min(1.0, static_cast<double>(position()) / static_cast<double>(m_size));
}

void ByteWindow::countLinesFrom(std::uint64_t line) {
    m_lines = LineCount(line);
    m_counted = m_begin;
}

void ByteWindow::countTakenLines() {
    if (m_counted != nullptr) {
        m_lines.add(m_counted, m_begin);
        m_counted = m_begin;
    }
}

void ByteWindow::countLineFeeds() {
    m_lineFeeds.emplace();
    m_lineFeeds->add(m_begin, m_end);
}

std::uint64_t ByteWindow::lineAt(const char* position) {
    countTakenLines();
    LineCount lines = m_lines;
    lines.add(m_begin, position);
    return lines.line();
}

} // namespace converters::input
