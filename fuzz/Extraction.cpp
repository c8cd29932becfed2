// Drawings of any entities, also those that no file can hold: splines are evaluated, the points are
// those of a plain extraction, the contours cover them.
#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"
#include "fuzz/support/ByteSource.h"
#include "fuzz/support/ClaimedWork.h"
#include "fuzz/support/Verify.h"
#include "tests/support/PlainExtraction.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

namespace {

using Point = cv::Point3_<double>;

/// Mostly numbers that make drawings whose ends meet, and sometimes any bits.
double anyNumber(ByteSource& source) {
    static const double special[] = {0.0,
                                     -0.0,
                                     0.001,
                                     0.0005,
                                     0.0009999999999999,
                                     1e-15,
                                     -1e-15,
                                     1e300,
                                     -1e300,
                                     214748364.7,
                                     1e10,
                                     360.0,
                                     std::numeric_limits<double>::infinity(),
                                     -std::numeric_limits<double>::infinity(),
                                     std::numeric_limits<double>::quiet_NaN(),
                                     std::numeric_limits<double>::denorm_min()};
    const std::size_t kind = source.upTo(31);
    if (kind == 0) {
        return source.take<double>();
    }
    if (kind == 1) {
        return special[source.upTo(std::size(special) - 1)];
    }
    return static_cast<double>(static_cast<int>(kind) - 16) * 0.25;
}

Point anyPoint(ByteSource& source) {
    const double x = anyNumber(source);
    const double y = anyNumber(source);
    return {x, y, anyNumber(source)};
}

std::shared_ptr<DXFSpline> anySpline(ByteSource& source) {
    const std::size_t kind = source.upTo(9);
    const unsigned degree = kind == 9 ? source.take<unsigned>() : static_cast<unsigned>(kind % 6);
    auto spline = std::make_shared<DXFSpline>(degree, source.take<std::uint8_t>(), 1U, 2U, 3);
    for (std::size_t points = source.upTo(12); points > 0; --points) {
        const Point point = anyPoint(source);
        spline->appendControlPoint(point.x, point.y, point.z, anyNumber(source));
    }
    for (std::size_t knots = source.upTo(20); knots > 0; --knots) {
        spline->appendKnot(anyNumber(source));
    }
    for (std::size_t points = source.upTo(3); points > 0; --points) {
        const Point point = anyPoint(source);
        spline->appendFitPoint(point.x, point.y, point.z);
    }
    return spline;
}

std::shared_ptr<DXFPolyline> anyPolyline(ByteSource& source) {
    auto polyline =
        std::make_shared<DXFPolyline>(source.take<std::uint8_t>(), 0U, source.take<std::uint8_t>());
    for (std::size_t vertices = source.upTo(8); vertices > 0; --vertices) {
        const Point point = anyPoint(source);
        polyline->appendPoint(DXFVertex(point.x, point.y, point.z, true, anyNumber(source)));
    }
    return polyline;
}

std::shared_ptr<DXFEntity> anyEntity(ByteSource& source) {
    switch (source.upTo(8)) {
    case 0:
        return anySpline(source);
    case 1:
        return anyPolyline(source);
    case 2: {
        const Point center = anyPoint(source);
        return std::make_shared<DXFCircle>(center, anyNumber(source));
    }
    case 3: {
        const Point center = anyPoint(source);
        const double radius = anyNumber(source);
        const double start = anyNumber(source) * 90;
        return std::make_shared<DXFArc>(center, radius, start, anyNumber(source) * 90);
    }
    case 4: {
        std::vector<Point> points(source.upTo(4));
        for (Point& point : points) {
            point = anyPoint(source);
        }
        return std::make_shared<DXFPointVector>(points);
    }
    case 5: {
        const Point point = anyPoint(source);
        return std::make_shared<DXFPoint>(point.x, point.y, point.z);
    }
    case 6:
        return source.upTo(7) == 0 ? nullptr : anySpline(source);
    default: {
        const Point start = anyPoint(source);
        return std::make_shared<DXFLine>(start, anyPoint(source));
    }
    }
}

void evaluate(const DXFSpline& spline, ByteSource& source) {
    for (const double step : {0.1, anyNumber(source)}) {
        const auto samples = static_cast<double>(spline.sampleCount(step));
        const double degree = static_cast<int>(spline.degree());
        if (samples * (1 + degree * degree) <= mostClaimedWork / 40) {
            FUZZ_VERIFY(spline.sample(step).size() == spline.sampleCount(step));
        }
    }
    for (int i = 0; i < 3; ++i) {
        spline.evaluate(anyNumber(source));
    }
}

void verifyContours(const std::vector<DXFContour>& contours, const std::vector<DXFPiece>& pieces,
                    std::size_t points) {
    std::size_t end = 0;
    std::size_t piece = 0;
    for (const DXFContour& contour : contours) {
        FUZZ_VERIFY(contour.begin == end && contour.end > contour.begin);
        FUZZ_VERIFY(contour.firstPiece == piece && contour.endPiece <= pieces.size());
        for (; piece < contour.endPiece; ++piece) {
            FUZZ_VERIFY(pieces[piece].begin == end && pieces[piece].end >= end);
            end = pieces[piece].end;
        }
        FUZZ_VERIFY(contour.end == end);
    }
    FUZZ_VERIFY(end == points && piece == pieces.size());
}

bool isSame(double a, double b) {
    return std::isnan(a) ? std::isnan(b) : std::memcmp(&a, &b, sizeof a) == 0;
}

bool areSame(const std::vector<Point>& a, const std::vector<Point>& b) {
    const auto same = [](const Point& p, const Point& q) {
        return isSame(p.x, q.x) && isSame(p.y, q.y) && isSame(p.z, q.z);
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    ByteSource source(bytes, size);
    DXFDocument document;
    // The plain stitching takes quadratic time.
    constexpr int mostEntities = 60;
    std::shared_ptr<DXFEntity> entity;
    for (int i = 0; i < mostEntities && !source.empty(); ++i) {
        if (i == 0 || source.upTo(15) != 0) {
            entity = anyEntity(source);
        }
        document.addEntity(entity);
        if (const auto* spline = dynamic_cast<const DXFSpline*>(entity.get())) {
            evaluate(*spline, source);
        }
    }
    document.setup();
    if (claimedWork(document) > mostClaimedWork / 40) {
        return 0;
    }
    std::vector<DXFContour> contours;
    std::vector<DXFPiece> pieces;
    const std::vector<Point> points = document.getPoints(contours, pieces);
    verifyContours(contours, pieces, points.size());
    FUZZ_VERIFY(areSame(points, document.getPoints()));
    FUZZ_VERIFY(areSame(points, plainPoints(document)));
    return 0;
}
