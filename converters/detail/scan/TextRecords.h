#pragma once

#include "converters/Scan.h"
#include "converters/detail/scan/RecordLines.h"
#include "converters/detail/scan/TextTokens.h"
#include "converters/detail/scan/UsualNumbers.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace converters::scan {

/// Takes the records of a text body, of one element after the other, by their tokens.
///
/// A record is usually a line, but the format does not ask for that. What is unusual is remembered,
/// since it tells that a file is broken, and a person where it went wrong.
class TextRecords {
public:
    /// The window is at the first byte of the body.
    explicit TextRecords(input::ByteWindow& window) : m_tokens(window) {}

    /// The element whose records are taken next; has to outlive them.
    /// @throws Fault when lines of the element before lack values or have too many
    void begin(const ScanElement& element);

    /// Takes a record.
    /// @param scalars  receives the scalar properties without gaps
    /// @throws Fault
    void take(unsigned char* scalars);

    /// Takes `count` records, and nothing of them.
    void stepOver(std::uint64_t count);

    /// Takes what is behind the last record.
    /// @return how many characters there are, but blanks
    /// @throws Fault when a line of records before holds too much: records went wrong then
    std::uint64_t takeRest();

    /// Lets go of the bytes that are taken.
    void settle() { m_tokens.settle(); }

private:
    /// A property, with what is needed at each record at hand.
    struct Value {
        ScalarType type;
        std::size_t size;
        bool isList;
        ScalarType countType;
    };

    const char* takeUsualRecord(const char* c, unsigned char* scalars) const;
    const char* takeUsualList(const char* c, const Value& value) const;
    const char* lastUsual() const { return m_tokens.end() - usualRoom; }
    void takeAnyRecord(unsigned char* scalars);
    void skipBetween();
    void beginRecord();
    void noteUsualRecords();
    void finishElement();
    [[noreturn]] void refuseBrokenLines() const;
    void takeList(const ScanProperty& property);
    void takeValue(const ScanProperty& property, unsigned char* to);
    template <typename Number>
    Number takeNumber(const ScanProperty& property, ScalarType type);
    [[noreturn]] void refuseToken(NumberFault fault, const ScanProperty& property, ScalarType type);
    void skipWithin();

    TextTokens m_tokens;
    const ScanElement* m_element = nullptr;
    std::vector<Value> m_values;
    std::uint64_t m_taken = 0;
    /// Records up to here are in m_lines.
    std::uint64_t m_noted = 0;
    RecordLines m_lines;
    /// Whether the next record begins a line of which all before is taken.
    bool m_isAtLine = true;
    /// The first line in which a record, or something else, begins behind the end of a record.
    std::optional<std::uint64_t> m_sharedLine;
    std::string m_sharedElement;
    /// The first line that begins within a record.
    std::optional<std::uint64_t> m_splitLine;
    /// The like of the element alone, and the line before.
    std::optional<std::uint64_t> m_ownSharedLine;
    std::optional<std::uint64_t> m_ownSplitLine;
    std::uint64_t m_shortLine = 0;
};

} // namespace converters::scan
