#pragma once

/// The numbers that the walk of a drawing goes by, all in one place; DXFDocument::getPoints() says
/// what they are for. Lengths are in drawing units.
namespace dxfeditor {

/// Ends of entities closer than this are one point of the walk.
constexpr double joinDistance = 0.001;
static_assert(joinDistance * joinDistance == 1e-06, "squared distances are compared with this");

/// How densely lengths are sampled, and the step that follows.
constexpr double pointsPerUnit = 10.0;
constexpr double samplingStep = 0.1;
static_assert(samplingStep == 1.0 / pointsPerUnit);

/// Of angles, in radians.
constexpr double fullTurn = 6.283185307179586;
constexpr double radiansPerDegree = 0.017453292519943295;
static_assert(radiansPerDegree == fullTurn / 360.0);

/// A circle's points for each unit of its radius.
constexpr double circlePointsPerUnitOfRadius = 62.83185307179586;
static_assert(circlePointsPerUnitOfRadius == fullTurn * pointsPerUnit);

/// However short a curve is, it has as many.
constexpr int minimumCirclePoints = 32;
constexpr int minimumArcSteps = 4;
constexpr int minimumSplineSteps = 4;

} // namespace dxfeditor
