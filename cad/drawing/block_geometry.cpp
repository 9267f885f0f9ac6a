#include "cad/drawing/block_geometry.h"

#include <cmath>

namespace cad {
namespace {

constexpr double kDegree = 3.14159265358979323846 / 180;
}  // namespace

std::optional<AcGeMatrix3d> invert(const AcGeMatrix3d& m) {
  const auto& e = m.entry;
  const double det = e[0][0] * (e[1][1] * e[2][2] - e[1][2] * e[2][1]) -
                     e[0][1] * (e[1][0] * e[2][2] - e[1][2] * e[2][0]) +
                     e[0][2] * (e[1][0] * e[2][1] - e[1][1] * e[2][0]);
  AcGeMatrix3d r;
  if (det == 0 || !std::isfinite(det)) return std::nullopt;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const int a = (j + 1) % 3, b = (j + 2) % 3, c = (i + 1) % 3, d = (i + 2) % 3;
      r.entry[i][j] = (e[a][c] * e[b][d] - e[a][d] * e[b][c]) / det;
    }
  }
  for (int i = 0; i < 3; ++i) {
    r.entry[i][3] = -(r.entry[i][0] * e[0][3] + r.entry[i][1] * e[1][3] + r.entry[i][2] * e[2][3]);
  }
  return r;
}

AcGeMatrix3d insertTransform(const Drawing* d, const TagList& t, std::uint32_t blockId, double dx,
                             double dy) {
  const TagRange body = t.body();
  AcGeVector3d normal(0, 0, 1);
  if (const int i = t.find(210, body); i >= 0) {
    const AcGePoint3d n = t.point(i);
    normal = {n.x, n.y, n.z};
  }
  const int at = t.find(10, body);
  const AcGePoint3d p = at < 0 ? AcGePoint3d() : t.point(at);
  const double a = t.realOr(50, 0, body) * kDegree, c = std::cos(a), s = std::sin(a);
  const double sx = t.realOr(41, 1, body), sy = t.realOr(42, 1, body), sz = t.realOr(43, 1, body);
  AcGeMatrix3d m, base;
  m.entry[0][0] = c * sx;
  m.entry[0][1] = -s * sy;
  m.entry[1][0] = s * sx;
  m.entry[1][1] = c * sy;
  m.entry[2][2] = sz;
  m.entry[0][3] = p.x + c * dx - s * dy;
  m.entry[1][3] = p.y + s * dx + c * dy;
  m.entry[2][3] = p.z;
  if (const BlockInfo* info = d ? d->structure().block(blockId) : nullptr) {
    const AcGePoint3d b = blockOrigin(*d, *info);
    base.entry[0][3] = -b.x;
    base.entry[1][3] = -b.y;
    base.entry[2][3] = -b.z;
  }
  return acGeEntitySystem(normal) * m * base;
}

AcGePoint3d blockOrigin(const Drawing& drawing, const BlockInfo& block) {
  if (!block.begin) return {};
  const TextKey text = drawing.records().textKey(block.begin);
  if (block.originOf == text) return block.origin;
  const auto t = borrowTags();
  drawing.parse(block.begin, *t);
  const int i = t->find(10, t->body());
  block.origin = i < 0 ? AcGePoint3d() : t->point(i);
  block.originOf = text;
  return block.origin;
}

void transformAttributes(Drawing& drawing, std::uint32_t reference, const AcGeMatrix3d& world) {
  const auto t = borrowTags();
  for (std::uint32_t a = drawing.structure().firstPart(reference); a;
       a = drawing.structure().nextPart(reference, a)) {
    if (drawing.record(a).type != Type::attrib || drawing.record(a).is(Record::open)) continue;
    drawing.parse(a, *t);
    // The attribute's points are in its own system, which need not be the world's.
    AcGeVector3d normal(0, 0, 1);
    if (const int i = t->find(210, t->subclass("AcDbText")); i >= 0) {
      const AcGePoint3d n = t->point(i);
      normal = {n.x, n.y, n.z};
    }
    const AcGeMatrix3d axes = acGeEntitySystem(normal),
                       m = invert(axes).value_or(AcGeMatrix3d()) * world * axes;
    const double scale = AcGeVector3d(m.entry[0][1], m.entry[1][1], m.entry[2][1]).length();
    const double turn = std::atan2(m.entry[1][0], m.entry[0][0]) / kDegree;
    for (const int code : {10, 11}) {
      const TagRange text = t->subclass("AcDbText");
      const int i = t->find(code, text);
      if (i < 0) continue;
      const AcGePoint3d p = m * t->point(i);
      t->putPoint(code, p, text);
    }
    if (scale > 0 && std::fabs(scale - 1) > 1e-12) {
      t->putReal(40, t->realOr(40, 1, t->subclass("AcDbText")) * scale, t->subclass("AcDbText"));
    }
    if (std::fabs(turn) > 1e-9) {
      t->putReal(50, t->realOr(50, 0, t->subclass("AcDbText")) + turn, t->subclass("AcDbText"));
    }
    drawing.writer().rewrite(a, *t);
  }
}

}  // namespace cad
