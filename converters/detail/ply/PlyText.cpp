// Two loops. Lines of plain floats, the usual cloud, are written value behind value into a block
// that goes out when it is full. All other lines are built one by one, element by element: counts
// go out before the line that they belong to, colours are several numbers, values may lie outside
// the bytes.
//
// Not done: one loop that asks all this of every value.

#include "converters/detail/ply/PlyText.h"

#include "converters/detail/numbers/FloatFormat.h"
#include "converters/detail/numbers/NumberFormat.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <initializer_list>

namespace converters::detail {
namespace {

using Field = pcl::PCLPointField;

/// What a writer of one element may overwrite.
constexpr std::ptrdiff_t elementRoom = 32;

/// Most characters of a colour, "255 255 255 255", and of any other number, with a blank.
constexpr std::size_t maxColourLength = 16;
constexpr std::size_t maxNumberLength = maxGeneralLength + 1;

template <typename T>
T valueOf(const unsigned char* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

template <typename T>
char* writeInteger(char* out, T value) {
    return std::to_chars(out, out + elementRoom / 2, value).ptr;
}

/// The bytes of a packed colour at the given bit positions, separated by blanks.
char* writeColours(char* out, std::uint32_t packed, std::initializer_list<int> shifts) {
    for (const int shift : shifts) {
        out = writeInteger(out, packed >> shift & 0xFF);
        *out++ = ' ';
    }
    return out - 1;
}

/// Writes one element of a known datatype.
char* writeElement(char* out, const PlyColumn& column, const unsigned char* bytes) {
    switch (column.datatype) {
    case Field::FLOAT32:
        if (column.isColour) {
            return writeColours(out, valueOf<std::uint32_t>(bytes), {16, 8, 0});
        }
        return writeGeneralFloat(out, valueOf<float>(bytes));
    case Field::FLOAT64:
        return writeGeneral(out, valueOf<double>(bytes));
    case Field::INT8: // without its sign, on purpose
    case Field::UINT8:
        return writeInteger(out, static_cast<unsigned>(*bytes));
    case Field::INT16:
        return writeInteger(out, valueOf<std::int16_t>(bytes));
    case Field::UINT16:
        return writeInteger(out, valueOf<std::uint16_t>(bytes));
    case Field::INT32:
        return writeInteger(out, valueOf<std::int32_t>(bytes));
    case Field::UINT32:
        break;
    }
    if (column.isColour) {
        return writeColours(out, valueOf<std::uint32_t>(bytes), {16, 8, 0, 24});
    }
    return writeInteger(out, valueOf<std::uint32_t>(bytes));
}

/// The line of one point under construction. Its end is kept by the writer, in a register.
class Line {
public:
    char* begin() { return m_text.data(); }

    /// Makes room for an element behind `end`.
    /// @return `end`, moved along when the text had to move
    char* withRoom(char* end) {
        if (m_text.data() + m_text.size() - end >= elementRoom) {
            return end;
        }
        const std::ptrdiff_t length = end - m_text.data();
        m_text.resize(2 * m_text.size());
        return m_text.data() + length;
    }

private:
    std::vector<char> m_text = std::vector<char>(16 * elementRoom);
};

void writeCount(std::uint32_t count, const WriteText& write) {
    char text[elementRoom];
    char* end = writeInteger(text, count);
    *end++ = ' ';
    write(text, static_cast<std::size_t>(end - text));
}

/// Appends all elements of a column behind `end`, each followed by a blank.
/// @return the new end of the line
char* appendElements(Line& line, char* end, const PlyColumn& column, const PointBytes& points,
                     std::size_t point, const WarnOfDatatype& warn) {
    constexpr unsigned char zeros[8] = {};
    for (std::size_t k = 0; k < column.elements; ++k) {
        end = line.withRoom(end);
        if (column.isKnown()) {
            const auto* bytes = points.element(point, column.position(k), column.elementSize);
            end = writeElement(end, column, bytes != nullptr ? bytes : zeros);
        } else {
            warn(column.datatype);
        }
        *end++ = ' ';
    }
    return end;
}

/// Whether every value of a line is one plain float.
bool areFloats(const std::vector<PlyColumn>& columns) {
    return !columns.empty() &&
           std::all_of(columns.begin(), columns.end(), [](const PlyColumn& column) {
               return column.datatype == Field::FLOAT32 && !column.isColour && column.elements == 1;
           });
}

/// How many points have the first element of every column inside the bytes: the first ones.
std::size_t countComplete(const std::vector<PlyColumn>& columns, const PointBytes& points) {
    std::size_t count = points.count;
    for (const PlyColumn& column : columns) {
        count = std::min(count, points.countWithElement(column.offset, column.elementSize));
    }
    return count;
}

/// Writes the lines of the first `count` points, whose values are all floats inside the bytes: the
/// usual cloud, in half the time.
void writeFloatLines(const std::vector<PlyColumn>& columns, const PointBytes& points,
                     std::size_t count, const WriteText& write) {
    constexpr std::size_t blockLength = std::size_t{1} << 14;
    std::vector<char> block(blockLength + maxLineLength(columns) + elementRoom);
    std::vector<std::size_t> offsets;
    offsets.reserve(columns.size());
    for (const PlyColumn& column : columns) {
        offsets.push_back(column.offset);
    }
    char* const begin = block.data();
    char* end = begin;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned char* const point = points.data + i * points.stride;
        for (const std::size_t offset : offsets) {
            end = writeGeneralFloat(end, valueOf<float>(point + offset));
            *end++ = ' ';
        }
        end[-1] = '\n';
        if (static_cast<std::size_t>(end - begin) >= blockLength) {
            write(begin, static_cast<std::size_t>(end - begin));
            end = begin;
        }
    }
    if (end != begin) {
        write(begin, static_cast<std::size_t>(end - begin));
    }
}

} // namespace

void writeLines(const std::vector<PlyColumn>& columns, const PointBytes& points,
                const WriteText& write, const WarnOfDatatype& warn) {
    const std::size_t written = areFloats(columns) ? countComplete(columns, points) : 0;
    if (written > 0) {
        writeFloatLines(columns, points, written, write);
    }
    Line line;
    // Only the last element of the last column has no blank behind it: the line's end takes its
    // place. A line that ends in a column without elements keeps the blank.
    const bool replacesBlank = !columns.empty() && columns.back().elements > 0;
    for (std::size_t i = written; i < points.count; ++i) {
        char* end = line.begin();
        for (const PlyColumn& column : columns) {
            if (column.writesCount()) {
                writeCount(column.elements, write);
            }
            end = appendElements(line, end, column, points, i, warn);
        }
        end = line.withRoom(end) - (replacesBlank ? 1 : 0);
        *end++ = '\n';
        write(line.begin(), static_cast<std::size_t>(end - line.begin()));
    }
}

std::size_t maxLineLength(const std::vector<PlyColumn>& columns) {
    std::size_t length = 1;
    for (const PlyColumn& column : columns) {
        const std::size_t element = column.isColour ? maxColourLength : maxNumberLength;
        length += column.elements * element + (column.writesCount() ? maxNumberLength : 0);
    }
    return length;
}

} // namespace converters::detail
