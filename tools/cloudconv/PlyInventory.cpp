#include "tools/cloudconv/PlyInventory.h"

#include <algorithm>

namespace {

std::string_view nextLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

std::string nextWord(std::string_view& line) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t begin = line.find_first_not_of(blanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    line.remove_prefix(begin);
    const std::size_t size = std::min(line.find_first_of(blanks), line.size());
    std::string word(line.substr(0, size));
    line.remove_prefix(size);
    return word;
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

PlyInventory plyInventoryOf(std::string_view bytes) {
    PlyInventory found;
    std::string_view text = bytes.substr(0, bytes.find('\0'));
    found.isPly = nextLine(text).substr(0, 3) == "ply";
    while (found.isPly && !text.empty()) {
        std::string_view line = nextLine(text);
        const std::string keyword = nextWord(line);
        if (keyword == "end_header") {
            break;
        }
        if (keyword == "format") {
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
