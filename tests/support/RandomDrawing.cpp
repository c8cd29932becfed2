#include "tests/support/RandomDrawing.h"

#include "tests/support/Random.h"

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace {

using Group = std::pair<int, std::string>;
using Groups = std::vector<Group>;

/// Draws one number a statement: the order of draws within an expression is the compiler's.
class Generator {
public:
    explicit Generator(std::uint32_t seed) : m_random(seed) {}

    std::string drawing(int mostObjects);

    int below(int count) { return m_random.below<int>(static_cast<std::size_t>(count)); }
    bool oneIn(std::size_t count) { return m_random.oneIn(count); }

private:
    std::string number();
    std::string integer();
    std::string word();
    void add(Groups groups, bool shuffled);
    void addAttributes(Groups& groups);
    void addNoise(Groups& groups);
    void point(Groups& groups, int code);
    Groups begin(const std::string& name);
    void simpleEntity();
    void lwPolyline();
    void polyline();
    void spline();
    void foreignObject();
    void tableEntry();
    void headerVariable();
    void entity();
    void block();
    void write(const Group& group);

    Random32 m_random;
    std::string m_text;
    std::string m_lineEnd = "\n";
    /// Only such numbers as most programs write.
    bool m_plain = false;
};

std::string Generator::number() {
    char digits[64];
    const double value = (below(2000001) - 1000000) / 1024.0;
    static const char* const forms[] = {"%.6f", "%.16g", "%g",    "%.0f",
                                        "%e",   " %.3f", "%.3f ", "%+.2f"};
    if (m_plain) {
        std::snprintf(digits, sizeof digits, forms[below(6)], value);
        return digits;
    }
    std::snprintf(digits, sizeof digits, forms[below(8)], value);
    switch (below(40)) {
    case 0:
        return "-0.0";
    case 1:
        return "1,5";
    case 2:
        return "abc";
    case 3:
        return "1.5.5";
    case 4:
        return "1e400";
    case 5:
        return "-1e-400";
    case 6:
        return "123456789012345678901234567890.123456789";
    case 7:
        return ".5";
    case 8:
        return "5.";
    case 9:
        return "1e";
    case 10:
        return "0x10";
    case 11:
        return "nan";
    case 12:
        return "2.2250738585072014e-308";
    case 13:
        return "0.1000000000000000055511151231257827021181583404541015625";
    default:
        return digits;
    }
}

std::string Generator::integer() {
    static const char* const odd[] = {"",   "x",   " 7",        "0x1F", "99999999999",
                                      "-1", "1.9", "4294967297"};
    return !m_plain && oneIn(6) ? odd[below(8)] : std::to_string(below(300) - 5);
}

std::string Generator::word() {
    static const char* const words[] = {"0", "walls", "WALLS", " a b ", "", "\xC3\xA4", "BYLAYER"};
    return words[below(7)];
}

void Generator::write(const Group& group) {
    static const char* const before[] = {"", "", "  ", " ", "\t"};
    m_text += before[below(5)] + std::to_string(group.first);
    m_text += (oneIn(20) ? " " : "") + m_lineEnd + group.second + m_lineEnd;
}

/// Writes an object, the first group first.
void Generator::add(Groups groups, bool shuffled) {
    if (shuffled) {
        for (std::size_t i = groups.size() - 1; i > 1; --i) {
            std::swap(groups[i], groups[1 + static_cast<std::size_t>(below(static_cast<int>(i)))]);
        }
    }
    for (const Group& group : groups) {
        write(group);
    }
}

void Generator::addAttributes(Groups& groups) {
    for (const int code : {5, 39, 62, 67, 370, 420}) {
        if (oneIn(4)) {
            groups.emplace_back(code, integer());
        }
    }
    for (const int code : {6, 8}) {
        if (oneIn(2)) {
            groups.emplace_back(code, word());
        }
    }
    if (oneIn(4)) {
        groups.emplace_back(48, number());
    }
}

void Generator::addNoise(Groups& groups) {
    static const int codes[] = {100,  102, 330, 999, 1000, 1001,   1010, 1040, 1070,
                                1071, 290, 66,  -5,  60,   448,    1099, 1100, 5000,
                                210,  220, 230, 3,   1,    100000, 43,   38};
    while (oneIn(2)) {
        const int code = codes[below(static_cast<int>(std::size(codes)))];
        groups.emplace_back(code, code == 1010 || code == 1040 ? number() : "noise " + integer());
    }
}

void Generator::point(Groups& groups, int code) {
    for (int axis = 0; axis < 3; ++axis) {
        if (!oneIn(10)) {
            groups.emplace_back(code + 10 * axis, number());
        }
    }
}

Groups Generator::begin(const std::string& name) {
    Groups groups = {{oneIn(50) ? 9 : 0, name}};
    addAttributes(groups);
    addNoise(groups);
    return groups;
}

void Generator::simpleEntity() {
    static const char* const names[] = {"POINT", "POINT", "POINT", "LINE", "CIRCLE", "ARC"};
    Groups groups = begin(names[below(6)]);
    point(groups, 10);
    point(groups, 11);
    for (const int code : {40, 50, 51, 42, 70, 10}) {
        if (oneIn(2)) {
            groups.emplace_back(code, number());
        }
    }
    add(groups, true);
}

void Generator::lwPolyline() {
    Groups groups = begin("LWPOLYLINE");
    const int vertices = below(8);
    if (oneIn(8)) {
        point(groups, 10);
    }
    groups.emplace_back(90, std::to_string(vertices + (oneIn(5) ? below(7) - 3 : 0)));
    if (oneIn(20)) {
        groups.emplace_back(90, std::to_string(below(12) - 1));
    }
    for (int i = 0; i < vertices; ++i) {
        groups.emplace_back(10, number());
        for (const int code : {20, 30, 40, 41, 42, 20}) {
            if (oneIn(2)) {
                groups.emplace_back(code, number());
            }
        }
        if (oneIn(8)) {
            addNoise(groups);
        }
    }
    for (const int code : {70, 71, 72}) {
        if (oneIn(2)) {
            groups.emplace_back(code, integer());
        }
    }
    add(groups, false);
}

void Generator::polyline() {
    Groups groups = begin("POLYLINE");
    point(groups, 10);
    for (const int code : {66, 70, 71, 72}) {
        if (oneIn(2)) {
            groups.emplace_back(code, integer());
        }
    }
    add(groups, true);
    const int vertices = 1 + below(6);
    for (int i = 0; i < vertices; ++i) {
        Groups vertex = begin("VERTEX");
        point(vertex, 10);
        if (oneIn(3)) {
            vertex.emplace_back(42, number());
        }
        if (oneIn(3)) {
            vertex.emplace_back(70, std::to_string(below(256)));
        }
        add(vertex, true);
    }
    if (!oneIn(10)) {
        add(begin("SEQEND"), true);
    }
}

void Generator::spline() {
    Groups groups = begin("SPLINE");
    const int knots = below(8);
    const int controlPoints = below(6);
    const int fitPoints = below(3);
    for (const int code : {70, 71, 12, 13, 42, 43, 44}) {
        if (oneIn(2)) {
            groups.emplace_back(code, integer());
        }
    }
    if (oneIn(8)) {
        point(groups, 10);
        groups.emplace_back(40, number());
    }
    // Not much more than the text can hold behind it.
    const auto count = [&](int values) {
        return std::to_string(values + (oneIn(6) ? below(5) - 2 : 0));
    };
    groups.emplace_back(72, count(knots));
    groups.emplace_back(73, count(controlPoints));
    groups.emplace_back(74, count(fitPoints));
    for (int i = 0; i < knots; ++i) {
        groups.emplace_back(40, number());
    }
    for (int i = 0; i < controlPoints; ++i) {
        groups.emplace_back(10, number());
        for (const int code : {20, 30, 41}) {
            if (!oneIn(4)) {
                groups.emplace_back(code, number());
            }
        }
    }
    for (int i = 0; i < fitPoints; ++i) {
        point(groups, 11);
    }
    add(groups, false);
}

void Generator::foreignObject() {
    static const char* const names[] = {
        "TEXT",    "MTEXT",    "INSERT",   "ATTRIB", "SOLID", "LEADER", "HATCH", "DIMENSION",
        "ELLIPSE", "IMAGE",    "TRACE",    "3DFACE", "RAY",   "XLINE",  "STYLE", "DICTIONARY",
        "XRECORD", "IMAGEDEF", "VIEWPORT", "FOO",    "",      "POINT ", "line",  "SEQEND"};
    Groups groups = begin(names[below(static_cast<int>(std::size(names)))]);
    point(groups, 10);
    for (const int code : {1, 2, 3, 7, 40, 50, 71, 72, 73, 41}) {
        if (oneIn(3)) {
            groups.emplace_back(code, number());
        }
    }
    if (groups.front().second == "LEADER") {
        groups.emplace_back(76, "1");
        point(groups, 10);
    }
    add(groups, false);
}

void Generator::tableEntry() {
    Groups groups = begin(oneIn(2) ? "LAYER" : "LTYPE");
    for (const int code : {2, 3}) {
        if (!oneIn(5)) {
            groups.emplace_back(code, word());
            groups.back().second += std::to_string(below(20));
        }
    }
    for (const int code : {70, 73}) {
        groups.emplace_back(code, integer());
    }
    for (const int code : {40, 49, 49}) {
        groups.emplace_back(code, number());
    }
    add(groups, true);
}

void Generator::headerVariable() {
    static const int codes[] = {1, 3, 7, 10, 40, 50, 62, 70, 290};
    Groups groups = {{9, oneIn(2) ? "$ACADVER" : "$EXTMIN"}};
    const int code = codes[below(9)];
    groups.emplace_back(code, number());
    addNoise(groups);
    add(groups, false);
}

void Generator::entity() {
    switch (below(8)) {
    case 0:
        return lwPolyline();
    case 1:
        return polyline();
    case 2:
        return spline();
    case 3:
        return foreignObject();
    default:
        return simpleEntity();
    }
}

void Generator::block() {
    Groups groups = begin("BLOCK");
    groups.emplace_back(2, "B" + integer());
    point(groups, 10);
    add(groups, true);
    for (int i = below(5); i > 0; --i) {
        entity();
    }
    add(begin("ENDBLK"), true);
}

std::string Generator::drawing(int mostObjects) {
    m_plain = oneIn(2);
    m_lineEnd = oneIn(3) ? "\r\n" : "\n";
    if (oneIn(5)) {
        write({8, "stray"});
        write({999, "a comment"});
    }
    for (int i = below(5); i > 0; --i) {
        headerVariable();
    }
    for (int i = below(8); i > 0; --i) {
        tableEntry();
    }
    for (int i = below(mostObjects); i > 0; --i) {
        oneIn(12) ? block() : entity();
    }
    if (!oneIn(5)) {
        write({0, "ENDSEC"});
        write({0, "EOF"});
    }
    const auto cut = static_cast<std::size_t>(oneIn(4) ? below(40) : 0);
    m_text.resize(m_text.size() - std::min(m_text.size(), cut));
    return m_text;
}

} // namespace

std::string randomDrawing(std::uint32_t seed, int mostObjects) {
    return Generator(seed).drawing(mostObjects);
}

std::string mutated(std::string text, std::uint32_t seed) {
    static const std::string hostile[] = {"90\n1073741825\n",
                                          "90\n-1\n",
                                          "72\n99999999\n",
                                          "73\n99999999\n",
                                          "74\n99999999\n",
                                          "73\n2147483647\n",
                                          "10\n\n",
                                          "999\ndxflib\n",
                                          "0\nVERTEX\n",
                                          "0\nPOLYLINE\n",
                                          "0\nSEQEND\n",
                                          "0\nSPLINE\n",
                                          "0\nENDBLK\n",
                                          "0\nBLOCK\n",
                                          "0\nLWPOLYLINE\n",
                                          "76\n99999999\n",
                                          "1001\nAPP\n",
                                          "\n",
                                          "0\nHATCH\n91\n99999999\n",
                                          "0\n0\n",
                                          "10\n1e99999\n",
                                          "48\n \n",
                                          "9\n$X\n",
                                          "0\nPOINT\n"};
    Generator random(seed);
    const auto place = [&] {
        return static_cast<std::size_t>(random.below(static_cast<int>(text.size()) + 1));
    };
    for (int changes = 1 + random.below(8); changes > 0; --changes) {
        const std::size_t at = place();
        switch (random.below(6)) {
        case 0:
            text.insert(at, hostile[random.below(static_cast<int>(std::size(hostile)))]);
            break;
        case 1:
            text.insert(std::min(text.find('\n', at), text.size()),
                        '\n' + hostile[random.below(static_cast<int>(std::size(hostile)))]);
            break;
        case 2:
            text.insert(at, 1, static_cast<char>(random.below(256)));
            break;
        case 3:
            text.erase(at, static_cast<std::size_t>(random.below(30)));
            break;
        case 4:
            text.insert(
                at, text.substr(place()).substr(0, static_cast<std::size_t>(random.below(3000))));
            break;
        default:
            text.insert(at, static_cast<std::size_t>(random.below(3000)), '7');
            break;
        }
    }
    return text;
}
