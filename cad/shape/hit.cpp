#include "cad/shape/hit.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "cad/shape/extents.h"
#include "cad/shape/reference.h"

namespace cad::shape {

namespace {

double toSegment(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& b) {
  const double dx = b.x - a.x, dy = b.y - a.y, l = dx * dx + dy * dy;
  double f = l > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / l : 0;
  f = std::fmin(1, std::fmax(0, f));
  return std::hypot(p.x - a.x - f * dx, p.y - a.y - f * dy);
}

double toBox(const AcGePoint3d& p, const AcDbExtents& box) {
  const double dx = std::fmax(0, std::fmax(box.minPoint().x - p.x, p.x - box.maxPoint().x));
  const double dy = std::fmax(0, std::fmax(box.minPoint().y - p.y, p.y - box.maxPoint().y));
  return std::hypot(dx, dy);
}

// The outline of a primitive as loops, and whether what they enclose belongs to it.
struct Outline {
  Loops loops;
  bool closed = false, filled = false;
};

Outline outlineOf(const Primitive& p) {
  if (p.kind == Kind::text) return {{textCorners(p)}, true, true};
  if (p.kind != Kind::fill) return {{p.points}, p.closed, false};
  Outline o{{}, true, true};
  auto at = p.points.begin();
  for (const std::uint32_t n : p.loops) {
    o.loops.emplace_back(at, at + n);
    at += n;
  }
  return o;
}

// Calls visit(a, b) for each stretch; a single point is a stretch to itself.
template <class Visit>
void forEachStretch(const Outline& outline, Visit&& visit) {
  for (const Points& loop : outline.loops) {
    if (loop.size() == 1) visit(loop[0], loop[0]);
    for (std::size_t i = 1; i < loop.size(); ++i) visit(loop[i - 1], loop[i]);
    if (outline.closed && loop.size() > 2) visit(loop.back(), loop.front());
  }
}

// By the even-odd rule, so that islands in a fill are outside.
bool encloses(const Outline& outline, double x, double y) {
  bool inside = false;
  forEachStretch(outline, [&](const AcGePoint3d& a, const AcGePoint3d& b) {
    if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) inside = !inside;
  });
  return outline.filled && inside;
}

// The stretch has a point in the window: what of it lies beyond each border is cut off in turn.
bool stretchTouches(const AcGePoint3d& a, const AcGePoint3d& b, const PlanWindow& w) {
  double from = 0, to = 1;
  const auto cut = [&](double start, double way, double low, double high) {
    if (way == 0) return start >= low && start <= high;
    const double one = (low - start) / way, other = (high - start) / way;
    from = std::max(from, std::min(one, other));
    to = std::min(to, std::max(one, other));
    return from <= to;
  };
  return cut(a.x, b.x - a.x, w.x1, w.x2) && cut(a.y, b.y - a.y, w.y1, w.y2);
}

}  // namespace

PlanWindow::PlanWindow(const AcGePoint3d& a, const AcGePoint3d& b)
    : x1(std::min(a.x, b.x)),
      y1(std::min(a.y, b.y)),
      x2(std::max(a.x, b.x)),
      y2(std::max(a.y, b.y)) {}

double planDistance(const Drawing& drawing, std::uint32_t entity, const AcGePoint3d& p) {
  double best = std::numeric_limits<double>::infinity();
  if (drawing.record(entity).type == Type::insert) {
    TagList t;
    drawing.parse(entity, t);
    if (const int i = t.find(10, t.body()); i >= 0) {
      const AcGePoint3d at = axesOf(t, t.body()) * t.point(i);
      best = std::hypot(at.x - p.x, at.y - p.y);
    }
    const AcDbExtents box = extentsOf(drawing, entity);
    if (!box.isEmpty()) best = std::fmin(best, toBox(p, box) + 1e-6);
    return best;
  }
  expand(drawing, entity, Arrays::whole, [&](Primitive&& primitive) {
    const Outline outline = outlineOf(primitive);
    if (encloses(outline, p.x, p.y)) best = 0;
    forEachStretch(outline, [&](const AcGePoint3d& a, const AcGePoint3d& b) {
      best = std::fmin(best, toSegment(p, a, b));
    });
  });
  return best;
}

bool liesInside(const Drawing& drawing, std::uint32_t entity, const PlanWindow& w) {
  const AcDbExtents box = extentsOf(drawing, entity);
  return !box.isEmpty() && box.minPoint().x >= w.x1 && box.maxPoint().x <= w.x2 &&
         box.minPoint().y >= w.y1 && box.maxPoint().y <= w.y2;
}

bool touches(const Drawing& drawing, std::uint32_t entity, const PlanWindow& w) {
  const AcDbExtents box = extentsOf(drawing, entity);
  if (!box.isEmpty() && (box.minPoint().x > w.x2 || box.maxPoint().x < w.x1 ||
                         box.minPoint().y > w.y2 || box.maxPoint().y < w.y1)) {
    return false;
  }
  bool hit = false;
  bool drawn = false;
  expand(drawing, entity, Arrays::whole, [&](Primitive&& primitive) {
    drawn = true;
    if (hit) return;
    const Outline outline = outlineOf(primitive);
    forEachStretch(outline, [&](const AcGePoint3d& a, const AcGePoint3d& b) {
      hit = hit || stretchTouches(a, b, w);
    });
    hit = hit || encloses(outline, w.x1, w.y1);
  });
  // A reference whose block draws nothing is its point.
  return hit || (!drawn && !box.isEmpty());
}

}  // namespace cad::shape
