#include "fuzz/support/PathGroups.h"

namespace {

const char* const codes[] = {"0",   "0",   "2",   "5",   "6",   "8",   "9",   "10",   "20",  "30",
                             "11",  "21",  "31",  "12",  "22",  "13",  "38",  "39",   "40",  "41",
                             "42",  "43",  "44",  "45",  "50",  "51",  "60",  "62",   "66",  "67",
                             "70",  "71",  "72",  "73",  "74",  "90",  "100", "102",  "210", "220",
                             "230", "290", "310", "330", "360", "370", "420", "1001", "1004"};

const char* const objects[] = {
    "POINT",  "LINE",    "CIRCLE", "ARC",      "ELLIPSE",     "LWPOLYLINE", "POLYLINE", "VERTEX",
    "SEQEND", "SPLINE",  "INSERT", "ATTRIB",   "BLOCK",       "ENDBLK",     "LAYER",    "TABLE",
    "ENDTAB", "SECTION", "ENDSEC", "EOF",      "TEXT",        "HATCH",      "RAY",      "3DFACE",
    "HELIX",  "MESH",    "LAYOUT", "VIEWPORT", "BLOCK_RECORD"};

const char* const values[] = {"0",
                              "1",
                              "-1",
                              "0.5",
                              "2",
                              "3",
                              "4",
                              "5",
                              "8",
                              "16",
                              "64",
                              "90",
                              "360",
                              "720.5",
                              "6.2831853071795862",
                              "0.001",
                              "1e-9",
                              "1e9",
                              "1e300",
                              "-1e300",
                              "1e-300",
                              "nan",
                              "inf",
                              "1e99999",
                              "32767",
                              "-32768",
                              "2147483647",
                              "",
                              " ",
                              "1,5",
                              "a",
                              "b",
                              "*Model_Space",
                              "*Paper_Space0",
                              "MODEL",
                              "AC1009",
                              "AC1021",
                              "ANSI_932",
                              "\\U+00e4\\M+182A0",
                              "\xe4\xff",
                              "HEADER",
                              "ENTITIES",
                              "BLOCKS",
                              "TABLES",
                              "0.015625",
                              "-0.0",
                              "1.7976931348623157e308"};

/// Whole objects, with all the groups that make them count.
const char* const fragments[] = {
    "0\nPOINT\n8\na\n10\n1\n20\n2\n30\n3\n",
    "0\nLINE\n8\n0\n10\n0\n20\n0\n11\n1\n21\n1\n",
    "0\nCIRCLE\n8\na\n10\n1\n20\n1\n40\n0.5\n",
    "0\nARC\n8\n0\n10\n0\n20\n0\n40\n1\n50\n350\n51\n10\n230\n-1\n",
    "0\nELLIPSE\n8\n0\n10\n0\n20\n0\n11\n2\n21\n1\n40\n0.4\n41\n1\n42\n5\n",
    "0\nLWPOLYLINE\n8\n0\n90\n3\n70\n1\n10\n0\n20\n0\n42\n1\n10\n1\n20\n1\n42\n-0."
    "2\n10\n3\n20\n1\n",
    ("0\nPOLYLINE\n66\n1\n70\n1\n0\nVERTEX\n10\n1\n20\n1\n42\n1\n0\nVERTEX\n10\n2\n20\n1\n70\n16\n"
     "0\nVERTEX\n10\n2\n20\n4\n0\nSEQEND\n"),
    ("0\nPOLYLINE\n66\n1\n70\n8\n0\nVERTEX\n10\n1\n20\n1\n30\n2\n0\nVERTEX\n10\n2\n20\n1\n30\n1\n"
     "0\nSEQEND\n"),
    ("0\nSPLINE\n70\n12\n71\n2\n72\n7\n73\n4\n40\n0\n40\n0\n40\n0\n40\n0.5\n40\n1\n40\n1\n40\n1\n"
     "10\n0\n20\n0\n41\n1\n10\n1\n20\n0\n41\n2\n10\n1\n20\n1\n41\n1\n10\n2\n20\n2\n41\n0.5\n"),
    ("0\nSPLINE\n70\n3\n71\n3\n40\n0\n40\n1\n40\n2\n40\n3\n40\n4\n40\n5\n40\n6\n40\n7\n10\n0\n20\n0"
     "\n"
     "10\n1\n20\n0\n10\n1\n20\n1\n10\n0\n20\n1\n"),
    "0\nSPLINE\n71\n3\n74\n3\n12\n1\n22\n0\n11\n0\n21\n0\n11\n1\n21\n2\n11\n3\n21\n0\n",
    "0\nINSERT\n8\n0\n2\nb\n10\n1\n20\n1\n41\n2\n42\n-1\n43\n0.5\n50\n30\n",
    "0\nINSERT\n8\na\n2\nb\n70\n3\n71\n2\n44\n5\n45\n5\n210\n0\n220\n1\n230\n1\n",
    "0\nINSERT\n66\n1\n2\nb\n0\nATTRIB\n8\na\n1\nx\n0\nSEQEND\n",
    "0\nBLOCK\n2\nb\n70\n0\n10\n1\n20\n0\n30\n0\n0\nPOINT\n10\n1\n0\nENDBLK\n",
    "0\nBLOCK\n2\na\n70\n0\n0\nINSERT\n2\nb\n0\nINSERT\n2\nb\n0\nENDBLK\n",
    "0\nLAYER\n2\na\n70\n0\n62\n3\n6\nCONTINUOUS\n",
    "0\nLAYER\n2\na\n70\n1\n62\n-3\n",
    "0\nTEXT\n8\na\n1\nx\n",
    "0\nSECTION\n2\nENTITIES\n",
    "0\nSECTION\n2\nBLOCKS\n",
    "0\nENDSEC\n",
    "9\n$INSUNITS\n70\n1\n",
    "9\n$ACADVER\n1\nAC1009\n",
    "9\n$DWGCODEPAGE\n3\nANSI_1252\n",
};

std::string anyValue(Choice& choice) {
    return choice.oneIn(60) ? std::string(3000, choice.oneIn(2) ? '1' : 'x')
                            : std::string(choice.pick(values));
}

} // namespace

PathGroups pathGroupsOf(std::string_view text) {
    const std::vector<std::string> lines = linesOf(text);
    PathGroups groups;
    for (std::size_t i = 0; i + 1 < lines.size(); i += 2) {
        groups.emplace_back(lines[i], lines[i + 1]);
    }
    return groups;
}

void mutatePathGroups(PathGroups& groups, Choice& choice) {
    const std::size_t number = choice.below(groups.size() + 1);
    const auto place = groups.begin() + static_cast<std::ptrdiff_t>(number);
    const bool isAtEnd = number == groups.size();
    switch (choice.below(7)) {
    case 0:
    case 1: {
        const PathGroups fragment = pathGroupsOf(choice.pick(fragments));
        groups.insert(place, fragment.begin(), fragment.end());
        break;
    }
    case 2:
        groups.insert(place, {choice.pick(codes), anyValue(choice)});
        break;
    case 3:
        if (!isAtEnd) {
            place->first = choice.pick(codes);
        }
        break;
    case 4:
        if (!isAtEnd) {
            place->second = place->first == "0" ? choice.pick(objects) : anyValue(choice);
        }
        break;
    case 5:
        if (!isAtEnd) {
            place->second = mutatedBytes(place->second);
        }
        break;
    default:
        rearrange(groups, 1, choice);
    }
}
