#include "cad/editor/transform.h"

#include <cmath>
#include <utility>
#include <vector>

#include "cad/drawing/block_geometry.h"

namespace cad {
namespace {

constexpr double kDegree = 3.14159265358979323846 / 180;
constexpr double kFarthest = 1e100;  // what lies beyond is a mistake

// What a tag says of an entity's geometry. Points and vectors are of the world, or of the entity's
// own plane (group 210); directions have no length of their own.
enum class What { point, planePoint, vector, direction, length, angle };
struct Row {
  Type type;
  int code;
  What what;
  double fallback = 0;  // of a length that is left out
};

constexpr Row kRows[] = {
    {Type::line, 10, What::point},
    {Type::line, 11, What::point},
    {Type::point, 10, What::point},
    {Type::circle, 10, What::planePoint},
    {Type::circle, 40, What::length},
    {Type::arc, 10, What::planePoint},
    {Type::arc, 40, What::length},
    {Type::arc, 50, What::angle},
    {Type::arc, 51, What::angle},
    {Type::ellipse, 10, What::point},
    {Type::ellipse, 11, What::vector},
    {Type::spline, 10, What::point},
    {Type::spline, 11, What::point},
    {Type::spline, 12, What::vector},
    {Type::spline, 13, What::vector},
    {Type::text, 10, What::planePoint},
    {Type::text, 11, What::planePoint},
    {Type::text, 40, What::length},
    {Type::text, 50, What::angle},
    {Type::mtext, 10, What::point},
    {Type::mtext, 11, What::direction},
    {Type::mtext, 40, What::length},
    {Type::mtext, 41, What::length},
    {Type::mtext, 42, What::length},
    {Type::mtext, 43, What::length},
    {Type::mtext, 50, What::angle},
    {Type::lwpolyline, 10, What::planePoint},
    {Type::lwpolyline, 40, What::length},
    {Type::lwpolyline, 41, What::length},
    {Type::lwpolyline, 43, What::length},
    {Type::polyline, 10, What::planePoint},
    {Type::polyline, 40, What::length},
    {Type::polyline, 41, What::length},
    {Type::vertex, 10, What::planePoint},
    {Type::vertex, 40, What::length},
    {Type::vertex, 41, What::length},
    {Type::vertex, 50, What::angle},
    {Type::insert, 10, What::planePoint},
    {Type::insert, 41, What::length, 1},
    {Type::insert, 42, What::length, 1},
    {Type::insert, 43, What::length, 1},
    {Type::insert, 44, What::length},
    {Type::insert, 45, What::length},
    {Type::insert, 50, What::angle},
    {Type::solid, 10, What::planePoint},
    {Type::solid, 11, What::planePoint},
    {Type::solid, 12, What::planePoint},
    {Type::solid, 13, What::planePoint},
    {Type::face, 10, What::point},
    {Type::face, 11, What::point},
    {Type::face, 12, What::point},
    {Type::face, 13, What::point},
    {Type::ray, 10, What::point},
    {Type::ray, 11, What::direction},
    {Type::leader, 10, What::point},
    {Type::leader, 40, What::length},
    {Type::leader, 41, What::length},
    {Type::leader, 211, What::direction},
    {Type::leader, 212, What::vector},
    {Type::leader, 213, What::vector},
    {Type::acadTable, 10, What::point},
};

// Kinds that are stored as another one is.
Type formOf(Type type) {
  switch (type) {
    case Type::attrib:
      return Type::text;
    case Type::trace:
      return Type::solid;
    case Type::xline:
      return Type::ray;
    default:
      return type;
  }
}

const Row* rowOf(Type form, int code) {
  for (const Row& row : kRows) {
    if (row.type == form && row.code == code) return &row;
  }
  return nullptr;
}
bool isKnown(Type type) {
  for (const Row& row : kRows) {
    if (row.type == formOf(type)) return true;
  }
  return false;
}

AcGeVector3d normalOf(const TagList& t) {
  const int i = t.find(210, t.body());
  const AcGePoint3d n = i < 0 ? AcGePoint3d(0, 0, 1) : t.point(i);
  return {n.x, n.y, n.z};
}

// How a plane's own coordinates change when the plane goes along.
struct PlaneChange {
  PlaneChange(const Similarity& how, const AcGeVector3d& normal) {
    const AcGeVector3d turned = (how.matrix * normal).normal();
    const auto back = invert(acGeEntitySystem(turned));
    matrix = (back ? *back : AcGeMatrix3d()) * how.matrix * acGeEntitySystem(normal);
    // Seen from below, what turns to the left turns to the right.
    turn = how.turn == 0 ? 0 : std::atan2(matrix.entry[1][0], matrix.entry[0][0]) / kDegree;
  }
  AcGeMatrix3d matrix;
  double turn;
};

// Puts a point where one begins: axes that are left out are zero, and stay out when they stay so.
void putPointAt(TagList& t, int i, const AcGePoint3d& p, bool flat) {
  const int code = t[i].code;
  const double axis[] = {p.x, p.y, p.z};
  for (int k = 0; k < (flat ? 2 : 3); ++k) {
    if (i + k < t.size() && t[i + k].code == code + 10 * k) {
      if (t.real(i + k) != axis[k]) t.setReal(i + k, axis[k]);
    } else if (axis[k] != 0) {
      t.insertReal(i + k, code + 10 * k, axis[k]);
    } else {
      return;
    }
  }
}

double turned(double angle, double by) {
  const double sum = std::fmod(angle + by, 360);
  return sum < 0 ? sum + 360 : sum;
}

class TagChange {
 public:
  TagChange(const Similarity& how, const AcGeVector3d& normal)
      : how_(how), plane_(how, normal), normal_(normal) {}

  // `worldVertices`: of a polyline in space or a mesh, whose vertices lie in no plane. False when
  // something would come to lie where no number reaches.
  bool apply(TagList& t, Type type, bool worldVertices) const {
    const Type form = formOf(type);
    const std::string_view own = form == Type::text        ? "AcDbText"
                                 : form == Type::acadTable ? "AcDbBlockReference"
                                                           : "";
    const auto range = [&] { return own.empty() ? t.body() : t.subclass(own); };
    const double elevation = form == Type::lwpolyline ? t.realOr(38, 0, t.body()) : 0;
    bool hasAngle = false, hasDirection = false;
    finite_ = true;
    for (int i = range().begin; i < range().end; ++i) {
      const Row* const row = rowOf(form, t[i].code);
      if (!row) continue;
      hasAngle = hasAngle || row->what == What::angle;
      hasDirection = hasDirection || row->what == What::direction;
      const bool world = worldVertices && row->what == What::planePoint;
      change(t, i, world ? What::point : row->what, form == Type::lwpolyline, elevation);
    }
    missing(t, form, range(), hasAngle || hasDirection);
    if (form == Type::lwpolyline) putElevation(t, elevation);
    if (const int i = t.find(39, t.body()); i >= 0 && how_.scale != 1) {
      t.setReal(i, t.real(i) * how_.scale);
    }
    if (const int i = t.find(210, t.body()); i >= 0 && how_.turn != 0) putNormal(t, i);
    return finite_;
  }

 private:
  void change(TagList& t, int i, What what, bool flat, double elevation) const {
    const AcGePoint3d p = t.point(i);
    const AcGeVector3d v(p.x, p.y, p.z);
    switch (what) {
      case What::point:
        return put(t, i, how_.matrix * p, false);
      case What::planePoint:
        return put(t, i, plane_.matrix * (flat ? AcGePoint3d(p.x, p.y, elevation) : p), flat);
      case What::vector:
      case What::direction: {
        if (how_.onlyMoves()) return;
        const AcGeVector3d w = how_.matrix * v * (what == What::direction ? 1 / how_.scale : 1.0);
        return put(t, i, {w.x, w.y, w.z}, false);
      }
      case What::length:
        if (how_.scale != 1) t.setReal(i, t.real(i) * how_.scale);
        finite_ = finite_ && t.real(i) * how_.scale < kFarthest;
        return;
      case What::angle:
        if (plane_.turn != 0) t.setReal(i, turned(t.real(i), plane_.turn));
        return;
    }
  }

  void put(TagList& t, int i, const AcGePoint3d& p, bool flat) const {
    for (const double v : {p.x, p.y, p.z}) finite_ = finite_ && std::fabs(v) < kFarthest;
    if (finite_) putPointAt(t, i, p, flat);
  }

  // What is left out is said when it is no longer the usual.
  void missing(TagList& t, Type form, TagRange range, bool hasAngle) const {
    for (const Row& row : kRows) {
      if (row.type != form || row.fallback == 0 || how_.scale == 1) continue;
      if (t.find(row.code, range) < 0) {
        t.insertReal(range.end++, row.code, row.fallback * how_.scale);
      }
    }
    const bool turns = form == Type::text || form == Type::insert || form == Type::mtext;
    if (turns && !hasAngle && plane_.turn != 0) {
      t.insertReal(range.end, 50, turned(0, plane_.turn));
    }
  }

  void putElevation(TagList& t, double before) const {
    const double z = (plane_.matrix * AcGePoint3d(0, 0, before)).z;
    const int i = t.find(38, t.body()), first = t.find(10, t.body());
    if (z == before || first < 0) return;
    i >= 0 ? t.setReal(i, z) : t.insertReal(first, 38, z);
  }

  void putNormal(TagList& t, int i) const {
    const AcGeVector3d n = (how_.matrix * normal_).normal();
    if (n.x != 0 || n.y != 0) putPointAt(t, i, {n.x, n.y, n.z}, false);
  }

  const Similarity& how_;
  const PlaneChange plane_;
  const AcGeVector3d normal_;
  mutable bool finite_ = true;
};

struct Piece {
  std::uint32_t record = 0;
  BorrowedTags tags;
};

// The changed tags of an entity and its parts; empty when they cannot be changed so.
std::vector<Piece> changed(const Drawing& d, std::uint32_t entity, const Similarity& how) {
  std::vector<Piece> pieces;
  const Type type = d.record(entity).type;
  if (!isKnown(type) || type == Type::vertex || type == Type::attrib ||
      (type == Type::acadTable && !how.onlyMoves())) {
    return pieces;
  }
  const auto add = [&](std::uint32_t record) -> TagList& {
    pieces.push_back({record, borrowTags()});
    d.parse(record, *pieces.back().tags);
    return *pieces.back().tags;
  };
  TagList& own = add(entity);
  // Meshes and polylines in space have their vertices in the world.
  const std::int64_t flags = type == Type::polyline ? own.integerOr(70, 0, own.body()) : 0;
  const bool world = flags & (8 | 16 | 64);
  const TagChange change(how, normalOf(own));
  // An object within an entity, as newer texts have it, would have to go along.
  const auto holds = [](const TagList& t) { return t.find(101, t.body()) >= 0; };
  if (holds(own)) return {};
  if (!change.apply(own, type, world)) return {};
  for (std::uint32_t p = d.record(entity).next;
       p && d.record(p).is(Record::child) && d.record(p).owner == entity; p = d.record(p).next) {
    if (d.record(p).is(Record::erased)) continue;
    TagList& part = add(p);
    const Type kind = d.record(p).type;
    if (kind == Type::seqend) continue;
    if ((kind != Type::vertex && kind != Type::attrib) || holds(part)) return {};
    const bool face =
        kind == Type::vertex && (part.integerOr(70, 0, part.body()) & (128 | 64)) == 128;
    if (face) continue;  // names vertices, and lies nowhere
    const bool done = kind == Type::attrib ? TagChange(how, normalOf(part)).apply(part, kind, false)
                                           : change.apply(part, kind, world);
    if (!done) return {};
  }
  return pieces;
}

// Ties that are the original's alone: its handle, who watches it, its own dictionary.
void dropTies(TagList& t) {
  for (int i = t.xdataBegin() - 1; i > 0; --i) {
    const int code = t[i].code;
    if (code == 102 && t[i].size > 0 && t[i].value[0] != '{') {
      int begin = i;
      while (begin > 0 && (t[begin].code != 102 || t[begin].value[0] != '{')) --begin;
      if (begin == 0) continue;
      t.erase(begin, i + 1);
      i = begin;
    } else if (code == 5 || code == 67 || (code >= 330 && code <= 339) ||
               (code >= 350 && code <= 369) || (code == 340 && t.is(0, "LEADER"))) {
      t.erase(i, i + 1);
    }
  }
}

// The list of its references that a block may keep is no longer whole.
void dropReferenceList(Drawing& d, std::uint32_t blockName) {
  const std::uint32_t block = d.structure().blockByName(blockName);
  if (!block || d.record(block).type != Type::blockRecord ||
      d.record(block).is(Record::synthetic)) {
    return;
  }
  const auto tags = borrowTags();
  d.parse(block, *tags);
  const TagRange list = tags->group("BLKREFS");
  if (list.empty()) return;
  tags->erase(list.begin, list.end);
  d.writer().rewrite(block, *tags);
}

}  // namespace

Similarity Similarity::move(const AcGeVector3d& way) {
  Similarity s;
  s.matrix.entry[0][3] = way.x;
  s.matrix.entry[1][3] = way.y;
  s.matrix.entry[2][3] = way.z;
  return s;
}

Similarity Similarity::scaleAbout(const AcGePoint3d& base, double factor) {
  Similarity s;
  s.scale = factor;
  const double at[] = {base.x, base.y, base.z};
  for (int k = 0; k < 3; ++k) {
    s.matrix.entry[k][k] = factor;
    s.matrix.entry[k][3] = at[k] - factor * at[k];
  }
  return s;
}

Similarity Similarity::turnAbout(const AcGePoint3d& base, double degrees) {
  Similarity s;
  s.turn = turned(degrees, 0);
  // A quarter turn is exact.
  constexpr int kCosines[] = {1, 0, -1, 0};
  const double quarters = s.turn / 90;
  const bool exact = quarters == std::floor(quarters);
  const int q = static_cast<int>(quarters) % 4;
  const double cosine = exact ? kCosines[q] : std::cos(s.turn * kDegree);
  const double sine = exact ? kCosines[(q + 3) % 4] : std::sin(s.turn * kDegree);
  s.matrix.entry[0][0] = s.matrix.entry[1][1] = cosine;
  s.matrix.entry[0][1] = -sine;
  s.matrix.entry[1][0] = sine;
  s.matrix.entry[0][3] = base.x - cosine * base.x + sine * base.y;
  s.matrix.entry[1][3] = base.y - sine * base.x - cosine * base.y;
  return s;
}

bool transformEntity(Drawing& d, std::uint32_t entity, const Similarity& how) {
  const std::vector<Piece> pieces = changed(d, entity, how);
  for (const Piece& piece : pieces) d.writer().rewrite(piece.record, *piece.tags);
  return !pieces.empty();
}

bool copyEntity(Drawing& d, std::uint32_t entity, const Similarity& how) {
  // Two tables must not share the block that shows one of them.
  if (d.record(entity).type == Type::acadTable) return false;
  const std::vector<Piece> pieces = changed(d, entity, how);
  Place place;
  place.owner = d.record(entity).owner;
  place.space = place.entity = true;
  place.paper = d.record(entity).is(Record::paper);
  place.before = d.structure().endOf(place.owner);
  if (pieces.empty() || !place.before) return false;
  const std::uint32_t name = d.record(entity).name;
  const bool reference = d.record(entity).type == Type::insert;
  for (const Piece& piece : pieces) {
    dropTies(*piece.tags);
    const std::uint32_t made = d.writer().addComplete(*piece.tags, place);
    if (place.child) continue;
    place.owner = made;
    place.child = true;
  }
  if (reference) dropReferenceList(d, name);
  return true;
}

}  // namespace cad
