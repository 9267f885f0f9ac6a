#include "cad/drawing/extents.h"

#include <algorithm>
#include <cmath>

namespace cad {
namespace {

constexpr double kDegree = 3.14159265358979323846 / 180;
// A walk through nested blocks. A file may hold a block inside itself, or blocks that multiply on
// every level: such a walk ends after so many references.
struct Walk {
  std::vector<std::uint32_t> path;  // the blocks that are being walked through
  int left = 100000;
  bool mayEnter(std::uint32_t block) {
    return left-- > 0 && std::find(path.begin(), path.end(), block) == path.end();
  }
};

AcGeMatrix3d inverse(const AcGeMatrix3d& m) {
  const auto& e = m.entry;
  const double det = e[0][0] * (e[1][1] * e[2][2] - e[1][2] * e[2][1]) -
                     e[0][1] * (e[1][0] * e[2][2] - e[1][2] * e[2][0]) +
                     e[0][2] * (e[1][0] * e[2][1] - e[1][1] * e[2][0]);
  AcGeMatrix3d r;
  if (det == 0) return r;
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

AcGeMatrix3d insertTransform(const Drawing& d, const TagList& t, std::uint32_t blockId) {
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
  m.entry[0][3] = p.x;
  m.entry[1][3] = p.y;
  m.entry[2][3] = p.z;
  if (const BlockInfo* info = d.block(blockId)) {
    const AcGePoint3d b = blockOrigin(d, *info);
    base.entry[0][3] = -b.x;
    base.entry[1][3] = -b.y;
    base.entry[2][3] = -b.z;
  }
  return acGeEntitySystem(normal) * m * base;
}

void addEntity(const Drawing& d, std::uint32_t entity, const AcGeMatrix3d& m, Walk& walk,
               AcDbExtents& box);

void addBox(AcDbExtents& box, const AcGeMatrix3d& m, const AcGePoint3d& c, double rx, double ry) {
  for (int i = 0; i < 4; ++i) {
    box.addPoint(m * AcGePoint3d(c.x + (i & 1 ? rx : -rx), c.y + (i & 2 ? ry : -ry), c.z));
  }
}

void addText(const TagList& t, const AcGeMatrix3d& m, AcDbExtents& box) {
  const TagRange body = t.body();
  const int at = t.find(10, body);
  if (at < 0) return;
  const AcGePoint3d p = t.point(at);
  const double h = t.realOr(40, 1, body), a = t.realOr(50, 0, body) * kDegree;
  const double w = 0.8 * h * static_cast<double>(t.textOr(1, u"", body).size());
  const double c = std::cos(a), s = std::sin(a);
  for (const auto& [x, y] : {std::pair{0.0, 0.0}, {w, 0.0}, {w, h}, {0.0, h}}) {
    box.addPoint(m * AcGePoint3d(p.x + c * x - s * y, p.y + s * x + c * y, p.z));
  }
}

void addParts(const Drawing& d, std::uint32_t entity, const AcGeMatrix3d& m, AcDbExtents& box) {
  auto t = borrowTags();
  for (std::uint32_t v = d.firstPart(entity); v; v = d.nextPart(entity, v)) {
    d.parse(v, *t);
    if (d.record(v).type == Type::attrib) {
      if (!(t->integerOr(70, 0, t->subclass("AcDbAttribute")) & 1)) addText(*t, m, box);
      continue;
    }
    if (const int i = t->find(10); i >= 0) box.addPoint(m * t->point(i));
  }
  returnTags(std::move(t));
}

void addInsert(const Drawing& d, std::uint32_t entity, const TagList& t, const AcGeMatrix3d& m,
               Walk& walk, AcDbExtents& box) {
  const std::uint32_t id = d.blockByName(d.record(entity).name);
  AcDbExtents inside;
  if (id && walk.mayEnter(id)) {
    walk.path.push_back(id);
    const AcGeMatrix3d inner = m * insertTransform(d, t, id);
    for (std::uint32_t e = d.firstEntity(id); e; e = d.nextEntity(id, e)) {
      if (d.record(e).type != Type::attdef) addEntity(d, e, inner, walk, inside);
    }
    walk.path.pop_back();
  }
  if (inside.isEmpty()) {
    if (const int i = t.find(10, t.body()); i >= 0) inside.addPoint(m * t.point(i));
  }
  box.addExt(inside);
  addParts(d, entity, m, box);
}

void addEntity(const Drawing& d, std::uint32_t entity, const AcGeMatrix3d& m, Walk& walk,
               AcDbExtents& box) {
  auto held = borrowTags();
  TagList& t = *held;
  d.parse(entity, t);
  const TagRange body = t.body();
  const Record& r = d.record(entity);
  switch (r.type) {
    case Type::polyline:
      addParts(d, entity, m, box);
      break;
    case Type::insert:
      addInsert(d, entity, t, m, walk, box);
      break;
    case Type::text:
    case Type::attdef:
    case Type::mtext:
      addText(t, m, box);
      break;
    case Type::circle:
    case Type::arc: {
      const int i = t.find(10, body);
      const double radius = t.realOr(40, 0, body);
      if (i >= 0) addBox(box, m, t.point(i), radius, radius);
      break;
    }
    case Type::ellipse: {
      const int i = t.find(10, body), j = t.find(11, body);
      if (i < 0 || j < 0) break;
      const AcGePoint3d axis = t.point(j);
      const double radius = AcGeVector3d(axis.x, axis.y, axis.z).length();
      addBox(box, m, t.point(i), radius, radius);
      break;
    }
    case Type::acadTable: {
      const int i = t.find(10, body);
      if (i < 0) break;
      const AcGePoint3d p = t.point(i);
      double w = 0, h = 0;
      for (int k = body.begin; k < body.end; ++k) {
        if (t[k].code == 142) w += t.real(k);
        if (t[k].code == 141) h += t.real(k);
      }
      box.addPoint(m * p);
      box.addPoint(m * AcGePoint3d(p.x + w, p.y - h, p.z));
      break;
    }
    case Type::line:
    case Type::point:
    case Type::solid:
    case Type::trace:
    case Type::face:
    case Type::lwpolyline:
    case Type::spline:
    case Type::hatch:
    case Type::leader:
    case Type::dimension:
      for (int i = body.begin; i < body.end; ++i) {
        if (t[i].code >= 10 && t[i].code <= 13 && !(r.type == Type::hatch && t[i].code != 10)) {
          box.addPoint(m * t.point(i));
        }
      }
      break;
    default:
      break;
  }
  returnTags(std::move(held));
}

}  // namespace

AcDbExtents extentsOf(const Drawing& drawing, std::uint32_t entity) {
  AcDbExtents box;
  Walk walk;
  addEntity(drawing, entity, AcGeMatrix3d(), walk, box);
  return box;
}

AcGePoint3d blockOrigin(const Drawing& drawing, const BlockInfo& block) {
  if (!block.begin) return {};
  const char* text = drawing.record(block.begin).bytes;
  if (block.originOf == text) return block.origin;
  auto t = borrowTags();
  drawing.parse(block.begin, *t);
  const int i = t->find(10, t->body());
  block.origin = i < 0 ? AcGePoint3d() : t->point(i);
  block.originOf = text;
  returnTags(std::move(t));
  return block.origin;
}

void transformAttributes(Drawing& drawing, std::uint32_t reference, const AcGeMatrix3d& before,
                         const AcGeMatrix3d& after) {
  const AcGeMatrix3d world = after * inverse(before);
  auto t = borrowTags();
  for (std::uint32_t a = drawing.firstPart(reference); a; a = drawing.nextPart(reference, a)) {
    if (drawing.record(a).type != Type::attrib || drawing.record(a).is(Record::open)) continue;
    drawing.parse(a, *t);
    // The attribute's points are in its own system, which need not be the world's.
    AcGeVector3d normal(0, 0, 1);
    if (const int i = t->find(210, t->subclass("AcDbText")); i >= 0) {
      const AcGePoint3d n = t->point(i);
      normal = {n.x, n.y, n.z};
    }
    const AcGeMatrix3d axes = acGeEntitySystem(normal), m = inverse(axes) * world * axes;
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
    drawing.rewrite(a, *t);
  }
  returnTags(std::move(t));
}

}  // namespace cad
