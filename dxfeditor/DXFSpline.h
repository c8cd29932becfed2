#pragma once

#include "dxfeditor/DXFEntity.h"

#include <opencv2/core/types.hpp>

#include <vector>

namespace dxfeditor {
struct HomogeneousPoint;
class SplineSamples;
} // namespace dxfeditor

/// A weighted control point, in drawing units.
struct DXFControlPoint {
    double x; ///< In the drawing plane.
    double y; ///< In the drawing plane.
    double z; ///< Height; evaluation does not use it.
    double w; ///< Weight.
};

/// A rational B-spline: degree, knots and weighted control points in file order, with optional fit
/// points.
///
/// With degree p, n control points and m knots the curve can be evaluated when p <= n - 1 and
/// n + p < m; a well-formed spline has m = n + p + 1. Evaluation is planar: z is not used. Any
/// data is safe to evaluate: knots that fall, repeat or are not numbers give some point, never an
/// access outside the vectors.
class DXFEDITOR_EXPORT DXFSpline : public DXFEntity {
public:
    /// @param degree  degree of the curve; one that is negative as a signed number cannot be
    ///                evaluated
    /// @param nKnots, nControl, nFit  ignored: the vectors grow as values are appended, and a
    ///                file's counts may be wrong
    /// @param flags   spline flags, stored only
    DXFSpline(unsigned degree, unsigned nKnots, unsigned nControl, unsigned nFit, int flags);

    int type() const override;
    /// Does nothing.
    void setup() override;
    DXFEntity* clone() const override;

    /// Appends a knot.
    void appendKnot(double knot) { m_knots.push_back(knot); }
    /// Appends a control point of weight w.
    void appendControlPoint(double x, double y, double z, double w);
    /// Appends a fit point.
    void appendFitPoint(double x, double y, double z);
    /// Gives back the memory that is there for knots and points to come.
    void shrinkToFit();

    /// Degree of the curve, as given.
    unsigned degree() const { return m_degree; }
    /// Spline flags, as given.
    int flags() const { return m_flags; }
    /// The knots, in file order; valid while the spline lives and is not changed.
    const std::vector<double>& knots() const { return m_knots; }
    /// The control points, in file order; valid as knots() is.
    const std::vector<DXFControlPoint>& controlPoints() const { return m_controlPoints; }
    /// The fit points, in file order; valid as knots() is.
    const std::vector<cv::Point3_<double>>& fitPoints() const { return m_fitPoints; }

    /// The curve's point at parameter t, by de Boor's algorithm on homogeneous coordinates.
    ///
    /// Below knots[p] the parameter counts as knots[p] (below both that and knots[n] as knots[n],
    /// where the knots fall); from knots[n] on, the last span is extrapolated. (0, 0) when the
    /// curve cannot be evaluated or the weight vanishes there. Costs p² steps.
    cv::Point_<double> evaluate(double t) const;

    /// The curve as a polyline: N + 1 points at equal steps of the parameter, both ends included,
    /// where N is the length of the control polygon divided by `step`, truncated, and at least 4.
    ///
    /// A quotient that is not a number or does not fit 32 bits counts as 0. A curve that cannot be
    /// evaluated gives its fit points instead.
    std::vector<cv::Point_<double>> sample(double step) const;

    /// Number of points that sample(step) returns, for callers that bound their work: what a file
    /// claims decides it.
    std::size_t sampleCount(double step) const;

private:
    friend class dxfeditor::SplineSamples;

    DXFEDITOR_HIDDEN bool isEvaluable() const;
    DXFEDITOR_HIDDEN int sampleSteps(double step) const;
    DXFEDITOR_HIDDEN double notBelowKnots(double t) const;
    DXFEDITOR_HIDDEN std::size_t findSpan(double t) const;
    DXFEDITOR_HIDDEN cv::Point_<double>
    evaluate(double t, std::vector<dxfeditor::HomogeneousPoint>& scratch) const;

    unsigned m_degree;
    int m_flags;
    std::vector<double> m_knots;
    std::vector<DXFControlPoint> m_controlPoints;
    std::vector<cv::Point3_<double>> m_fitPoints;
};
