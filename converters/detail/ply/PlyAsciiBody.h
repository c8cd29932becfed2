#pragma once

#include "converters/Export.h"

#include <pcl/PCLPointField.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace converters::detail {

/// The values of one line of an ASCII body. Owns nothing: the line has to outlive it.
///
/// After a value that is missing, malformed or out of range, all further values are 0: a stream
/// that has failed once gives nothing more.
class PlyAsciiLine {
public:
    explicit PlyAsciiLine(std::string_view line) : PlyAsciiLine(line, line.data() + line.size()) {}

    /// @param readable  end of the text that the line is a part of: decoding looks ahead
    PlyAsciiLine(std::string_view line, const char* readable)
        : m_position(line.data()), m_end(line.data() + line.size()), m_readable(readable) {}

    /// Takes the next value and stores its bytes.
    ///
    /// Values of 8-bit datatypes are single characters, not numbers: of "255" the first one takes
    /// "2" and leaves "55". That is how streams read characters, and meant to stay so.
    ///
    /// @param datatype  a known field datatype
    /// @param out       room for a value of it
    void read(std::uint8_t datatype, unsigned char* out);

    /// Takes whitespace; nothing after a failed value.
    void skipBlanks();

    /// What has not been taken yet.
    std::string_view rest() const {
        return {m_position, static_cast<std::size_t>(m_end - m_position)};
    }

    /// Whether a value was missing, malformed or out of range.
    bool hasFailed() const { return m_hasFailed; }

private:
    template <typename Number>
    void readNumber(unsigned char* out);
    void readCharacter(unsigned char* out);

    const char* m_position;
    const char* m_end;
    const char* m_readable;
    bool m_hasFailed = false;
};

/// The body of an ASCII file, decoded record by record.
class CONVERTERS_EXPORT PlyAsciiBody {
public:
    /// @param fields  their datatypes, all known, give the values of a line and of a record
    /// @param text    the lines; has to outlive this object
    PlyAsciiBody(const std::vector<pcl::PCLPointField>& fields, std::string_view text);

    /// Decodes the next lines, one record each; a line that is not there counts as empty.
    ///
    /// @param records  receives `count` records without gaps, values in the order of the fields
    void read(unsigned char* records, std::size_t count);

private:
    CONVERTERS_HIDDEN bool takeShortFloats(unsigned char* record);
    CONVERTERS_HIDDEN void takeValues(unsigned char* record);

    std::vector<std::uint8_t> m_datatypes;
    std::size_t m_recordSize = 0;
    /// Whether takeShortFloats may try.
    bool m_areFloats;
    std::string_view m_text;
};

} // namespace converters::detail
