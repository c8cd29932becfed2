#include "tests/support/HostileDrawings.h"

#include "tests/support/Repeated.h"

const std::vector<HostileDrawing>& hostileDrawings() {
    static const std::vector<HostileDrawing> drawings = {
        {"LayersOfDifferentNames",
         [](std::size_t size) {
             return repeated(
                 size, [](std::size_t i) { return "0\nLAYER\n2\n" + std::to_string(i) + "\n"; });
         }},
        {"LineTypesOfDifferentNames",
         [](std::size_t size) {
             return repeated(size, [](std::size_t i) {
                 return "0\nLTYPE\n2\n" + std::to_string(i) + "\n73\n9\n49\n1\n";
             });
         }},
        {"PointsAndLinesInTurn",
         [](std::size_t size) { return repeated(size, "0\nPOINT\n0\nPOINT\n0\nLINE\n"); }},
        {"LinesWithoutALength", [](std::size_t size) { return repeated(size, "0\nLINE\n"); }},
        {"LinesInAChain",
         [](std::size_t size) {
             return repeated(size, [](std::size_t i) {
                 return "0\nLINE\n10\n" + std::to_string(i) + "\n11\n" + std::to_string(i + 1) +
                        "\n";
             });
         }},
        {"ShortestEntities", [](std::size_t size) { return repeated(size, "0\nARC\n"); }},
        {"OneRunOfPoints", [](std::size_t size) { return repeated(size, "0\nPOINT\n"); }},
        {"OneRunOfVertices",
         [](std::size_t size) { return "0\nPOLYLINE\n" + repeated(size, "0\nVERTEX\n10\n1\n"); }},
        {"OneRunOfVerticesWithoutAnEndAndANumberForDxflib",
         [](std::size_t size) {
             return "0\nPOLYLINE\n" + repeated(size, "0\nVERTEX\n10\n1\n") +
                    "0\nVERTEX\n10\n+1\n0\nVERTEX\n";
         }},
        {"PolylinesWithoutVertices",
         [](std::size_t size) { return repeated(size, "0\nPOLYLINE\n"); }},
        {"RunsOfVerticesWithoutAPolyline",
         [](std::size_t size) { return repeated(size, "0\nVERTEX\n0\nSEQEND\n"); }},
        {"OneSplineOfManyKnots",
         [](std::size_t size) {
             return "0\nSPLINE\n72\n1000000\n" + repeated(size, "40\n1\n") + "0\nEOF\n";
         }},
        {"OneSplineOfManyControlPointsAndAHighDegree",
         [](std::size_t size) {
             return "0\nSPLINE\n71\n100000\n" + repeated(size, "10\n1\n40\n1\n40\n1\n") +
                    "0\nEOF\n";
         }},
        {"TinySplinesThatClaimHugeCounts",
         [](std::size_t size) {
             return repeated(size, "0\nSPLINE\n72\n999999999\n73\n999999999\n74\n999999999\n");
         }},
        {"TinySplines", [](std::size_t size) { return repeated(size, "0\nSPLINE\n"); }},
        {"TinyLwPolylinesThatClaimHugeCounts",
         [](std::size_t size) {
             return repeated(size, "0\nLWPOLYLINE\n90\n1073741825\n10\n+1\n");
         }},
        {"OneLwPolylineThatStartsOverAgainAndAgain",
         [](std::size_t size) {
             return "0\nLWPOLYLINE\n" + repeated(size, "90\n99999\n10\n+1\n") + "0\nEOF\n";
         }},
        {"OneGiganticLine",
         [](std::size_t size) {
             return "0\nMTEXT\n1\n" + std::string(size, 'x') + "\n0\nPOINT\n0\nEOF\n";
         }},
        {"LongLinesOnly",
         [](std::size_t size) { return repeated(size, std::string(1500, '0') + "\n"); }},
        {"NoLineEnds", [](std::size_t size) { return std::string(size, '0'); }},
        {"NothingButLineEnds", [](std::size_t size) { return std::string(size, '\n'); }},
        {"NothingButNuls", [](std::size_t size) { return std::string(size, '\0'); }},
        {"GroupCodesThatAreNoNumbers",
         [](std::size_t size) { return repeated(size, "POINT\nx\n"); }},
        {"GroupCodesThatDoNotFit",
         [](std::size_t size) { return repeated(size, "99999999999999999999\nx\n"); }},
        {"BlocksThatDoNotEnd",
         [](std::size_t size) { return repeated(size, "0\nBLOCK\n2\nb\n0\nPOINT\n"); }},
        {"CommentsThatDxflibFallsOver",
         [](std::size_t size) { return repeated(size, "999\ndxflib\n"); }},
        {"ObjectsThatAreDropped",
         [](std::size_t size) { return repeated(size, "0\nHATCH\n91\n99999999\n0\nLEADER\n"); }},
    };
    return drawings;
}
