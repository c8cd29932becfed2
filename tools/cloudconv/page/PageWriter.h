#pragma once

#include "tools/cloudconv/page/PageSource.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

/// Writes a page: one HTML file that asks no host for anything.
///
/// Data lie in elements that no browser runs. Whatever a text of theirs says, it cannot end its
/// element, and the content security policy lets run nothing but the page's own script.
class PageWriter {
public:
    /// @param title  the page's name, printable UTF-8
    PageWriter(const PageSource& source, const std::string& title);

    /// Adds what the script finds under a name, as JSON. Bytes that are no UTF-8 become replacement
    /// characters.
    void add(const std::string& name, const nlohmann::json& value);

    /// Adds the numbers of an array, as the base64 of their bytes in little-endian order.
    template <typename Number>
    void add(const std::string& name, const std::vector<Number>& numbers) {
        static_assert(std::is_arithmetic_v<Number>);
        addBytes(name, numbers.data(), numbers.size() * sizeof(Number));
    }

    /// The bytes of the file. Nothing can be added afterwards.
    std::vector<unsigned char> finish();

private:
    void addBytes(const std::string& name, const void* bytes, std::size_t size);
    void append(const std::string& text);
    void appendBase64(const unsigned char* bytes, std::size_t size);

    std::string m_script;
    std::vector<unsigned char> m_page;
};
