#include "converters/detail/scan/TextRecords.h"

#include "converters/detail/scan/Elements.h"
#include "converters/detail/scan/Fault.h"
#include "converters/detail/scan/TypeSwitch.h"
#include "converters/detail/scan/Wording.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace converters::scan {
namespace {

/// Longer ones are left to takeAnyRecord().
constexpr std::ptrdiff_t longestNumber = 1024;

/// What a person may have meant by a token that is no number.
std::string hintAt(std::string_view token) {
    const auto commas = std::count(token.begin(), token.end(), ',');
    const bool isDecimal = token.find_first_not_of("+-0123456789,eE") == std::string_view::npos &&
                           commas == 1 && token.back() != ',';
    return isDecimal ? "; a decimal comma?" : commas > 0 ? "; commas between values?" : "";
}

const char* skipSpaces(const char* c, const char* last) {
    while (*c == ' ' && c < last) {
        ++c;
    }
    return c;
}

/// Takes at most a space and then a line end; null when there is none.
const char* takeLineEnd(const char* c) {
    c += *c == ' ' ? 1 : 0;
    if (*c == '\r') {
        return c + (c[1] == '\n' ? 2 : 1);
    }
    return *c == '\n' ? c + 1 : nullptr;
}

/// The largest count that a type holds, or that is usual.
std::int64_t mostUsualItems(ScalarType countType) {
    return withType(countType, [](auto number) -> std::int64_t {
        using Number = decltype(number);
        return sizeof(Number) == 1 ? static_cast<std::int64_t>(std::numeric_limits<Number>::max())
                                   : 32767;
    });
}

/// Takes a floating number that is not a usual one and ends before a blank; null when it does not.
template <typename Number>
const char* takeOther(const char* c, const char* end, Number& number) {
    if constexpr (std::is_floating_point_v<Number>) {
        const char* const limit = c + std::min(end - c, longestNumber);
        if (detail::extractNumber(c, limit, limit, number) && c != limit && base::isBlank(*c)) {
            return c;
        }
    }
    return nullptr;
}

} // namespace

void TextRecords::begin(const ScanElement& element) {
    finishElement();
    m_element = &element;
    m_taken = m_noted = 0;
    m_lines = RecordLines(hasLists(element) ? 0 : element.properties.size());
    m_ownSharedLine = m_ownSplitLine = std::nullopt;
    m_values.clear();
    for (const ScanProperty& property : element.properties) {
        m_values.push_back({property.type, sizeOf(property.type), property.countType.has_value(),
                            property.countType.value_or(ScalarType::uint8)});
    }
}

/// Takes blanks behind a record, and sees whether another line begins.
void TextRecords::skipBetween() {
    m_isAtLine = m_tokens.skipBlanks() != 0 || m_isAtLine;
    if (m_isAtLine || m_ownSharedLine || m_tokens.isAtEnd()) {
        return;
    }
    m_ownSharedLine = m_tokens.line();
    if (!m_sharedLine) {
        m_sharedLine = m_ownSharedLine;
        m_sharedElement = m_element->name;
    }
}

void TextRecords::beginRecord() {
    noteUsualRecords();
    skipBetween();
    m_lines.beginRecord(m_isAtLine);
    m_isAtLine = false;
}

/// Those that takeUsualRecord() took.
void TextRecords::noteUsualRecords() {
    if (m_taken != m_noted) {
        m_lines.addLines(m_taken - m_noted);
        m_noted = m_taken;
    }
}

void TextRecords::skipWithin() {
    const std::uint64_t lineEnds = m_tokens.skipBlanks();
    if (lineEnds == 0) {
        return;
    }
    m_lines.endLineWithin();
    if (!m_ownSplitLine && !m_tokens.isAtEnd()) {
        m_ownSplitLine = m_tokens.line();
        m_shortLine = *m_ownSplitLine - lineEnds;
        m_splitLine = m_splitLine ? m_splitLine : m_ownSplitLine;
    }
}

/// Takes blanks behind the last record of an element.
void TextRecords::finishElement() {
    if (m_element == nullptr) {
        return;
    }
    noteUsualRecords();
    skipBetween();
    m_lines.end(m_isAtLine || m_tokens.isAtEnd());
    if (m_lines.areBroken()) {
        refuseBrokenLines();
    }
}

void TextRecords::refuseBrokenLines() const {
    const bool isShort =
        m_ownSplitLine && (!m_ownSharedLine || *m_ownSplitLine <= *m_ownSharedLine);
    refuseLine(isShort ? m_shortLine : m_ownSharedLine.value_or(0),
               std::string("there are ") + (isShort ? "fewer" : "more") +
                   " values than a record of element " + inQuotes(m_element->name) + " has");
}

/// Takes a list as takeUsualRecord() takes a record.
const char* TextRecords::takeUsualList(const char* c, const Value& value) const {
    std::int64_t items = 0;
    c = takeUsual(c, items);
    if (items < 0 || items > mostUsualItems(value.countType)) {
        return nullptr;
    }
    return withType(value.type, [&](auto number) {
        for (std::int64_t i = 0; c != nullptr && i < items; ++i) {
            c = skipSpaces(c, lastUsual());
            c = c < lastUsual() ? takeUsual(c, number) : nullptr;
        }
        return c;
    });
}

/// Takes a record that is spelled as most are: a line of its own, usual numbers, only spaces
/// between.
///
/// @param c  the end of the record before
/// @return the end of the record; null, and nothing has happened, when it is not of that kind or
///         perhaps not wholly in memory
const char* TextRecords::takeUsualRecord(const char* c, unsigned char* scalars) const {
    const char* const last = lastUsual();
    c = c < last ? takeLineEnd(c) : nullptr;
    for (const Value& value : m_values) {
        if (c == nullptr) {
            return nullptr;
        }
        c = skipSpaces(c, last);
        if (c >= last) {
            return nullptr;
        }
        if (value.isList) {
            c = takeUsualList(c, value);
            continue;
        }
        withType(value.type, [&](auto number) {
            const char* const end = takeUsual(c, number);
            c = end != nullptr ? end : takeOther(c, m_tokens.end(), number);
            std::memcpy(scalars, &number, sizeof number);
        });
        scalars += value.size;
    }
    return c;
}

void TextRecords::take(unsigned char* scalars) {
    const bool mayBeUsual = base::canUseWords && !m_isAtLine && !m_values.empty();
    if (const char* const end =
            mayBeUsual ? takeUsualRecord(m_tokens.position(), scalars) : nullptr;
        end != nullptr) {
        m_tokens.moveTo(end);
        ++m_taken;
        return;
    }
    takeAnyRecord(scalars);
}

void TextRecords::takeAnyRecord(unsigned char* scalars) {
    bool isWithin = false;
    for (const ScanProperty& property : m_element->properties) {
        if (isWithin) {
            skipWithin();
        } else {
            beginRecord();
            isWithin = true;
        }
        if (property.countType) {
            takeList(property);
        } else {
            takeValue(property, scalars);
            m_lines.addValue();
            scalars += sizeOf(property.type);
        }
    }
    m_noted = ++m_taken;
}

void TextRecords::stepOver(std::uint64_t count) {
    if (m_element->properties.empty()) {
        return;
    }
    std::vector<unsigned char> scalars(scalarBytes(*m_element));
    for (std::uint64_t i = 0; i < count; ++i) {
        take(scalars.data());
    }
}

void TextRecords::takeValue(const ScanProperty& property, unsigned char* to) {
    withType(property.type, [&](auto zero) {
        const auto number = takeNumber<decltype(zero)>(property, property.type);
        std::memcpy(to, &number, sizeof number);
    });
}

void TextRecords::takeList(const ScanProperty& property) {
    const double items = withType(*property.countType, [&](auto zero) {
        return static_cast<double>(takeNumber<decltype(zero)>(property, *property.countType));
    });
    if (!(items >= 0) || std::trunc(items) != items) {
        refuseLine(m_tokens.line(),
                   "a list of " + shortly(items) + " items in property " + inQuotes(property.name));
    }
    withType(property.type, [&](auto zero) {
        for (double i = 0; i < items; ++i) {
            skipWithin();
            takeNumber<decltype(zero)>(property, property.type);
        }
    });
}

template <typename Number>
Number TextRecords::takeNumber(const ScanProperty& property, ScalarType type) {
    Number number;
    const NumberFault fault = m_tokens.take(number);
    if (fault != NumberFault::none) {
        refuseToken(fault, property, type);
    }
    return number;
}

void TextRecords::refuseToken(NumberFault fault, const ScanProperty& property, ScalarType type) {
    if (fault == NumberFault::missing) {
        refuse(endsAfter(*m_element, m_taken) +
               (m_splitLine ? "; line " + std::to_string(*m_splitLine) +
                                  " begins within a record: one before may lack a value"
                            : ""));
    }
    const std::string_view token = m_tokens.next();
    const std::string name = inQuotes(property.name);
    if (fault == NumberFault::noNumber) {
        refuseLine(m_tokens.line(), inQuotes(token) + " is no number" + hintAt(token));
    }
    refuseLine(m_tokens.line(),
               fault == NumberFault::notWhole
                   ? inQuotes(token) + " is no whole number, which property " + name + " has to be"
                   : inQuotes(token) + " is out of the range of " + nameOf(type) +
                         ", the type of property " + name);
}

std::uint64_t TextRecords::takeRest() {
    finishElement();
    std::uint64_t characters = 0;
    while (!m_tokens.isAtEnd()) {
        if (m_sharedLine) {
            refuseLine(*m_sharedLine, "there are more values than a record of element " +
                                          inQuotes(m_sharedElement) + " has");
        }
        characters += m_tokens.takeSome();
        m_tokens.skipBlanks();
    }
    return characters;
}

} // namespace converters::scan
