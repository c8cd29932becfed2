#include "tests/support/SampleDrawings.h"

#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFSpline.h"
#include "tests/support/Random.h"

#include <cmath>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

namespace {

using Point = cv::Point3_<double>;

/// Writes the groups of a drawing.
class DrawingWriter {
public:
    std::string text;

    void group(int code, const std::string& value) {
        char line[16];
        std::snprintf(line, sizeof line, "%3d\n", code);
        text.append(line).append(value).append("\n");
    }
    void integer(int code, int value) { group(code, std::to_string(value)); }
    /// A random number with up to fifteen digits.
    void real(int code) {
        char digits[32];
        const double value = static_cast<double>(m_random()) / 4294967296.0 * 1000.0;
        std::snprintf(digits, sizeof digits, m_random() % 4 == 0 ? "%.1f" : "%.12g", value);
        group(code, digits);
    }
    void point(int code) {
        real(code);
        real(code + 10);
        group(code + 20, "0.0");
    }
    /// An object, or with the class markers of its kind an entity.
    void object(const std::string& name) {
        group(0, name);
        char handle[16];
        std::snprintf(handle, sizeof handle, "%X", ++m_handle);
        group(5, handle);
        group(330, "1F");
    }
    void entity(const std::string& name, const std::string& marker) {
        object(name);
        group(100, "AcDbEntity");
        group(8, "Layer-" + std::to_string(m_random() % 30));
        if (m_random() % 2 == 0) {
            integer(62, static_cast<int>(m_random() % 256));
            group(6, "Continuous");
        }
        group(100, marker);
    }
    void section(const std::string& name) {
        group(0, "SECTION");
        group(2, name);
    }
    void endSection() { group(0, "ENDSEC"); }
    bool oneIn(unsigned count) { return m_random.oneIn(count); }

private:
    Random32 m_random{1};
    int m_handle = 0x100;
};

void addHeader(DrawingWriter& drawing) {
    drawing.section("HEADER");
    drawing.group(9, "$ACADVER");
    drawing.group(1, "AC1015");
    for (int i = 0; i < 120; ++i) {
        drawing.group(9, "$DIMVALUE" + std::to_string(i));
        drawing.real(40);
        drawing.group(9, "$DIMFLAG" + std::to_string(i));
        drawing.integer(70, i);
    }
    drawing.endSection();
}

void addTable(DrawingWriter& drawing, const std::string& name, const std::string& marker,
              int entries, int flags) {
    drawing.group(0, "TABLE");
    drawing.group(2, name);
    drawing.integer(70, entries);
    for (int i = 0; i < entries; ++i) {
        drawing.object(name);
        drawing.group(100, "AcDbSymbolTableRecord");
        drawing.group(100, marker);
        drawing.group(2, (name == "LAYER" ? "Layer-" : name + '-') + std::to_string(i));
        drawing.integer(70, 0);
        for (int flag = 0; flag < flags; ++flag) {
            drawing.real(140 + flag % 8);
            drawing.integer(171 + flag % 8, flag);
        }
        if (name == "LAYER") {
            drawing.integer(62, 7);
            drawing.group(6, "Continuous");
            drawing.integer(370, -3);
        } else if (name == "LTYPE") {
            drawing.group(3, "Dashes ___ _ ___ _");
            drawing.integer(72, 65);
            drawing.integer(73, 2);
            drawing.real(40);
            drawing.real(49);
            drawing.real(49);
        }
    }
    drawing.group(0, "ENDTAB");
}

void addLine(DrawingWriter& drawing) {
    drawing.entity("LINE", "AcDbLine");
    drawing.point(10);
    drawing.point(11);
}

void addArc(DrawingWriter& drawing) {
    drawing.entity("ARC", "AcDbCircle");
    drawing.point(10);
    drawing.real(40);
    drawing.group(100, "AcDbArc");
    drawing.real(50);
    drawing.real(51);
}

void addCircle(DrawingWriter& drawing) {
    drawing.entity("CIRCLE", "AcDbCircle");
    drawing.point(10);
    drawing.real(40);
}

void addPolyline(DrawingWriter& drawing) {
    drawing.entity("LWPOLYLINE", "AcDbPolyline");
    drawing.integer(90, 12);
    drawing.integer(70, 1);
    for (int i = 0; i < 12; ++i) {
        drawing.real(10);
        drawing.real(20);
        if (drawing.oneIn(4)) {
            drawing.group(42, "0.4142135623730951");
        }
    }
}

void addSpline(DrawingWriter& drawing) {
    drawing.entity("SPLINE", "AcDbSpline");
    drawing.integer(70, 8);
    drawing.integer(71, 3);
    drawing.integer(72, 12);
    drawing.integer(73, 8);
    drawing.integer(74, 0);
    for (int i = 0; i < 12; ++i) {
        drawing.integer(40, i < 4 ? 0 : i > 8 ? 5 : i - 3);
    }
    for (int i = 0; i < 8; ++i) {
        drawing.point(10);
    }
}

void addText(DrawingWriter& drawing) {
    drawing.entity("MTEXT", "AcDbMText");
    drawing.point(10);
    drawing.real(40);
    drawing.real(41);
    drawing.group(1, "{\\fArial|b0|i0;Room 12\\Parea 34.5 m\\U+00B2}");
    drawing.group(7, "Standard");
    drawing.point(11);
}

void addInsert(DrawingWriter& drawing) {
    drawing.entity("INSERT", "AcDbBlockReference");
    drawing.group(2, "Block-7");
    drawing.point(10);
    drawing.real(41);
    drawing.real(42);
}

void addDimension(DrawingWriter& drawing) {
    drawing.entity("DIMENSION", "AcDbDimension");
    drawing.group(2, "*D5");
    drawing.point(10);
    drawing.point(11);
    drawing.integer(70, 33);
    drawing.group(3, "ISO-25");
    drawing.group(100, "AcDbAlignedDimension");
    drawing.point(13);
    drawing.point(14);
}

void addHatch(DrawingWriter& drawing) {
    drawing.entity("HATCH", "AcDbHatch");
    drawing.point(10);
    drawing.group(2, "ANSI31");
    drawing.integer(70, 0);
    drawing.integer(91, 1);
    drawing.integer(92, 1);
    drawing.integer(93, 40);
    for (int i = 0; i < 40; ++i) {
        drawing.integer(72, 1);
        drawing.real(10);
        drawing.real(20);
        drawing.real(11);
        drawing.real(21);
    }
    drawing.integer(97, 0);
    drawing.integer(75, 0);
    drawing.integer(76, 1);
}

void addBlocks(DrawingWriter& drawing) {
    drawing.section("BLOCKS");
    for (int i = 0; i < 60; ++i) {
        drawing.entity("BLOCK", "AcDbBlockBegin");
        drawing.group(2, "Block-" + std::to_string(i));
        drawing.integer(70, 0);
        drawing.point(10);
        for (int j = 0; j < 8; ++j) {
            addLine(drawing);
            addArc(drawing);
        }
        addText(drawing);
        drawing.entity("ENDBLK", "AcDbBlockEnd");
    }
    drawing.endSection();
}

void addEntities(DrawingWriter& drawing) {
    drawing.section("ENTITIES");
    for (int i = 0; i < 60; ++i) {
        addLine(drawing);
        addLine(drawing);
        addArc(drawing);
        addCircle(drawing);
        addPolyline(drawing);
        addText(drawing);
        addInsert(drawing);
        addDimension(drawing);
        addHatch(drawing);
        if (i % 3 == 0) {
            addSpline(drawing);
        }
    }
    drawing.endSection();
}

void addDictionaries(DrawingWriter& drawing) {
    drawing.section("OBJECTS");
    for (int i = 0; i < 200; ++i) {
        drawing.object("DICTIONARY");
        drawing.group(100, "AcDbDictionary");
        drawing.integer(281, 1);
        for (int j = 0; j < 6; ++j) {
            drawing.group(3, "ACAD_ENTRY_" + std::to_string(j));
            drawing.group(350, "1A" + std::to_string(j));
        }
    }
    drawing.endSection();
}

/// The sides of a polygon with a hundred sides of length 1, each a line in either direction.
void addPolygon(const Point& center, std::mt19937& random,
                std::vector<std::pair<Point, Point>>& lines) {
    constexpr int sides = 100;
    constexpr double angle = 6.283185307179586 / sides;
    const double radius = 0.5 / std::sin(angle / 2);
    const auto corner = [&](int i) {
        return Point(center.x + radius * std::cos(angle * (i % sides)),
                     center.y + radius * std::sin(angle * (i % sides)), 0.0);
    };
    for (int i = 0; i < sides; ++i) {
        lines.emplace_back(corner(i), corner(i + 1));
        if (random() % 2 == 0) {
            std::swap(lines.back().first, lines.back().second);
        }
    }
}

} // namespace

std::string ordinaryDrawing() {
    DrawingWriter drawing;
    addHeader(drawing);
    drawing.section("TABLES");
    addTable(drawing, "VPORT", "AcDbViewportTableRecord", 1, 30);
    addTable(drawing, "LTYPE", "AcDbLinetypeTableRecord", 8, 0);
    addTable(drawing, "LAYER", "AcDbLayerTableRecord", 30, 0);
    addTable(drawing, "STYLE", "AcDbTextStyleTableRecord", 6, 2);
    addTable(drawing, "DIMSTYLE", "AcDbDimStyleTableRecord", 5, 35);
    drawing.endSection();
    addBlocks(drawing);
    addEntities(drawing);
    addDictionaries(drawing);
    drawing.group(0, "EOF");
    return drawing.text;
}

std::string lineDrawing(std::size_t lines, double length) {
    std::string text = "0\nSECTION\n2\nENTITIES\n";
    for (std::size_t i = 0; i < lines; ++i) {
        const double x = 2.0 * static_cast<double>(i % 1000);
        const auto y = static_cast<double>(i / 1000);
        char entity[256];
        std::snprintf(
            entity, sizeof entity,
            "0\nLINE\n8\n0\n10\n%.12f\n20\n%.12f\n30\n0.0\n11\n%.12f\n21\n%.12f\n31\n0.0\n", x, y,
            x + length, y);
        text += entity;
    }
    return text + "0\nENDSEC\n0\nEOF\n";
}

void addShuffledContours(DXFDocument& document, std::size_t lines) {
    constexpr std::size_t polygonsInRow = 100;
    constexpr double spacing = 50.0;
    std::mt19937 random(1);
    std::vector<std::pair<Point, Point>> ends;
    for (std::size_t i = 0; i < lines / 100; ++i) {
        addPolygon({static_cast<double>(i % polygonsInRow) * spacing,
                    static_cast<double>(i / polygonsInRow) * spacing, 0.0},
                   random, ends);
    }
    for (std::size_t i = ends.size(); i > 1; --i) {
        std::swap(ends[i - 1], ends[random() % i]);
    }
    for (const auto& [first, last] : ends) {
        document.addEntity(std::make_shared<DXFLine>(first, last));
    }
}

void addCircles(DXFDocument& document, std::size_t circles) {
    constexpr double radius = 15.92; // 1,000 points at ten per unit of the circumference
    for (std::size_t i = 0; i < circles; ++i) {
        const double x = static_cast<double>(i) * 50.0;
        document.addEntity(std::make_shared<DXFCircle>(Point(x, 0.0, 0.0), radius));
    }
}

void addSplines(DXFDocument& document, std::size_t splines) {
    constexpr int degree = 3;
    constexpr int controlPoints = 8;
    constexpr int knots = controlPoints + degree + 1;
    for (std::size_t i = 0; i < splines; ++i) {
        const auto spline = std::make_shared<DXFSpline>(degree, knots, controlPoints, 0, 0);
        for (int j = 0; j < knots; ++j) {
            spline->appendKnot(j);
        }
        for (int j = 0; j < controlPoints; ++j) {
            spline->appendControlPoint(static_cast<double>(i) * 50.0 + j * 4.0, j % 2 * 3.0, 0.0,
                                       1.0);
        }
        document.addEntity(spline);
    }
}
