#include "tools/cloudconv/PlyInventory.h"

#include "base/Words.h"

#include <algorithm>
#include <charconv>

namespace {

/// The rest of a text behind "ply" and the end of that line, of which the library takes any byte,
/// or a carriage return with the byte behind it.
std::string_view behindMagic(std::string_view text) {
    constexpr std::string_view magicAndReturn = "ply\r";
    const bool hasReturn = text.substr(0, magicAndReturn.size()) == magicAndReturn;
    const std::size_t size = magicAndReturn.size() + (hasReturn ? 1 : 0);
    return text.substr(std::min(size, text.size()));
}

std::string nextWord(std::string_view& line) {
    base::takeBlanks(line);
    return std::string(base::takeWord(line));
}

/// The words of a property line up to the name: "float", or "list uchar int".
std::string typeOf(std::string_view& line) {
    std::string type = nextWord(line);
    if (type == "list") {
        type += ' ' + nextWord(line);
        type += ' ' + nextWord(line);
    }
    return type;
}

} // namespace

std::optional<std::uint64_t> PlyElementLine::number() const {
    std::uint64_t value = 0;
    const char* const end = count.data() + count.size();
    const auto [next, error] = std::from_chars(count.data(), end, value);
    return error == std::errc() && next == end ? std::optional(value) : std::nullopt;
}

PlyInventory plyInventoryOf(std::string_view bytes) {
    PlyInventory found;
    found.isPly = bytes.substr(0, 3) == "ply";
    std::string_view text = behindMagic(bytes.substr(0, bytes.find('\0')));
    std::string_view line;
    while (found.isPly && !found.hasEnd && base::takeLine(text, line)) {
        const std::string keyword = nextWord(line);
        if (keyword == "end_header") {
            found.hasEnd = true;
        } else if (keyword == "format") {
            found.format = nextWord(line);
        } else if (keyword == "element") {
            const std::string name = nextWord(line);
            found.elements.push_back({name, nextWord(line), {}});
        } else if (keyword == "property" && !found.elements.empty()) {
            const std::string type = typeOf(line);
            found.elements.back().properties.push_back({type, nextWord(line)});
        }
    }
    return found;
}
