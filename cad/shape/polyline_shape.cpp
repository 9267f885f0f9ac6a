// Polylines of both kinds: with parts of their own, and light ones.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "cad/shape/curves.h"
#include "cad/shape/shape.h"

namespace cad::shape {

namespace {

// Flags of a polyline (group 70) and of its vertices.
constexpr int kClosed = 1, kSpace = 8, kMesh = 16, kClosedAcross = 32, kFaces = 64;
constexpr int kControl = 16, kCorner = 64;

using Faces = std::vector<std::array<std::int64_t, 4>>;

struct Parts {
  Points points;
  std::vector<double> bulges;
  Faces faces;
};

Parts readParts(const Drawing& drawing, std::uint32_t entity, bool faces) {
  Parts parts;
  TagList v;
  for (std::uint32_t part = drawing.structure().firstPart(entity); part;
       part = drawing.structure().nextPart(entity, part)) {
    drawing.parse(part, v);
    const TagRange own = v.body();
    const auto kind = v.integerOr(70, 0, own);
    if (faces && !(kind & kCorner)) {
      parts.faces.push_back({v.integerOr(71, 0, own), v.integerOr(72, 0, own),
                             v.integerOr(73, 0, own), v.integerOr(74, 0, own)});
      continue;
    }
    if (kind & kControl && !faces) continue;  // the curve's own points follow
    if (const int i = v.find(10, own); i >= 0) {
      parts.points.push_back(v.point(i));
      parts.bulges.push_back(v.realOr(42, 0, own));
    }
  }
  return parts;
}

Points withBulges(const Points& corners, const std::vector<double>& bulges, bool closed) {
  if (std::all_of(bulges.begin(), bulges.end(), [](double b) { return b == 0; })) return corners;
  Points points;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    if (i == 0) points.push_back(corners[0]);
    if (i + 1 < corners.size() || closed) {
      addBulge(points, corners[i], corners[(i + 1) % corners.size()], bulges[i]);
    }
  }
  return points;
}

void drawFaces(const Parts& parts, const Emit& emit) {
  for (const auto& face : parts.faces) {
    Points corners;
    for (const std::int64_t i : face) {
      const auto n = static_cast<std::size_t>(std::llabs(i));
      if (n >= 1 && n <= parts.points.size()) corners.push_back(parts.points[n - 1]);
    }
    if (corners.size() > 1) emitLine(std::move(corners), true, emit);
  }
}

void drawMesh(const Points& points, std::int64_t m, std::int64_t n, std::int64_t flags,
              const Emit& emit) {
  if (m < 1 || n < 1 || m > 0xFFFF || n > 0xFFFF ||
      static_cast<std::size_t>(m * n) > points.size()) {
    return;
  }
  const auto point = [&](std::int64_t i, std::int64_t j) {
    return points[static_cast<std::size_t>(i * n + j)];
  };
  for (std::int64_t i = 0; i < m; ++i) {
    Points row;
    for (std::int64_t j = 0; j < n; ++j) row.push_back(point(i, j));
    emitLine(std::move(row), flags & kClosedAcross, emit);
  }
  for (std::int64_t j = 0; j < n; ++j) {
    Points column;
    for (std::int64_t i = 0; i < m; ++i) column.push_back(point(i, j));
    emitLine(std::move(column), flags & kClosed, emit);
  }
}

// A light polyline of constant width: each stretch as a filled rectangle.
void drawWide(const Points& points, double width, double z, const AcGeMatrix3d& axes,
              const Emit& emit) {
  for (std::size_t i = 1; i < points.size(); ++i) {
    const AcGePoint3d &a = points[i - 1], &b = points[i];
    const double dx = b.x - a.x, dy = b.y - a.y, l = std::hypot(dx, dy);
    if (l == 0) continue;
    const double nx = -dy / l * width / 2, ny = dx / l * width / 2;
    emitFill({{{a.x + nx, a.y + ny, z},
               {b.x + nx, b.y + ny, z},
               {b.x - nx, b.y - ny, z},
               {a.x - nx, a.y - ny, z}}},
             emit, axes);
  }
}

}  // namespace

void drawPolyline(const Drawing& drawing, std::uint32_t entity, const TagList& t,
                  const Emit& emit) {
  const TagRange body = t.body();
  const auto flags = t.integerOr(70, 0, body);
  Parts parts = readParts(drawing, entity, flags & kFaces);
  if (flags & kFaces) return drawFaces(parts, emit);
  if (flags & kMesh) {
    return drawMesh(parts.points, t.integerOr(71, 0, body), t.integerOr(72, 0, body), flags, emit);
  }
  if (flags & kSpace) return emitLine(std::move(parts.points), flags & kClosed, emit);
  const AcGeMatrix3d axes = axesOf(t, body);
  const double z = t.realOr(30, 0, body);
  for (AcGePoint3d& p : parts.points) p.z = z;
  emitLine(withBulges(parts.points, parts.bulges, flags & kClosed), flags & kClosed, emit, &axes);
}

void drawLightPolyline(const TagList& t, const Emit& emit) {
  const TagRange body = t.subclass("AcDbPolyline");
  const AcGeMatrix3d axes = axesOf(t, body);
  const double z = t.realOr(38, 0, body), width = t.realOr(43, 0, body);
  const bool closed = t.integerOr(70, 0, body) & kClosed;
  Points corners;
  std::vector<double> bulges;
  for (int i = body.begin; i < body.end; ++i) {
    if (t[i].code == 10) {
      AcGePoint3d p = t.point(i);
      p.z = z;
      corners.push_back(p);
      bulges.push_back(0);
    } else if (t[i].code == 42 && !bulges.empty()) {
      bulges.back() = t.real(i);
    }
  }
  Points points = withBulges(corners, bulges, closed);
  if (width <= 0 || points.size() < 2) return emitLine(std::move(points), closed, emit, &axes);
  if (closed) points.push_back(points.front());
  drawWide(points, width, z, axes, emit);
}

}  // namespace cad::shape
