#include "tools/cloudconv/DxfText.h"

#include "dxfeditor/text/DxfGroups.h"

#include <array>
#include <utility>

namespace {

constexpr int beginOfObject = 0;
constexpr int comment = 999;

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/// The kind of file that begins with these bytes, where it is one that is easily mistaken.
std::string otherKind(std::string_view bytes) {
    constexpr std::array<std::pair<std::string_view, const char*>, 6> kinds = {{
        {"AutoCAD Binary DXF", "a binary DXF; save it as a text (ASCII) DXF"},
        {"ply\n", "a PLY file"},
        {"ply\r", "a PLY file"},
        {"AC10", "a DWG drawing; save it as a text (ASCII) DXF"},
        {"\xFF\xFE", "a text in UTF-16; save it in UTF-8"},
        {"\xFE\xFF", "a text in UTF-16; save it in UTF-8"},
    }};
    for (const auto& [start, kind] : kinds) {
        if (startsWith(bytes, start)) {
            return kind;
        }
    }
    return {};
}

/// Whether a group begins with "0" on its code line and a name on its value line.
bool beginsObject(const dxfeditor::DxfGroup& group, std::string_view codeLine) {
    const std::string_view name = trimmed(group.value);
    const bool named = !name.empty() && ((name.front() >= 'A' && name.front() <= 'Z') ||
                                         (name.front() >= 'a' && name.front() <= 'z'));
    return group.code == beginOfObject && trimmed(codeLine) == "0" && named;
}

/// Whether the first group that is no comment begins an object.
bool beginsWithObject(std::string_view text) {
    dxfeditor::DxfGroups groups(text);
    dxfeditor::DxfGroup group;
    for (std::string_view rest = text; groups.next(group); rest = groups.rest()) {
        if (group.code != comment) {
            return beginsObject(group, rest.substr(0, rest.find('\n')));
        }
    }
    return false;
}

} // namespace

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

std::string whyNotDxfText(std::string_view bytes) {
    if (bytes.empty()) {
        return "not a DXF text: the file is empty";
    }
    const std::string kind = otherKind(bytes);
    if (!kind.empty()) {
        return "not a DXF text: it is " + kind;
    }
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    const std::string_view text = bytes.substr(0, bytes.find('\0'));
    if (!beginsWithObject(
            text.substr(startsWith(text, byteOrderMark) ? byteOrderMark.size() : 0))) {
        return "not a DXF text";
    }
    return {};
}

std::string whatIsCutOff(std::string_view bytes) {
    constexpr std::string_view endMark = "EOF";
    const std::size_t end = bytes.find('\0');
    if (end != std::string_view::npos) {
        return "read up to the zero byte at " + std::to_string(end) + ", " +
               std::to_string(bytes.size() - end) + " bytes are left out";
    }
    const std::string_view text = trimmed(bytes);
    const bool complete =
        text.size() >= endMark.size() && text.substr(text.size() - endMark.size()) == endMark;
    return complete ? "" : "no EOF mark at the end, the drawing may be cut short";
}
