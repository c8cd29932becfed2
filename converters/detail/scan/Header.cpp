#include "converters/detail/scan/Header.h"

#include "converters/detail/scan/Fault.h"
#include "converters/detail/scan/HeaderLines.h"
#include "converters/detail/scan/TypeNames.h"
#include "converters/detail/scan/Wording.h"

#include <charconv>
#include <string_view>

namespace converters::scan {
namespace {

/// A whole number of digits alone.
bool parseCount(std::string_view word, std::uint64_t& count) {
    const char* const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, count);
    return error == std::errc() && stop == end;
}

/// The text behind a keyword, without the blanks around it.
std::string trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\v\f";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos
               ? std::string()
               : std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

/// Takes the lines of a header one by one.
class HeaderReader {
public:
    explicit HeaderReader(input::ByteWindow& window) : m_window(window), m_lines(window) {}

    Header read() {
        takeMagic();
        std::string_view line;
        do {
            if (!m_lines.take(line)) {
                refuse("the file ends within its header: 'end_header' is missing");
            }
        } while (takeLine(line));
        m_header.bodyLine = m_lines.number() + 1;
        m_header.endsWithPairs = m_lines.endWithPairs();
        return std::move(m_header);
    }

private:
    void takeMagic();
    void refuseKnownFormats();
    bool takeLine(std::string_view line);
    void takeFormat(std::string_view line);
    void takeElement(std::string_view line);
    void takeProperty(std::string_view line);
    ScalarType takeType(std::string_view& line);
    void takeObjInfo(std::string_view line);
    void noteOddLine(std::string fault);

    [[noreturn]] void refuseHere(const std::string& reason) {
        refuseLine(m_lines.number(), reason);
    }

    input::ByteWindow& m_window;
    HeaderLines m_lines;
    Header m_header;
};

/// What a PLY file may have been packed or saved as.
void HeaderReader::refuseKnownFormats() {
    m_window.need(2);
    const std::string_view bytes =
        std::string_view(m_window.begin(), m_window.available()).substr(0, 2);
    if (bytes == "\x1F\x8B") {
        refuse("this is no PLY file but one compressed with gzip");
    }
    if (bytes == "\xFF\xFE" || bytes == "\xFE\xFF") {
        refuse("this is no PLY file but text in UTF-16");
    }
}

/// The first line: "ply", perhaps behind blanks and the byte order mark that some editors write.
void HeaderReader::takeMagic() {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (!m_window.need(1)) {
        refuse("the file is empty");
    }
    m_window.need(mark.size());
    if (std::string_view(m_window.begin(), m_window.available()).substr(0, mark.size()) == mark) {
        m_window.take(m_window.begin() + mark.size());
    }
    refuseKnownFormats();
    const bool mayBe = m_window.need(1) && (*m_window.begin() == 'p' || *m_window.begin() == ' ' ||
                                            *m_window.begin() == '\t');
    std::string_view line;
    if (!mayBe || !m_lines.take(line) || takeWord(line) != "ply" || !takeWord(line).empty()) {
        refuse("this is no PLY file: its first line is not 'ply'");
    }
}

/// @return false for the last line
bool HeaderReader::takeLine(std::string_view line) {
    const std::string_view keyword = takeWord(line);
    if (keyword == "end_header") {
        if (!takeWord(line).empty()) {
            noteOddLine("there is something behind 'end_header'");
        }
        return false;
    }
    if (keyword == "format") {
        takeFormat(line);
    } else if (keyword == "element") {
        takeElement(line);
    } else if (keyword == "property") {
        takeProperty(line);
    } else if (keyword == "comment") {
        m_header.comments.push_back(trimmed(line));
    } else if (keyword == "obj_info") {
        takeObjInfo(line);
    } else if (!keyword.empty()) {
        noteOddLine(inQuotes(keyword) + " is no keyword of a header");
    }
    return true;
}

void HeaderReader::takeFormat(std::string_view line) {
    const std::string_view name = takeWord(line);
    const std::string_view version = takeWord(line);
    if (m_header.format) {
        refuseHere("a second format");
    }
    for (const ScanFormat format :
         {ScanFormat::ascii, ScanFormat::binaryLittleEndian, ScanFormat::binaryBigEndian}) {
        if (name == nameOf(format)) {
            m_header.format = format;
        }
    }
    if (!m_header.format) {
        refuseHere(inQuotes(name) + " is no format of PLY files");
    }
    if (version != "1.0") {
        refuseHere("version " + inQuotes(version) + " of the format is not known, only 1.0");
    }
    if (!takeWord(line).empty()) {
        refuseHere("there is something behind the version");
    }
}

void HeaderReader::takeElement(std::string_view line) {
    const std::string_view name = takeWord(line);
    const std::string_view count = takeWord(line);
    ScanElement element{std::string(name), 0, {}};
    if (name.empty()) {
        refuseHere("the element has no name");
    }
    if (!parseCount(count, element.count)) {
        refuseHere("element " + inQuotes(name) +
                   (count.empty() ? " has no count"
                                  : ": " + inQuotes(count) + " is no count of its records"));
    }
    if (!takeWord(line).empty()) {
        refuseHere("there is something behind the count of element " + inQuotes(name));
    }
    if (name == "vertex") {
        if (m_header.vertices) {
            refuseHere("a second element 'vertex'");
        }
        m_header.vertices = m_header.elements.size();
    }
    m_header.elements.push_back(std::move(element));
}

void HeaderReader::takeProperty(std::string_view line) {
    if (m_header.elements.empty()) {
        refuseHere("a property before any element");
    }
    std::string_view rest = line;
    ScanProperty property{};
    if (takeWord(rest) == "list") {
        line = rest;
        property.countType = takeType(line);
    }
    property.type = takeType(line);
    property.name = takeWord(line);
    if (property.name.empty()) {
        refuseHere("the property has no name");
    }
    property.use = ScanPropertyUse::dropped;
    m_header.elements.back().properties.push_back(std::move(property));
    if (const std::string_view more = takeWord(line); !more.empty()) {
        noteOddLine(inQuotes(more) + " stands behind the name of a property");
    }
}

ScalarType HeaderReader::takeType(std::string_view& line) {
    const std::string_view word = takeWord(line);
    const std::optional<ScalarType> type = typeOfName(word);
    if (!type) {
        refuseHere(word.empty() ? "the property has no type"
                                : inQuotes(word) + " is no type of PLY files");
    }
    return *type;
}

void HeaderReader::takeObjInfo(std::string_view line) {
    m_header.objInfo.push_back(trimmed(line));
    const std::string_view key = takeWord(line);
    std::uint64_t count = 0;
    if ((key == "num_cols" || key == "num_rows") && parseCount(takeWord(line), count)) {
        (key == "num_cols" ? m_header.columns : m_header.rows) = count;
    }
}

void HeaderReader::noteOddLine(std::string fault) {
    if (!m_header.oddLine) {
        m_header.oddLine = OddLine{m_lines.number(), std::move(fault)};
    }
}

} // namespace

Header readHeader(input::ByteWindow& window) {
    return HeaderReader(window).read();
}

} // namespace converters::scan
