#include "cad/editor/pick.h"

#include "cad/drawing/drawing.h"
#include "cad/shape/extents.h"
#include "cad/shape/hit.h"
#include "platform/format.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad {
namespace {

constexpr int kFrozen = 1, kLocked = 4;  // marks of a layer's entry

bool layerShown(const Drawing& d, std::uint32_t layerName, std::vector<signed char>& known) {
  if (layerName >= known.size()) known.resize(layerName + 64, -1);
  signed char& shown = known[layerName];
  if (shown < 0) {
    shown = 1;
    if (const std::uint32_t i = d.structure().tableEntry(Type::layer, d.names().text(layerName))) {
      TagList t;
      d.parse(i, t);
      if (t.integerOr(70, 0, t.body()) & kFrozen || t.integerOr(62, 7, t.body()) < 0) shown = 0;
    }
  }
  return shown == 1;
}

Pick byName(Drawing& d, std::u16string_view name) {
  Pick pick;
  const auto t = borrowTags();
  for (const std::uint32_t e : d.index().allInSpace()) {
    const Record& r = d.record(e);
    bool hit = false;
    if (r.apps) {
      d.parse(e, *t);
      const int begin = t->xdataBegin();
      hit = begin + 1 < t->size() && (*t)[begin + 1].code == 1000 && t->text(begin + 1) == name;
    }
    if (!hit && r.type == Type::insert) {
      for (std::uint32_t a = d.structure().firstPart(e); a && !hit;
           a = d.structure().nextPart(e, a)) {
        d.parse(a, *t);
        hit = t->textOr(2, u"", t->subclass("AcDbAttribute")) == u"ID" &&
              t->textOr(1, u"", t->subclass("AcDbText")) == name;
      }
    }
    if (!hit) continue;
    if (r.type == Type::insert || !pick.record) pick.record = e;
    if (r.type == Type::insert) break;
  }
  if (!pick.record)
    pick.problem = platform::format(platform::words(u"Nessuna entità si chiama \"%s\"."), name);
  return pick;
}

}  // namespace

std::vector<std::uint32_t> seenEntities(Drawing& d) {
  const bool layout = d.header().text("$TILEMODE") == u"0" && d.structure().paperSpace();
  const std::uint32_t space = layout ? d.structure().paperSpace() : d.structure().modelSpace();
  std::vector<std::uint32_t> seen;
  std::vector<signed char> shown;
  for (const std::uint32_t e : d.index().allInSpace()) {
    const Record& r = d.record(e);
    if (r.owner == space && !r.is(Record::hidden) && layerShown(d, r.layer, shown)) {
      seen.push_back(e);
    }
  }
  return seen;
}

bool onLockedLayer(const Drawing& d, std::uint32_t entity) {
  const std::uint32_t layer =
      d.structure().tableEntry(Type::layer, d.names().text(d.record(entity).layer));
  if (!layer) return false;
  TagList t;
  d.parse(layer, t);
  return t.integerOr(70, 0, t.body()) & kLocked;
}

std::uint32_t entityOfHandle(const Drawing& d, std::uint64_t handle) {
  const std::uint32_t found = d.byHandle(handle);
  const Record& r = d.record(found);
  return found && r.is(Record::space) && !r.is(Record::erased) ? found : 0;
}

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
    pick.record = entityOfHandle(d, parseTagHandle(platform::narrow(text.substr(1))));
    if (!pick.record) pick.problem = platform::words(u"Nessuna entità ha questo handle.");
  } else if (!text.empty() && text[0] == u'=') {
    pick = byName(d, text.substr(1));
  } else if (const auto p = parsePoint(text)) {
    pick.point = *p;
    double best = aperture;
    for (const std::uint32_t e : seenEntities(d)) {
      const double distance = shape::planDistance(d, e, *p);
      if (distance < best) {
        best = distance;
        pick.record = e;
      }
    }
    if (!pick.record) pick.problem = platform::words(u"Nessuna entità in quel punto.");
    return pick;
  } else {
    pick.problem =
        platform::words(u"Indicare un punto \"x,y\", un handle \"#1A2B\" o un nome \"=P12\".");
    return pick;
  }
  if (pick.record) {
    const AcDbExtents box = extentsOf(d, pick.record);
    if (!box.isEmpty()) pick.point = box.minPoint();
  }
  return pick;
}

}  // namespace cad
