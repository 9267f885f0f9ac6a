// Curves as points along them.
#pragma once

#include <string>
#include <vector>

#include "cad/api/ge.h"
#include "cad/dxf/tags.h"

namespace cad::view {

using Points = std::vector<AcGePoint3d>;

// From one angle to another (radians), counterclockwise when `to` is larger. Both ends are exact.
void addArc(Points& points, const AcGePoint3d& center, double radius, double from, double to);
// The arc of a bulge between two points, without the first one: bulge = tan(quarter of the angle).
void addBulge(Points& points, const AcGePoint3d& a, const AcGePoint3d& b, double bulge);
void addEllipse(Points& points, const AcGePoint3d& center, const AcGeVector3d& major, double ratio,
                const AcGeVector3d& normal, double from, double to);
// A B-spline by its control points; weights may be empty. Nothing for data that make no spline.
void addSpline(Points& points, int degree, const std::vector<double>& knots, const Points& controls,
               const std::vector<double>& weights);

// One loop of a hatch or another closed shape.
using Loops = std::vector<Points>;
// The boundary of a hatch, in its own plane, and the lines of its pattern (none for a solid one).
void readHatch(const TagList& tags, Loops& loops, Loops& patternLines);

// The lines of a multi-line text without its formatting codes.
std::vector<std::u16string> plainLines(std::u16string_view formatted);
// A single line text: %%c, %%d, %%p and the like.
std::u16string plainText(std::u16string_view text);

}  // namespace cad::view
