#include "tests/support/PathDrawings.h"

#include <cstdarg>
#include <cstdio>

namespace {

/// Text of groups, as CAD programs write them.
class Groups {
public:
    void start(const char* kind, const char* subclass) {
        add("  0\n%s\n  5\n%zX\n100\nAcDbEntity\n  8\nparts\n100\n%s\n", kind, ++m_handle,
            subclass);
    }
    void point(int code, double x, double y) {
        add("%3d\n%.12g\n%3d\n%.12g\n%3d\n0.0\n", code, x, code + 10, y, code + 20);
    }
    void flatPoint(double x, double y) { add(" 10\n%.12g\n 20\n%.12g\n", x, y); }
    void real(int code, double value) { add("%3d\n%.12g\n", code, value); }
    void integer(int code, int value) { add("%3d\n%6d\n", code, value); }
    void words(const char* words) { m_text += words; }

    __attribute__((format(printf, 2, 3))) void add(const char* format, ...) {
        char text[256];
        va_list arguments;
        va_start(arguments, format);
        const int size = std::vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
        m_text.append(text, static_cast<std::size_t>(size));
    }

    std::string take() { return std::move(m_text); }

private:
    std::string m_text;
    std::size_t m_handle = 255;
};

void addPolyline(Groups& groups, double x, double y, bool isBulged) {
    groups.start("LWPOLYLINE", "AcDbPolyline");
    groups.integer(90, 6);
    groups.integer(70, isBulged ? 1 : 0);
    for (int i = 0; i < 6; ++i) {
        groups.flatPoint(x + 3 * (i % 3), y + (i < 3 ? 0 : 4));
        if (isBulged && i % 3 == 2) {
            groups.real(42, 0.414213562373);
        }
    }
}

void addSpline(Groups& groups, double x, double y) {
    constexpr int points = 8;
    constexpr int degree = 3;
    groups.start("SPLINE", "AcDbSpline");
    groups.integer(70, 8);
    groups.integer(71, degree);
    groups.integer(72, points + degree + 1);
    groups.integer(73, points);
    groups.integer(74, 0);
    for (int i = 0; i < points + degree + 1; ++i) {
        groups.real(40, i < degree + 1 ? 0 : i > points ? points - degree : i - degree);
    }
    for (int i = 0; i < points; ++i) {
        groups.point(10, x + i, y + 3 * (i % 2) + 0.37 * i);
    }
}

void addLine(Groups& groups, double x, double y) {
    groups.start("LINE", "AcDbLine");
    groups.point(10, x, y);
    groups.point(11, x + 7.5, y + 1.25);
}

void addEntity(Groups& groups, std::size_t number, double x, double y, bool isWalkable) {
    switch (number % 10) {
    case 0:
        groups.start("CIRCLE", "AcDbCircle");
        groups.point(10, x, y);
        return groups.real(40, pathDrawingRadius);
    case 1:
    case 2:
        groups.start("ARC", "AcDbCircle");
        groups.point(10, x, y);
        groups.real(40, pathDrawingRadius);
        groups.words("100\nAcDbArc\n");
        groups.real(50, static_cast<double>(number % 360));
        return groups.real(51, static_cast<double>((number + 100) % 360));
    case 3:
    case 4:
        return addPolyline(groups, x, y, !isWalkable);
    case 5:
        return addSpline(groups, x, y);
    case 6:
        if (isWalkable) {
            return addLine(groups, x, y);
        }
        groups.start("ELLIPSE", "AcDbEllipse");
        groups.point(10, x, y);
        groups.point(11, pathDrawingRadius, 0.5);
        groups.real(40, 0.4);
        groups.real(41, 0);
        return groups.real(42, 6.28318530717959);
    default:
        addLine(groups, x, y);
    }
}

/// Where number so and so stands: rows of a thousand.
double columnOf(std::size_t number) {
    return 20.0 * static_cast<double>(number % 1000) + 0.123456;
}

double rowOf(std::size_t number) {
    return 20.0 * static_cast<double>(number / 1000) + 0.654321;
}

constexpr std::size_t blockSize = 10;
constexpr std::size_t blocks = 20;

void addBlocks(Groups& groups) {
    for (std::size_t block = 0; block < blocks; ++block) {
        groups.add("  0\nBLOCK\n  8\n0\n100\nAcDbBlockBegin\n  2\nblock%zu\n 70\n     0\n", block);
        groups.point(10, 0, 0);
        for (std::size_t i = 0; i < blockSize; ++i) {
            addEntity(groups, i, static_cast<double>(i), static_cast<double>(block), false);
        }
        groups.words("  0\nENDBLK\n  8\n0\n100\nAcDbBlockEnd\n");
    }
}

void addInsert(Groups& groups, std::size_t number) {
    groups.start("INSERT", "AcDbBlockReference");
    groups.add("  2\nblock%zu\n", number % blocks);
    groups.point(10, columnOf(number), rowOf(number));
    groups.real(41, number % 3 == 0 ? -1 : 1);
    groups.real(42, number % 7 == 0 ? 0.5 : 1);
    groups.real(43, 1);
    groups.real(50, static_cast<double>(number % 360));
}

} // namespace

std::string pathDrawing(std::size_t entities, PathDrawingKind kind) {
    const bool withBlocks = kind == PathDrawingKind::inBlocks;
    Groups groups;
    groups.words(
        "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1015\n  9\n$INSUNITS\n 70\n     4\n"
        "  0\nENDSEC\n  0\nSECTION\n  2\nTABLES\n  0\nTABLE\n  2\nLAYER\n 70\n     1\n"
        "  0\nLAYER\n  2\nparts\n 70\n     0\n 62\n     3\n  6\nCONTINUOUS\n  0\nENDTAB\n"
        "  0\nENDSEC\n");
    if (withBlocks) {
        groups.words("  0\nSECTION\n  2\nBLOCKS\n");
        addBlocks(groups);
        groups.words("  0\nENDSEC\n");
    }
    groups.words("  0\nSECTION\n  2\nENTITIES\n");
    for (std::size_t i = 0; i < (withBlocks ? entities / blockSize : entities); ++i) {
        if (withBlocks) {
            addInsert(groups, i);
        } else {
            addEntity(groups, i, columnOf(i), rowOf(i), kind == PathDrawingKind::walkable);
        }
    }
    groups.words("  0\nENDSEC\n  0\nEOF\n");
    return groups.take();
}
