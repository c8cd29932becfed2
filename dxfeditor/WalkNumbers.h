#pragma once

/// What goes with the drawing model.
namespace dxfeditor {

// The numbers that the walk of a drawing goes by, all in one place; DXFDocument::getPoints() says
// what they are for. Lengths are in drawing units.

/// Ends of entities closer than this are one point of the walk.
constexpr double joinDistance = 0.001;
static_assert(joinDistance * joinDistance == 1e-06, "squared distances are compared with this");

/// How densely lengths are sampled.
constexpr double pointsPerUnit = 10.0;
/// The length between two points.
constexpr double samplingStep = 0.1;
static_assert(samplingStep == 1.0 / pointsPerUnit);

/// 360 degrees in radians.
constexpr double fullTurn = 6.283185307179586;
/// One degree in radians.
constexpr double radiansPerDegree = 0.017453292519943295;
static_assert(radiansPerDegree == fullTurn / 360.0);

/// A circle's points for each unit of its radius.
constexpr double circlePointsPerUnitOfRadius = 62.83185307179586;
static_assert(circlePointsPerUnitOfRadius == fullTurn * pointsPerUnit);

/// The points that a circle has however small it is.
constexpr int minimumCirclePoints = 32;
/// The steps that an arc has however short it is.
constexpr int minimumArcSteps = 4;
/// The steps that a spline has however short it is.
constexpr int minimumSplineSteps = 4;

} // namespace dxfeditor
