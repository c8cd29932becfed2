#pragma once

#include <cstdint>
#include <string_view>

namespace converters::detail {

/// One line of a PLY header, taken apart from left to right as a stream in the classic locale that
/// skips no whitespace by itself would do it.
///
/// As with a stream, a step that finds nothing makes all later steps find nothing, and a step that
/// meets the end of the line makes later ones fail. Owns nothing: the line has to outlive it.
class PlyHeaderLine {
public:
    explicit PlyHeaderLine(std::string_view line) : m_rest(line) {}

    /// Takes whitespace.
    void skipBlanks();

    /// Takes one character.
    /// @return whether it is whitespace; false also when there is none
    bool separator();

    /// Takes a run of characters up to whitespace; empty when there is none.
    std::string_view word();

    /// Takes whitespace, then a word.
    std::string_view nextWord() {
        skipBlanks();
        return word();
    }

    /// Takes a decimal number: 0 when there is none, the largest one when it is too large.
    std::uint64_t count();

    /// Whether a step has met the end of the line.
    bool isAtEnd() const { return m_isAtEnd; }

private:
    /// Begins a step; false when it finds nothing.
    bool isGood();

    std::string_view m_rest;
    bool m_hasFailed = false;
    bool m_isAtEnd = false;
};

} // namespace converters::detail
