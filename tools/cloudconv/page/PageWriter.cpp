#include "tools/cloudconv/page/PageWriter.h"

#include "tools/cloudconv/Markup.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace {

/// JSON in ASCII that holds no character with a meaning in HTML: these are in strings only, where
/// JSON has escapes for them.
std::string escapedJson(const nlohmann::json& value) {
    constexpr int noIndent = -1;
    constexpr bool asciiOnly = true;
    const std::string text =
        value.dump(noIndent, ' ', asciiOnly, nlohmann::json::error_handler_t::replace);
    std::string result;
    result.reserve(text.size());
    for (const char character : text) {
        switch (character) {
        case '&':
            result += "\\u0026";
            break;
        case '<':
            result += "\\u003c";
            break;
        case '>':
            result += "\\u003e";
            break;
        default:
            result += character;
        }
    }
    return result;
}

std::string policyOf(const PageSource& source) {
    return "default-src 'none'; script-src 'sha256-" + source.scriptHash + "'; style-src 'sha256-" +
           source.styleHash + "'; img-src data:; base-uri 'none'; form-action 'none'";
}

} // namespace

PageWriter::PageWriter(const PageSource& source, const std::string& title)
    : m_script(source.script) {
    // The empty icon keeps browsers from asking a host for one.
    append("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
           policyOf(source) +
           "\">\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<meta name=\"referrer\" content=\"no-referrer\">\n"
           "<meta name=\"color-scheme\" content=\"light dark\">\n"
           "<link rel=\"icon\" href=\"data:,\">\n<title>" +
           escapedForMarkup(title) + "</title>\n<style>" + source.style +
           "</style>\n</head>\n<body>\n" + source.body);
}

void PageWriter::add(const std::string& name, const nlohmann::json& value) {
    append("<script type=\"application/json\" data-name=\"" + name + "\">" + escapedJson(value) +
           "</script>\n");
}

void PageWriter::addBytes(const std::string& name, const void* bytes, std::size_t size) {
    append("<script type=\"application/base64\" data-name=\"" + name + "\">");
    appendBase64(static_cast<const unsigned char*>(bytes), size);
    append("</script>\n");
}

std::vector<unsigned char> PageWriter::finish() {
    append("<script>" + m_script + "</script>\n</body>\n</html>\n");
    return std::move(m_page);
}

void PageWriter::append(const std::string& text) {
    m_page.insert(m_page.end(), text.begin(), text.end());
}

void PageWriter::appendBase64(const unsigned char* bytes, std::size_t size) {
    static constexpr char letters[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr unsigned sixBits = 0x3F;
    const auto letter = [](unsigned bits) {
        return static_cast<unsigned char>(letters[bits & sixBits]);
    };
    std::size_t next = m_page.size();
    m_page.resize(next + (size + 2) / 3 * 4);
    for (std::size_t i = 0; i < size; i += 3) {
        const auto byte = [&](std::size_t offset) {
            return i + offset < size ? static_cast<unsigned>(bytes[i + offset]) : 0U;
        };
        const unsigned bits = byte(0) << 16 | byte(1) << 8 | byte(2);
        m_page[next++] = letter(bits >> 18);
        m_page[next++] = letter(bits >> 12);
        m_page[next++] = i + 1 < size ? letter(bits >> 6) : '=';
        m_page[next++] = i + 2 < size ? letter(bits) : '=';
    }
}
