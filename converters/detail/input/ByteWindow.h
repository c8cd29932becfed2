#pragma once

#include "converters/ByteSource.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace converters::input {

/// Counts the lines of a text that comes in pieces. A line ends with LF, CR LF or CR.
class LineCount {
public:
    /// @param line  the number of the line that begins here
    explicit LineCount(std::uint64_t line) : m_line(line) {}

    void add(const char* begin, const char* end);

    /// The number of the line that the next character belongs to.
    std::uint64_t line() const { return m_line; }

private:
    std::uint64_t m_line;
    bool m_isBehindReturn = false;
};

/// Counts the line feeds of bytes that come in pieces, until one stands alone.
class LineFeedCount {
public:
    void add(const char* begin, const char* end);

    /// Those behind a carriage return; 0 when one stands alone.
    std::uint64_t behindReturns() const { return m_hasLone ? 0 : m_behindReturns; }

private:
    std::uint64_t m_behindReturns = 0;
    bool m_hasLone = false;
    bool m_isBehindReturn = false;
};

/// The part of a file that is in memory: all of it, or a stretch of what a source gives, which
/// moves on. Bytes are looked at from begin() to end(), and taken from the front.
///
/// Pointers into it last until the next call of more(), need() or skip().
class ByteWindow {
public:
    /// Stays in a processor's second cache.
    static constexpr std::size_t usualCapacity = std::size_t{1} << 18;

    /// A file in memory.
    ByteWindow(const void* bytes, std::size_t size);
    /// @param size      of the whole file; 0 where it is not known
    /// @param capacity  of the window at first; it grows with what is looked at at once
    ByteWindow(ByteSource source, std::uint64_t size, std::size_t capacity = usualCapacity);

    const char* begin() const { return m_begin; }
    const char* end() const { return m_end; }
    std::size_t available() const { return static_cast<std::size_t>(m_end - m_begin); }

    /// Takes the bytes before `position`, which is in the window.
    void take(const char* position) { m_begin = position; }

    /// Brings more bytes into the window; false when the file has no more.
    bool more();

    /// Brings bytes into the window until there are `size` of them; false when the file has fewer.
    bool need(std::size_t size) { return size <= available() || bring(size); }

    /// Takes `size` bytes, whether they fit into the window or not.
    /// @return how many there were
    std::uint64_t skip(std::uint64_t size);

    /// Whether the window reaches to the end of the file, as far as is known.
    bool hasEnded() const { return m_hasEnded; }

    /// Of the whole file; 0 where it is not known.
    std::uint64_t size() const { return m_size; }

    /// Bytes of the file before the window.
    std::uint64_t position() const {
        return m_movedBytes + static_cast<std::size_t>(m_begin - m_base);
    }

    /// Bytes of the file from begin() on, where its size is known.
    std::optional<std::uint64_t> bytesLeft() const;

    /// The part of the file that is taken, 0 to 1; 0 where its size is not known.
    double done() const;

    /// Counts lines from begin() on, where a line begins.
    /// @param line  the number of this line
    void countLinesFrom(std::uint64_t line);

    /// The number of the line that holds `position`, which is at begin() or behind it.
    std::uint64_t lineAt(const char* position);

    /// Counts line feeds from begin() on.
    void countLineFeeds();

    /// Line feeds up to end() behind a carriage return; 0 when one stands alone, or nobody counts.
    std::uint64_t lineFeedsBehindReturns() const {
        return m_lineFeeds ? m_lineFeeds->behindReturns() : 0;
    }

private:
    bool bring(std::size_t size);
    void makeRoom();
    void countTakenLines();

    const char* m_begin;
    const char* m_end;
    /// The first byte in memory.
    const char* m_base;
    ByteSource m_source;
    std::uint64_t m_size;
    bool m_hasEnded;
    /// Bytes of the file before m_base.
    std::uint64_t m_movedBytes = 0;
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_capacity = 0;

    /// Of the text before m_counted. Lines are counted late: when somebody asks, or bytes go away.
    LineCount m_lines{1};
    const char* m_counted = nullptr;

    std::optional<LineFeedCount> m_lineFeeds;
};

} // namespace converters::input
