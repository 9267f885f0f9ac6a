#include "cad/editor/pick.h"

#include <cmath>
#include <limits>

#include "cad/drawing/drawing.h"
#include "cad/drawing/extents.h"
#include "platform/text.h"

namespace cad {
namespace {

double toSegment(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& b) {
  const double dx = b.x - a.x, dy = b.y - a.y, l = dx * dx + dy * dy;
  double f = l > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / l : 0;
  f = std::fmin(1, std::fmax(0, f));
  return std::hypot(p.x - a.x - f * dx, p.y - a.y - f * dy);
}

// Distance in plan from a point to what an entity draws.
double distanceTo(const Drawing& d, std::uint32_t entity, const AcGePoint3d& p) {
  const Record& r = d.record(entity);
  auto t = borrowTags();
  std::vector<AcGePoint3d> points;
  if (r.type == Type::polyline) {
    for (std::uint32_t v = d.firstPart(entity); v; v = d.nextPart(entity, v)) {
      d.parse(v, *t);
      if (const int i = t->find(10); i >= 0) points.push_back(t->point(i));
    }
  } else if (r.type == Type::line || r.type == Type::lwpolyline) {
    d.parse(entity, *t);
    for (int i = 1; i < t->xdataBegin(); ++i) {
      if ((*t)[i].code == 10 || (r.type == Type::line && (*t)[i].code == 11))
        points.push_back(t->point(i));
    }
  }
  double best = std::numeric_limits<double>::max();
  if (points.size() == 1) best = std::hypot(points[0].x - p.x, points[0].y - p.y);
  for (std::size_t i = 1; i < points.size(); ++i) {
    best = std::fmin(best, toSegment(p, points[i - 1], points[i]));
  }
  if (points.empty()) {
    if (r.type == Type::insert) {
      d.parse(entity, *t);
      if (const int i = t->find(10); i >= 0) {
        const AcGePoint3d at = t->point(i);
        best = std::hypot(at.x - p.x, at.y - p.y);
      }
    }
    const AcDbExtents box = extentsOf(d, entity);
    if (!box.isEmpty()) {
      const double dx = std::fmax(0, std::fmax(box.minPoint().x - p.x, p.x - box.maxPoint().x));
      const double dy = std::fmax(0, std::fmax(box.minPoint().y - p.y, p.y - box.maxPoint().y));
      // Inside a symbol counts as a hit, but its insertion point is nearer.
      best = std::fmin(best, std::hypot(dx, dy) + (r.type == Type::insert ? 1e-6 : 0));
    }
  }
  returnTags(std::move(t));
  return best;
}

bool layerShown(Drawing& d, std::uint32_t layerName, std::vector<signed char>& known) {
  if (layerName >= known.size()) known.resize(layerName + 64, -1);
  signed char& shown = known[layerName];
  if (shown < 0) {
    shown = 1;
    if (const std::uint32_t i = d.tableEntry(Type::layer, d.names().text(layerName))) {
      TagList t;
      d.parse(i, t);
      if (t.integerOr(70, 0, t.body()) & 1 || t.integerOr(62, 7, t.body()) < 0) shown = 0;
    }
  }
  return shown == 1;
}

Pick byName(Drawing& d, std::u16string_view name) {
  Pick pick;
  auto t = borrowTags();
  for (const std::uint32_t e : d.allInSpace()) {
    const Record& r = d.record(e);
    bool hit = false;
    if (r.apps) {
      d.parse(e, *t);
      const int begin = t->xdataBegin();
      hit = begin + 1 < t->size() && (*t)[begin + 1].code == 1000 && t->text(begin + 1) == name;
    }
    if (!hit && r.type == Type::insert) {
      for (std::uint32_t a = d.firstPart(e); a && !hit; a = d.nextPart(e, a)) {
        d.parse(a, *t);
        hit = t->textOr(2, u"", t->subclass("AcDbAttribute")) == u"ID" &&
              t->textOr(1, u"", t->subclass("AcDbText")) == name;
      }
    }
    if (!hit) continue;
    if (r.type == Type::insert || !pick.record) pick.record = e;
    if (r.type == Type::insert) break;
  }
  returnTags(std::move(t));
  if (!pick.record) pick.problem = u"Nessuna entità si chiama \"" + std::u16string(name) + u"\".";
  return pick;
}

}  // namespace

std::optional<AcGePoint3d> parsePoint(std::u16string_view text, const AcGePoint3d* base) {
  const bool relative = !text.empty() && text[0] == u'@';
  if (relative) text.remove_prefix(1);
  double axis[3] = {0, 0, 0};
  int n = 0;
  while (n < 3) {
    const std::size_t comma = text.find(u',');
    const std::u16string_view part = text.substr(0, comma);
    const auto value = platform::parseReal(part);
    if (!value) return std::nullopt;
    axis[n++] = *value;
    if (comma == text.npos) break;
    text.remove_prefix(comma + 1);
    if (n == 3) return std::nullopt;
  }
  if (n < 2) return std::nullopt;
  AcGePoint3d p(axis[0], axis[1], axis[2]);
  if (relative && base) p = p + AcGeVector3d(base->x, base->y, base->z);
  return p;
}

Pick pickEntity(Drawing& d, std::u16string_view text, double aperture) {
  Pick pick;
  if (!text.empty() && text[0] == u'#') {
    const std::uint64_t handle = parseTagHandle(platform::narrow(text.substr(1)));
    pick.record = d.byHandle(handle);
    if (pick.record &&
        (d.record(pick.record).is(Record::erased) || !d.record(pick.record).is(Record::space))) {
      pick.record = 0;
    }
    if (!pick.record) pick.problem = u"Nessuna entità ha questo handle.";
  } else if (!text.empty() && text[0] == u'=') {
    pick = byName(d, text.substr(1));
  } else if (const auto p = parsePoint(text)) {
    pick.point = *p;
    double best = aperture;
    std::vector<signed char> shown;
    for (const std::uint32_t e : d.allInSpace()) {
      if (!layerShown(d, d.record(e).layer, shown)) continue;
      const double distance = distanceTo(d, e, *p);
      if (distance < best) {
        best = distance;
        pick.record = e;
      }
    }
    if (!pick.record) pick.problem = u"Nessuna entità in quel punto.";
    return pick;
  } else {
    pick.problem = u"Indicare un punto \"x,y\", un handle \"#1A2B\" o un nome \"=P12\".";
    return pick;
  }
  if (pick.record) {
    const AcDbExtents box = extentsOf(d, pick.record);
    if (!box.isEmpty()) pick.point = box.minPoint();
  }
  return pick;
}

}  // namespace cad
