#include "cad/shape/shape.h"

#include <utility>

#include "cad/shape/curves.h"
#include "cad/shape/hatch.h"

namespace cad::shape {

namespace {

constexpr double kPi = 3.14159265358979323846;

AcGePoint3d pointAt(const TagList& t, TagRange body, int code) {
  const int i = t.find(code, body);
  return i < 0 ? AcGePoint3d() : t.point(i);
}

void drawEndless(const TagList& t, TagRange body, bool bothWays, const Emit& emit) {
  // Endless lines end far outside of what is drawn; the painter's window cuts them.
  const AcGePoint3d p = pointAt(t, body, 10), d = pointAt(t, body, 11);
  const AcGeVector3d way = AcGeVector3d(d.x, d.y, d.z) * 1e4;
  emitLine({bothWays ? p + way * -1 : p, p + way}, false, [&](Primitive&& line) {
    line.endless = true;
    emit(std::move(line));
  });
}

void drawArc(const TagList& t, TagRange body, bool circle, const Emit& emit) {
  const AcGeMatrix3d axes = axesOf(t, body);
  const double from = circle ? 0 : t.realOr(50, 0, body) * kPi / 180;
  double to = circle ? 2 * kPi : t.realOr(51, 360, body) * kPi / 180;
  if (to <= from) to += 2 * kPi;
  Points points;
  addArc(points, pointAt(t, body, 10), t.realOr(40, 0, body), from, to);
  emitLine(std::move(points), circle, emit, &axes);
}

void drawEllipse(const TagList& t, TagRange body, const Emit& emit) {
  const AcGePoint3d axis = pointAt(t, body, 11), n = pointAt(t, body, 210);
  const AcGeVector3d normal =
      n.x == 0 && n.y == 0 && n.z == 0 ? AcGeVector3d(0, 0, 1) : AcGeVector3d(n.x, n.y, n.z);
  Points points;
  addEllipse(points, pointAt(t, body, 10), {axis.x, axis.y, axis.z}, t.realOr(40, 1, body), normal,
             t.realOr(41, 0, body), t.realOr(42, 2 * kPi, body));
  emitLine(std::move(points), false, emit);
}

void drawSpline(const TagList& t, const Emit& emit) {
  const TagRange body = t.subclass("AcDbSpline");
  std::vector<double> knots, weights;
  Points controls, fits, points;
  for (int i = body.begin; i < body.end; ++i) {
    if (t[i].code == 40) knots.push_back(t.real(i));
    if (t[i].code == 41) weights.push_back(t.real(i));
    if (t[i].code == 10) controls.push_back(t.point(i));
    if (t[i].code == 11) fits.push_back(t.point(i));
  }
  addSpline(points, static_cast<int>(t.integerOr(71, 3, body)), knots, controls, weights);
  if (points.empty()) points = fits.empty() ? controls : fits;
  emitLine(std::move(points), false, emit);
}

// The third and fourth corner of a filled shape stand crosswise; a missing fourth is the third.
void drawCorners(const TagList& t, TagRange body, bool filled, const Emit& emit) {
  const AcGePoint3d a = pointAt(t, body, 10), b = pointAt(t, body, 11), c = pointAt(t, body, 12);
  const AcGePoint3d d = t.find(13, body) < 0 ? c : pointAt(t, body, 13);
  if (filled) {
    emitFill({{a, b, d, c}}, emit, axesOf(t, body));
  } else {
    emitLine({a, b, c, d}, true, emit);
  }
}

void drawHatch(const TagList& t, TagRange body, const Emit& emit) {
  const AcGeMatrix3d axes = axesOf(t, body);
  Loops loops, lines;
  readHatch(t, loops, lines);
  if (t.integerOr(70, 1, t.subclass("AcDbHatch")) == 1) return emitFill(loops, emit, axes);
  for (Points& line : lines) emitLine(std::move(line), false, emit, &axes);
  if (!lines.empty()) return;
  for (Points& loop : loops) emitLine(std::move(loop), true, emit, &axes);
}

void drawLeader(const TagList& t, TagRange body, const Emit& emit) {
  Points points;
  for (int i = body.begin; i < body.end; ++i) {
    if (t[i].code == 10) points.push_back(t.point(i));
  }
  emitLine(std::move(points), false, emit);
}

}  // namespace

AcGeMatrix3d axesOf(const TagList& t, TagRange body) {
  const int i = t.find(210, body);
  if (i < 0) return {};
  const AcGePoint3d n = t.point(i);
  if (n.x == 0 && n.y == 0 && n.z > 0) return {};
  return acGeEntitySystem({n.x, n.y, n.z});
}

void emitLine(Points points, bool closed, const Emit& emit, const AcGeMatrix3d* axes) {
  if (points.empty()) return;
  Primitive p;
  p.kind = points.size() == 1 ? Kind::dot : Kind::line;
  p.closed = closed;
  if (axes) {
    for (AcGePoint3d& q : points) q = *axes * q;
  }
  p.points = std::move(points);
  emit(std::move(p));
}

void emitFill(const Loops& loops, const Emit& emit, const AcGeMatrix3d& axes) {
  Primitive p;
  p.kind = Kind::fill;
  for (const Points& loop : loops) {
    p.loops.push_back(static_cast<std::uint32_t>(loop.size()));
    for (const AcGePoint3d& q : loop) p.points.push_back(axes * q);
  }
  if (!p.points.empty()) emit(std::move(p));
}

bool drawShape(const Drawing& drawing, std::uint32_t entity, const TagList& t, const Emit& emit) {
  const TagRange body = t.body();
  const Type type = drawing.record(entity).type;
  switch (type) {
    case Type::line:
      emitLine({pointAt(t, body, 10), pointAt(t, body, 11)}, false, emit);
      return true;
    case Type::point:
      emitLine({pointAt(t, body, 10)}, false, emit);
      return true;
    case Type::ray:
    case Type::xline:
      drawEndless(t, body, type == Type::xline, emit);
      return true;
    case Type::polyline:
      drawPolyline(drawing, entity, t, emit);
      return true;
    case Type::lwpolyline:
      drawLightPolyline(t, emit);
      return true;
    case Type::circle:
    case Type::arc:
      drawArc(t, body, type == Type::circle, emit);
      return true;
    case Type::ellipse:
      drawEllipse(t, body, emit);
      return true;
    case Type::spline:
      drawSpline(t, emit);
      return true;
    case Type::solid:
    case Type::trace:
      drawCorners(t, body, true, emit);
      return true;
    case Type::face:
      drawCorners(t, body, false, emit);
      return true;
    case Type::hatch:
      drawHatch(t, body, emit);
      return true;
    case Type::leader:
      drawLeader(t, body, emit);
      return true;
    case Type::multileader:
      drawMultileader(t, emit);
      return true;
    case Type::text:
    case Type::attrib:
      drawText(drawing, t, type == Type::attrib, emit);
      return true;
    case Type::mtext:
      drawMultilineText(t, emit);
      return true;
    case Type::insert:
    case Type::acadTable:
    case Type::dimension:
      return true;  // what they show is in their blocks
    case Type::attdef:
    case Type::seqend:
    case Type::viewport:
      return true;  // nothing to be seen
    default:
      return false;
  }
}

}  // namespace cad::shape
