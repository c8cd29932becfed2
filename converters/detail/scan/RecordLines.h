#pragma once

#include <cstdint>

namespace converters::scan {

/// How the records of an element lie in the lines of a text.
///
/// A record may take several lines, and a line several records. But where nearly every line has
/// just the values of one record, and records still begin and end within lines, a line lacks a
/// value or has one too many: the numbers behind it are not those of their records.
class RecordLines {
public:
    RecordLines() = default;
    /// @param values  of each record; 0 where records differ
    explicit RecordLines(std::uint64_t values) : m_recordValues(values) {}

    /// A record begins.
    void beginRecord(bool isNewLine) {
        if (isNewLine) {
            endLine();
        }
        m_isRagged = m_isRagged || (m_isSplit && !isNewLine);
        m_beganLine = isNewLine;
        m_isSplit = false;
    }

    /// The next value of the record.
    void addValue() { ++m_lineValues; }

    /// A line ended within the record.
    void endLineWithin() {
        endLine();
        m_isSplit = true;
        m_isRagged = m_isRagged || !m_beganLine;
    }

    /// Records, at least one, each of which began a line and lay in it.
    void addLines(std::uint64_t records) {
        beginRecord(true);
        m_wholeLines += m_recordValues == 0 ? 0 : records - 1;
        m_lineValues = m_recordValues;
    }

    /// The last record has ended.
    /// @param isLineEnd  whether its line ended, too, and not something of another element follows
    void end(bool isLineEnd) {
        if (isLineEnd) {
            endLine();
        } else {
            ++m_oddLines;
            m_isRagged = true;
        }
    }

    /// Whether values are missing, or too many.
    bool areBroken() const {
        // One fault makes as many lines odd: its own, and the one that another element shares.
        constexpr std::uint64_t ofOneFault = 2;
        constexpr std::uint64_t least = 3;
        return m_isRagged && m_wholeLines >= least &&
               (m_oddLines <= ofOneFault || m_wholeLines >= 2 * m_oddLines);
    }

private:
    void endLine() {
        if (m_lineValues != 0) {
            ++(m_lineValues == m_recordValues ? m_wholeLines : m_oddLines);
        }
        m_lineValues = 0;
    }

    std::uint64_t m_recordValues = 0;
    /// Of the line that has not ended.
    std::uint64_t m_lineValues = 0;
    std::uint64_t m_wholeLines = 0;
    std::uint64_t m_oddLines = 0;
    /// Of the last record.
    bool m_beganLine = false;
    bool m_isSplit = false;
    /// A line had the end of one record and the beginning of another, or of another element.
    bool m_isRagged = false;
};

} // namespace converters::scan
