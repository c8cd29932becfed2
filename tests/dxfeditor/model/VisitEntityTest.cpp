#include "dxfeditor/VisitEntity.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using dxfeditor::visitEntity;

using Point = cv::Point3_<double>;

/// Notes what it is called with.
struct Names {
    std::string& called;

    void operator()(const DXFPolyline&) const { called += "polyline"; }
    void operator()(const DXFPoint&) const { called += "point"; }
    void operator()(const DXFPointVector&) const { called += "points"; }
    void operator()(const DXFCircle&) const { called += "circle"; }
    void operator()(const DXFArc&) const { called += "arc"; }
    void operator()(const DXFLine&) const { called += "line"; }
    void operator()(const DXFSpline&) const { called += "spline"; }
};

std::string nameOf(const DXFEntity& entity) {
    std::string called;
    const bool isVisited = visitEntity(entity, Names{called});
    EXPECT_EQ(isVisited, !called.empty());
    return called;
}

TEST(VisitEntity, CallsTheVisitorWithTheClassOfTheEntity) {
    EXPECT_EQ(nameOf(DXFPolyline(0, 0, 0)), "polyline");
    EXPECT_EQ(nameOf(DXFPoint(1, 2, 3)), "point");
    EXPECT_EQ(nameOf(DXFPointVector({})), "points");
    EXPECT_EQ(nameOf(DXFCircle(Point(), 1)), "circle");
    EXPECT_EQ(nameOf(DXFArc(Point(), 1, 0, 90)), "arc");
    EXPECT_EQ(nameOf(DXFLine(Point(), Point())), "line");
    EXPECT_EQ(nameOf(DXFSpline(3, 0, 0, 0, 0)), "spline");
}

/// A point that says it is something else.
class LyingPoint : public DXFPoint {
public:
    explicit LyingPoint(int code) : DXFPoint(1, 2, 3), m_code(code) {}
    int type() const override { return m_code; }

private:
    int m_code;
};

TEST(VisitEntity, CallsNobodyForAnEntityThatIsNotWhatItSays) {
    for (int code = -2; code <= 9; ++code) {
        EXPECT_EQ(nameOf(LyingPoint(code)), code == DXFEntityType::Point ? "point" : "") << code;
    }
}

/// A circle and a line in one, which says what it is told to.
class Two : public DXFCircle, public DXFLine {
public:
    explicit Two(int code)
        : DXFCircle(Point(), 7), DXFLine(Point(1, 2, 3), Point()), m_code(code) {}
    int type() const override { return m_code; }
    void setup() override {}
    DXFEntity* clone() const override { return DXFLine::clone(); }

private:
    int m_code;
};

TEST(VisitEntity, FindsTheWantedClassInAnEntityOfSeveral) {
    const Two circle(DXFEntityType::Circle);
    const Two line(DXFEntityType::Line);
    const DXFEntity& circleAsLine = static_cast<const DXFLine&>(circle);
    const DXFEntity& lineAsCircle = static_cast<const DXFCircle&>(line);
    const void* found = nullptr;
    const auto note = [&](const auto& kind) { found = &kind; };
    EXPECT_TRUE(visitEntity(circleAsLine, note));
    EXPECT_EQ(found, static_cast<const DXFCircle*>(&circle));
    EXPECT_TRUE(visitEntity(lineAsCircle, note));
    EXPECT_EQ(found, static_cast<const DXFLine*>(&line));
}

TEST(VisitEntity, LetsAVisitorChangeAnEntityThatIsNotConstant) {
    DXFPointVector vector({});
    DXFEntity& entity = vector;
    visitEntity(entity, [](auto& kind) {
        if constexpr (std::is_same_v<decltype(kind), DXFPointVector&>) {
            kind.addPoint({1, 2, 3});
        }
    });
    EXPECT_EQ(vector.points().size(), 1U);
}

} // namespace
