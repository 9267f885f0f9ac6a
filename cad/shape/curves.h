// Curves as points along them, close enough for the eye.
#pragma once

#include <vector>

#include "cad/shape/primitive.h"

namespace cad::shape {

// From one angle to another (radians), counterclockwise when `to` is larger. Both ends are exact,
// and so are the quarters of a whole circle.
void addArc(Points& points, const AcGePoint3d& center, double radius, double from, double to);
// The arc of a bulge between two points, without the first one: bulge = tan(quarter of the angle).
void addBulge(Points& points, const AcGePoint3d& a, const AcGePoint3d& b, double bulge);
void addEllipse(Points& points, const AcGePoint3d& center, const AcGeVector3d& major, double ratio,
                const AcGeVector3d& normal, double from, double to);
// A B-spline by its control points; weights may be empty. Nothing for data that make no spline.
void addSpline(Points& points, int degree, const std::vector<double>& knots, const Points& controls,
               const std::vector<double>& weights);

}  // namespace cad::shape
