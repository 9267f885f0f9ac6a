// What a point or a window meets, seen from above.
#pragma once

#include "cad/api/ge.h"
#include "cad/drawing/drawing.h"

namespace cad::shape {

// Distance in plan from a point to what an entity draws; infinite where it draws nothing. Within a
// filled area, a text, or the box of a block reference it is 0, or next to it: a reference's own
// point is always nearer than its box.
double planDistance(const Drawing& drawing, std::uint32_t entity, const AcGePoint3d& point);

// A window in plan, corners in any order.
struct PlanWindow {
  PlanWindow(const AcGePoint3d& a, const AcGePoint3d& b);
  double x1, y1, x2, y2;
};
// Everything that the entity draws lies in the window (borders count).
bool liesInside(const Drawing& drawing, std::uint32_t entity, const PlanWindow& window);
// Something that it draws lies in the window or crosses its border; a box that overlaps is not
// enough.
bool touches(const Drawing& drawing, std::uint32_t entity, const PlanWindow& window);

}  // namespace cad::shape
