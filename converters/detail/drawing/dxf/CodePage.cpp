#include "converters/detail/drawing/dxf/CodePage.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <new>

namespace converters::drawing {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

struct NamedEncoding {
    std::string_view codePage;
    const char* encoding;
};

/// Those that are not CP and the number.
constexpr std::array<NamedEncoding, 12> encodings = {{{"ANSI_950", "BIG5"},
                                                      {"ANSI_936", "GBK"},
                                                      {"GB2312", "GBK"},
                                                      {"BIG5", "BIG5"},
                                                      {"ANSI_1361", "JOHAB"},
                                                      {"JOHAB", "JOHAB"},
                                                      {"KSC5601", "CP949"},
                                                      {"MAC-ROMAN", "MACINTOSH"},
                                                      {"MACINTOSH", "MACINTOSH"},
                                                      {"UTF-8", "UTF-8"},
                                                      {"UTF8", "UTF-8"},
                                                      {"ANSI_65001", "UTF-8"}}};

std::string upperCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return result;
}

bool beginsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/// A conversion of the C library.
class Conversion {
public:
    explicit Conversion(const std::string& encoding)
        : m_descriptor(iconv_open("UTF-8", encoding.c_str())) {
        if (!isOpen() && errno == ENOMEM) {
            throw std::bad_alloc();
        }
    }
    ~Conversion() {
        if (isOpen()) {
            iconv_close(m_descriptor);
        }
    }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;

    bool isOpen() const { return m_descriptor != reinterpret_cast<iconv_t>(std::intptr_t{-1}); }

    std::string convert(std::string_view text) const;

private:
    iconv_t m_descriptor;
};

std::string Conversion::convert(std::string_view text) const {
    std::string result;
    // The C library does not write through it.
    char* in = const_cast<char*>(text.data()); // NOLINT(cppcoreguidelines-pro-type-const-cast)
    std::size_t left = text.size();
    std::array<char, 256> part{};
    while (left > 0) {
        char* out = part.data();
        std::size_t room = part.size();
        const std::size_t converted = iconv(m_descriptor, &in, &left, &out, &room);
        result.append(part.data(), part.size() - room);
        const bool isInvalid = converted == static_cast<std::size_t>(-1) && errno != E2BIG;
        if (isInvalid) {
            result += replacement;
            ++in;
            --left;
            iconv(m_descriptor, nullptr, nullptr, nullptr, nullptr);
        }
    }
    return result;
}

} // namespace

std::string encodingOf(std::string_view codePage) {
    const std::string name = upperCase(codePage);
    for (const NamedEncoding& candidate : encodings) {
        if (name == candidate.codePage) {
            return candidate.encoding;
        }
    }
    const auto numbered = [&](std::string_view start, const char* family) -> std::string {
        const std::string number = name.substr(start.size());
        const bool isNumber = !number.empty() && number.size() <= 5 &&
                              number.find_first_not_of("0123456789") == std::string::npos;
        return isNumber ? family + number : std::string();
    };
    std::string encoding;
    if (beginsWith(name, "ANSI_")) {
        encoding = numbered("ANSI_", "CP");
    } else if (beginsWith(name, "DOS")) {
        encoding = numbered("DOS", "CP");
    } else if (beginsWith(name, "CP")) {
        encoding = numbered("CP", "CP");
    } else if (beginsWith(name, "ISO8859-")) {
        encoding = numbered("ISO8859-", "ISO-8859-");
    } else if (beginsWith(name, "ISO-8859-")) {
        encoding = numbered("ISO-8859-", "ISO-8859-");
    }
    return encoding.empty() || !Conversion(encoding).isOpen() ? "CP1252" : encoding;
}

std::string toUtf8(std::string_view text, const std::string& encoding) {
    const Conversion conversion(encoding);
    if (conversion.isOpen()) {
        return conversion.convert(text);
    }
    std::string result;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x80) {
            result += c;
        } else {
            result += replacement;
        }
    }
    return result;
}

} // namespace converters::drawing
