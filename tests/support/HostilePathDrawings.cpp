#include "tests/support/HostilePathDrawings.h"

#include "tests/support/Repeated.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>

namespace {

std::string name(std::size_t number) {
    return "n" + std::to_string(number);
}

std::string pointOf(const std::string& x, const std::string& more = "") {
    return "0\nPOINT\n8\n0\n10\n" + x + "\n20\n0\n" + more;
}

std::string lineOf(double x, double y, double endX, double endY) {
    std::ostringstream text;
    text << "0\nLINE\n8\n0\n10\n"
         << x << "\n20\n"
         << y << "\n11\n"
         << endX << "\n21\n"
         << endY << '\n';
    return text.str();
}

/// A closed square around the origin.
std::string squareOf(double half) {
    std::ostringstream text;
    text << "0\nLWPOLYLINE\n8\n0\n90\n4\n70\n1\n";
    for (const auto& [x, y] : {std::pair(-half, -half), std::pair(half, -half),
                               std::pair(half, half), std::pair(-half, half)}) {
        text << "10\n" << x << "\n20\n" << y << '\n';
    }
    return text.str();
}

template <typename Number>
void append(std::string& bytes, Number number) {
    // Little-endian, as both processors of the tests are.
    char raw[sizeof number];
    std::memcpy(raw, &number, sizeof number);
    bytes.append(raw, sizeof number);
}

bool isBetween(int code, int first, int last) {
    return code >= first && code <= last;
}

void appendBinaryValue(std::string& bytes, int code, const std::string& value) {
    if (isBetween(code, 10, 59) || isBetween(code, 110, 149) || isBetween(code, 210, 239) ||
        isBetween(code, 460, 469) || isBetween(code, 1010, 1059)) {
        append(bytes, std::strtod(value.c_str(), nullptr));
    } else if (isBetween(code, 60, 79) || isBetween(code, 170, 179) || isBetween(code, 270, 289) ||
               isBetween(code, 370, 389) || isBetween(code, 400, 409) ||
               isBetween(code, 1060, 1070)) {
        append(bytes, static_cast<std::int16_t>(std::strtol(value.c_str(), nullptr, 10)));
    } else if (isBetween(code, 90, 99) || isBetween(code, 420, 429) || isBetween(code, 440, 459) ||
               code == 1071) {
        append(bytes, static_cast<std::int32_t>(std::strtol(value.c_str(), nullptr, 10)));
    } else if (isBetween(code, 290, 299)) {
        append(bytes, static_cast<std::int8_t>(std::strtol(value.c_str(), nullptr, 10)));
    } else {
        bytes += value;
        bytes += '\0';
    }
}

/// Blocks that each hold the next one, as often as an INSERT's groups say.
std::string nestedBlocks(std::size_t size, const std::string& insert) {
    return repeated(size,
                    [&](std::size_t i) { return blockOf(name(i), insertOf(name(i + 1), insert)); });
}

const char* const smallSpline = "0\nSPLINE\n8\n0\n70\n8\n71\n2\n72\n6\n73\n3\n40\n0\n40\n0\n40\n0\n"
                                "40\n1\n40\n1\n40\n1\n10\n0\n20\n0\n10\n1\n20\n1\n10\n2\n20\n0\n";

} // namespace

DxfGroupList groupsOf(const std::string& text) {
    std::istringstream stream(text);
    DxfGroupList groups;
    std::string code;
    std::string value;
    while (std::getline(stream, code) && std::getline(stream, value)) {
        groups.emplace_back(std::atoi(code.c_str()), value);
    }
    return groups;
}

std::string binaryDrawingOf(const DxfGroupList& groups) {
    std::string bytes("AutoCAD Binary DXF\r\n\x1a\0", 22);
    for (const auto& [code, value] : groups) {
        append(bytes, static_cast<std::int16_t>(code));
        appendBinaryValue(bytes, code, value);
    }
    return bytes;
}

std::string drawingOf(const std::string& entities, const std::string& blocks,
                      const std::string& layers) {
    std::string text = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$INSUNITS\n70\n4\n"
                       "0\nENDSEC\n";
    text +=
        "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n70\n1\n" + layers + "0\nENDTAB\n0\nENDSEC\n";
    text += "0\nSECTION\n2\nBLOCKS\n" + blocks + "0\nENDSEC\n";
    return text + "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
}

std::string blockOf(const std::string& name, const std::string& contents) {
    return "0\nBLOCK\n8\n0\n2\n" + name + "\n70\n0\n10\n0\n20\n0\n30\n0\n3\n" + name + "\n" +
           contents + "0\nENDBLK\n8\n0\n";
}

std::string insertOf(const std::string& name, const std::string& more) {
    return "0\nINSERT\n8\n0\n2\n" + name + "\n10\n0\n20\n0\n30\n0\n" + more;
}

std::string drawingOfEverything() {
    const std::string curves =
        pointOf("1") + lineOf(0, 0, 1, 1) + "0\nCIRCLE\n8\na\n10\n0\n20\n0\n40\n2\n" +
        "0\nARC\n8\na\n10\n0\n20\n0\n40\n1\n50\n350\n51\n100\n230\n-1\n" +
        "0\nELLIPSE\n8\na\n10\n5\n20\n5\n11\n3\n21\n1\n40\n0.3\n41\n0.5\n42\n4\n" +
        "0\nLWPOLYLINE\n8\nb\n90\n3\n70\n1\n10\n0\n20\n0\n42\n0.5\n10\n4\n20\n0\n42\n-1\n10\n4\n"
        "20\n3\n" +
        "0\nPOLYLINE\n8\nb\n66\n1\n70\n0\n30\n2\n0\nVERTEX\n8\nb\n10\n0\n20\n0\n42\n1\n0\nVERTEX\n"
        "8\nb\n10\n2\n20\n0\n0\nSEQEND\n8\nb\n" +
        "0\nPOLYLINE\n8\nb\n66\n1\n70\n8\n0\nVERTEX\n8\nb\n10\n0\n20\n0\n30\n1\n70\n32\n0\nVERTEX\n"
        "8\nb\n10\n2\n20\n0\n30\n3\n70\n32\n0\nSEQEND\n8\nb\n" +
        smallSpline +
        "0\nSPLINE\n8\nb\n70\n1024\n71\n3\n74\n4\n11\n0\n21\n0\n11\n1\n21\n2\n11\n3\n21\n2\n11\n4\n"
        "21\n0\n" +
        "0\nTEXT\n8\nb\n1\na text\n0\nHATCH\n8\nb\n2\nSOLID\n";
    const std::string nested =
        blockOf("inner", curves) +
        blockOf("outer",
                lineOf(0, 0, 3, 4) + insertOf("inner", "41\n2\n42\n-1\n43\n0.5\n50\n30\n"));
    return drawingOf(
        curves + insertOf("outer", "210\n0\n220\n1\n230\n1\n70\n2\n71\n2\n44\n20\n45\n9\n") +
            insertOf("missing") + insertOf("inner", "66\n1\n") +
            "0\nATTRIB\n8\n0\n1\nvalue\n2\nTAG\n0\nSEQEND\n8\n0\n",
        nested,
        "0\nLAYER\n2\na\n70\n0\n62\n3\n6\nCONTINUOUS\n"
        "0\nLAYER\n2\nb\n70\n0\n62\n5\n6\nCONTINUOUS\n");
}

const std::vector<HostileDrawing>& hostilePathDrawings() {
    static const std::vector<HostileDrawing> drawings = {
        {"LayersOfDifferentNames",
         [](std::size_t size) {
             return drawingOf("", "", repeated(size, [](std::size_t i) {
                                  return "0\nLAYER\n2\n" + name(i) + "\n70\n0\n62\n1\n";
                              }));
         }},
        {"BlocksOfDifferentNames",
         [](std::size_t size) {
             return drawingOf(
                 "", repeated(size, [](std::size_t i) { return blockOf(name(i), pointOf("1")); }));
         }},
        {"BlocksOfOneName",
         [](std::size_t size) {
             return drawingOf(insertOf("b"), repeated(size, blockOf("b", pointOf("1"))));
         }},
        {"BlocksThatDoNotEnd",
         [](std::size_t size) {
             return drawingOf(insertOf("b"), repeated(size, "0\nBLOCK\n2\nb\n0\nPOINT\n"));
         }},
        {"InsertsOfMissingBlocks",
         [](std::size_t size) {
             return drawingOf(repeated(size, [](std::size_t i) { return insertOf(name(i)); }));
         }},
        {"InsertsOfAnEmptyBlock",
         [](std::size_t size) {
             return drawingOf(repeated(size, insertOf("b", "70\n32767\n71\n32767\n")),
                              blockOf("b", ""));
         }},
        {"InsertsWithoutTheEndOfTheirAttributes",
         [](std::size_t size) {
             return drawingOf(repeated(size, insertOf("b", "66\n1\n") + "0\nATTRIB\n1\nx\n"),
                              blockOf("b", pointOf("1")));
         }},
        {"BlocksInBlocksInBlocks",
         [](std::size_t size) { return drawingOf(insertOf("n0"), nestedBlocks(size, "")); }},
        {"BlocksInBlocksInBlocksWithADrawnEach",
         [](std::size_t size) {
             return drawingOf(insertOf("n0"), repeated(size, [](std::size_t i) {
                                  return blockOf(name(i), pointOf("1") + insertOf(name(i + 1)));
                              }));
         }},
        {"TheDepthsOfBlocksInBlocksEachInserted",
         [](std::size_t size) {
             return drawingOf(repeated(size / 2, [](std::size_t i) { return insertOf(name(i)); }),
                              nestedBlocks(size / 2, ""));
         }},
        {"BlocksInARing",
         [](std::size_t size) {
             return drawingOf(insertOf("n0"),
                              nestedBlocks(size, "") + blockOf("last", insertOf("n0")));
         }},
        {"BlocksThatHoldAllBeforeThem",
         [](std::size_t size) {
             return drawingOf(insertOf("n40"), repeated(size, [](std::size_t i) {
                                  return blockOf(name(i), i == 0 ? std::string()
                                                                 : insertOf(name(i - 1)) +
                                                                       insertOf(name(i - 1)));
                              }));
         }},
        {"KindsOfDifferentNames",
         [](std::size_t size) {
             return drawingOf(
                 repeated(size, [](std::size_t i) { return "0\nX" + name(i) + "\n"; }));
         }},
        {"TextsOnLayersOfDifferentNames",
         [](std::size_t size) {
             return drawingOf(
                 repeated(size, [](std::size_t i) { return "0\nTEXT\n8\n" + name(i) + "\n"; }));
         }},
        {"PointsAtOnePlace",
         [](std::size_t size) { return drawingOf(repeated(size, pointOf("1"))); }},
        {"LinesWithoutALength",
         [](std::size_t size) { return drawingOf(repeated(size, lineOf(1, 1, 1, 1))); }},
        {"LinesThatAreAllTheSame",
         [](std::size_t size) { return drawingOf(repeated(size, lineOf(0, 0, 1, 1))); }},
        {"LinesFromOnePlace",
         [](std::size_t size) {
             return drawingOf(repeated(
                 size, [](std::size_t i) { return lineOf(0, 0, 1 + static_cast<double>(i), 1); }));
         }},
        {"LinesInAChainBackwards",
         [](std::size_t size) {
             return drawingOf(repeated(size, [](std::size_t i) {
                 const auto x = static_cast<double>(i);
                 return lineOf(-x, 0, 1 - x, 0);
             }));
         }},
        {"LinesWhoseEndsAreNearOneAnother",
         [](std::size_t size) {
             return drawingOf(repeated(size, [](std::size_t i) {
                 return lineOf(0.0007 * static_cast<double>(i), 0, static_cast<double>(i), 5);
             }));
         }},
        {"SquaresInSquares",
         [](std::size_t size) {
             return drawingOf(repeated(
                 size, [](std::size_t i) { return squareOf(1 + static_cast<double>(i)); }));
         }},
        {"SquaresThatAreAllTheSame",
         [](std::size_t size) { return drawingOf(repeated(size, squareOf(1))); }},
        {"OnePolylineOfOneVertexAgainAndAgain",
         [](std::size_t size) {
             return drawingOf("0\nLWPOLYLINE\n8\n0\n" + repeated(size, "10\n1\n20\n1\n42\n1\n"));
         }},
        {"TinyPolylinesThatClaimHugeCounts",
         [](std::size_t size) {
             return drawingOf(repeated(size, "0\nLWPOLYLINE\n90\n2147483647\n10\n1\n"));
         }},
        {"PolylinesWithoutVertices",
         [](std::size_t size) { return drawingOf(repeated(size, "0\nPOLYLINE\n66\n1\n")); }},
        {"VerticesWithoutAPolyline",
         [](std::size_t size) {
             return drawingOf(repeated(size, "0\nVERTEX\n10\n1\n0\nSEQEND\n"));
         }},
        {"TinySplinesThatClaimHugeCounts",
         [](std::size_t size) {
             return drawingOf(repeated(
                 size, "0\nSPLINE\n71\n3\n72\n2147483647\n73\n2147483647\n74\n2147483647\n"));
         }},
        {"OneSplineOfManyEqualKnots",
         [](std::size_t size) {
             return drawingOf("0\nSPLINE\n71\n3\n" + repeated(size, "40\n1\n10\n1\n"));
         }},
        {"OneSplineOfAHighDegree",
         [](std::size_t size) {
             // As many knots in front as behind: one span.
             const std::size_t points = size / 30;
             std::string text = "0\nSPLINE\n71\n" + std::to_string(points - 1) + "\n";
             for (std::size_t i = 0; i < 2 * points; ++i) {
                 text += i < points ? "40\n0\n" : "40\n1\n";
             }
             for (std::size_t i = 0; i < points; ++i) {
                 text += "10\n" + std::to_string(i % 7) + "\n20\n" + std::to_string(i) + "\n";
             }
             return drawingOf(text);
         }},
        {"OneSplineOfManyFitPoints",
         [](std::size_t size) {
             return drawingOf("0\nSPLINE\n71\n3\n" + repeated(size, [](std::size_t i) {
                                  return "11\n" + std::to_string(i) + "\n21\n" +
                                         std::to_string(i % 2) + "\n";
                              }));
         }},
        {"OneSplineOfEqualFitPoints",
         [](std::size_t size) {
             return drawingOf("0\nSPLINE\n71\n3\n" + repeated(size, "11\n1\n21\n1\n"));
         }},
        {"SplinesThatComeToNothing",
         [](std::size_t size) { return drawingOf(repeated(size, "0\nSPLINE\n")); }},
        {"OneGiganticValue",
         [](std::size_t size) {
             return drawingOf("0\nMTEXT\n1\n" + std::string(size, 'x') + "\n");
         }},
        {"OneGiganticLayerName",
         [](std::size_t size) {
             return drawingOf(repeated(size / 2, pointOf("1")) + "0\nPOINT\n8\n" +
                              std::string(size / 2, 'x') + "\n");
         }},
        {"NamesOfEscapes",
         [](std::size_t size) {
             std::string escapes;
             while (escapes.size() < size) {
                 escapes += "\\U+00e4\\M+1A4A2";
             }
             return drawingOf("0\nPOINT\n8\n" + escapes + "\n");
         }},
        {"ListsInBraces",
         [](std::size_t size) { return drawingOf(pointOf("1", repeated(size, "102\n{X\n"))); }},
        {"SectionsThatDoNotEnd",
         [](std::size_t size) { return repeated(size, "0\nSECTION\n2\nENTITIES\n0\nPOINT\n"); }},
        {"CommentsOnly", [](std::size_t size) { return drawingOf(repeated(size, "999\nx\n")); }},
    };
    return drawings;
}
