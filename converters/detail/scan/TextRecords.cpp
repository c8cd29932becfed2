#include "converters/detail/scan/TextRecords.h"

#include "converters/detail/scan/Elements.h"
#include "converters/detail/scan/Fault.h"
#include "converters/detail/scan/TypeSwitch.h"
#include "converters/detail/scan/Wording.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace converters::scan {
namespace {

/// What a person may have meant by a token that is no number.
std::string hintAt(std::string_view token) {
    const auto commas = std::count(token.begin(), token.end(), ',');
    const bool isDecimal = token.find_first_not_of("+-0123456789,eE") == std::string_view::npos &&
                           commas == 1 && token.back() != ',';
    return isDecimal ? "; a decimal comma?" : commas > 0 ? "; commas between values?" : "";
}

} // namespace

void TextRecords::begin(const ScanElement& element) {
    m_element = &element;
    m_taken = 0;
}

void TextRecords::beginRecord() {
    const bool isNewLine = m_tokens.skipBlanks() || m_isFirst;
    m_isFirst = false;
    if (!isNewLine && !m_sharedLine && !m_tokens.isAtEnd()) {
        m_sharedLine = m_tokens.line();
        m_sharedElement = m_element->name;
    }
}

void TextRecords::skipWithin() {
    if (m_tokens.skipBlanks() && !m_splitLine && !m_tokens.isAtEnd()) {
        m_splitLine = m_tokens.line();
    }
}

void TextRecords::take(unsigned char* scalars) {
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
            scalars += sizeOf(property.type);
        }
    }
    ++m_taken;
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
    const bool isNewLine = m_tokens.skipBlanks() || m_isFirst;
    std::uint64_t characters = 0;
    if (!isNewLine && !m_tokens.isAtEnd() && !m_sharedLine) {
        m_sharedLine = m_tokens.line();
        m_sharedElement = m_element->name;
    }
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
