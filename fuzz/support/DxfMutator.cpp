// Mutates DXF texts group by group: a code line with its value line stays a pair.
#include "fuzz/support/Lines.h"
#include "fuzz/support/Mutation.h"

#include <string>

namespace {

const char* const codes[] = {"0",   "0",   "9",   "2",    "3",    "5",  "6",   "8",          "10",
                             "20",  "30",  "40",  "41",   "42",   "11", "21",  "31",         "48",
                             "50",  "51",  "38",  "39",   "62",   "66", "67",  "70",         "71",
                             "72",  "73",  "74",  "76",   "90",   "91", "210", "220",        "230",
                             "370", "420", "999", "1001", "1070", "-1", "x",   "99999999999"};

const char* const objects[] = {"POINT",  "LINE",   "CIRCLE", "ARC",   "POLYLINE", "VERTEX",
                               "SEQEND", "SPLINE", "BLOCK",  "LAYER", "LTYPE",    "LWPOLYLINE",
                               "ENDBLK", "HATCH",  "LEADER", "MTEXT", "ENDSEC",   "EOF"};

const char* const values[] = {"0",
                              "1",
                              "-1",
                              "0.5",
                              "3",
                              "1e99999",
                              "nan",
                              "inf",
                              "",
                              " ",
                              "1,5",
                              "2147483647",
                              "-0.0",
                              "1e-400",
                              "90",
                              "360",
                              "128",
                              "65",
                              "1073741825",
                              "12",
                              "0x10",
                              "99999",
                              "1 2",
                              "+1.5",
                              "dxflib",
                              "BYLAYER",
                              "1e300",
                              "256",
                              "AC1009",
                              "-5.25",
                              "7FFFFFFFFFFFFFFF",
                              "1.7976931348623157e308"};

/// Whole objects, with all the groups that make them count.
const char* const fragments[] = {
    "0\nPOINT\n8\na\n10\n1\n20\n2\n30\n3\n",
    "0\nLINE\n10\n0\n20\n0\n11\n1\n21\n1\n",
    "0\nCIRCLE\n10\n1\n20\n1\n40\n0.5\n",
    "0\nARC\n10\n0\n20\n0\n40\n1\n50\n350\n51\n10\n",
    "0\nLWPOLYLINE\n90\n2\n70\n1\n10\n0\n20\n0\n42\n1\n10\n1\n20\n1\n",
    "0\nPOLYLINE\n66\n1\n70\n1\n0\nVERTEX\n10\n1\n20\n1\n0\nVERTEX\n10\n2\n20\n1\n0\nSEQEND\n",
    ("0\nSPLINE\n70\n8\n71\n2\n72\n6\n73\n3\n74\n0\n40\n0\n40\n0\n40\n0\n40\n1\n40\n1\n40\n1\n"
     "10\n0\n20\n0\n10\n1\n20\n0\n41\n2\n10\n1\n20\n1\n"),
    "0\nBLOCK\n2\nb\n0\nPOINT\n10\n1\n0\nENDBLK\n",
    "0\nLAYER\n2\nwalls\n70\n0\n62\n3\n6\nCONTINUOUS\n",
    "0\nLTYPE\n2\ndots\n3\nDots\n72\n65\n73\n2\n40\n1\n49\n0.5\n49\n-0.5\n",
    "9\n$ACADVER\n1\nAC1009\n",
    "999\ndxflib\n",
};

/// About the longest line that dxflib can hold.
constexpr std::size_t lengths[] = {1000, 1022, 1023, 1024, 3000};

std::string anyValue(Choice& choice) {
    if (choice.oneIn(40)) {
        return std::string(choice.pick(lengths), choice.oneIn(2) ? '1' : 'x');
    }
    return choice.pick(values);
}

void mutateGroups(std::vector<std::string>& lines, Choice& choice) {
    const std::size_t group = 2 * choice.below(lines.size() / 2 + 1);
    const auto place = lines.begin() + static_cast<std::ptrdiff_t>(group);
    switch (choice.below(6)) {
    case 0: {
        const std::vector<std::string> fragment = linesOf(choice.pick(fragments));
        lines.insert(place, fragment.begin(), fragment.end());
        break;
    }
    case 1:
        lines.insert(place, {choice.pick(codes), anyValue(choice)});
        break;
    case 2:
        if (group < lines.size()) {
            lines[group] = choice.pick(codes);
        }
        break;
    case 3:
        if (group + 1 < lines.size()) {
            lines[group + 1] = lines[group] == "0" ? choice.pick(objects) : anyValue(choice);
        }
        break;
    case 4:
        if (group + 1 < lines.size()) {
            lines[group + 1] = mutatedBytes(lines[group + 1]);
        }
        break;
    default:
        rearrange(lines, 2, choice);
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    Choice choice(seed);
    if (choice.oneIn(5)) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    std::vector<std::string> lines =
        linesOf(std::string_view(reinterpret_cast<const char*>(data), size));
    for (std::size_t changes = 1 + choice.below(4); changes > 0; --changes) {
        mutateGroups(lines, choice);
    }
    const char* const lineEnd = choice.oneIn(20) ? "\r\n" : "\n";
    std::string text;
    for (const std::string& line : lines) {
        text += line + lineEnd;
    }
    return store(text, data, maxSize);
}
