#include "cad/editor/pick.h"

#include <algorithm>
#include <cmath>

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

bool isLine(Type type) {
  return type == Type::polyline || type == Type::lwpolyline || type == Type::line;
}

bool isCalled(Drawing& d, std::uint32_t e, std::u16string_view name, TagList& t) {
  const Record& r = d.record(e);
  if (r.apps) {
    d.parse(e, t);
    const int begin = t.xdataBegin();
    if (begin + 1 < t.size() && t[begin + 1].code == 1000 && t.text(begin + 1) == name) return true;
  }
  if (r.type != Type::insert) return false;
  for (std::uint32_t a = d.structure().firstPart(e); a; a = d.structure().nextPart(e, a)) {
    d.parse(a, t);
    if (t.textOr(2, u"", t.subclass("AcDbAttribute")) == u"ID" &&
        t.textOr(1, u"", t.subclass("AcDbText")) == name) {
      return true;
    }
  }
  return false;
}

// What bears a name: a symbol, a polyline, or a polyline with its symbol on the layer of both.
// Where a polyline is, it is a link, else a node.
struct Named {
  std::uint32_t layer = 0, symbol = 0, line = 0;
  bool isLink() const { return line != 0; }
  std::uint32_t record() const { return symbol ? symbol : line; }
};

std::vector<Named> allNamed(Drawing& d, std::u16string_view name) {
  std::vector<Named> found;
  const auto t = borrowTags();
  for (const std::uint32_t e : d.index().allInSpace()) {
    if (!isCalled(d, e, name, *t)) continue;
    const Record& r = d.record(e);
    const bool symbol = r.type == Type::insert;
    const auto same = std::find_if(found.begin(), found.end(), [&](const Named& n) {
      return n.layer == r.layer && (symbol ? n.symbol : n.line) == 0;
    });
    Named& named = same == found.end() ? found.emplace_back() : *same;
    named.layer = r.layer;
    (symbol ? named.symbol : named.line) = e;
  }
  return found;
}

// "A2", or only among nodes "N:A2" or links "R:A2". A name that several bear is none's.
Pick byName(Drawing& d, std::u16string_view text) {
  std::u16string_view name = text;
  const bool nodes = text.starts_with(u"N:") || text.starts_with(u"n:");
  const bool links = text.starts_with(u"R:") || text.starts_with(u"r:");
  if (nodes || links) name.remove_prefix(2);
  std::vector<Named> found = allNamed(d, name);
  if (nodes || links) {
    std::erase_if(found, [&](const Named& n) { return n.isLink() != links; });
    if (found.empty()) found = allNamed(d, text);  // the colon may be the name's own
  }
  Pick pick;
  if (found.empty()) {
    pick.problem = platform::format(platform::words(u"Nessuna entità si chiama \"%s\"."), name);
  } else if (found.size() == 1) {
    pick.record = found.front().record();
  } else {
    std::u16string all;
    for (const Named& n : found) {
      all += platform::format(u"%s%s #%llX (%s)", all.empty() ? u"" : u", ",
                              platform::words(n.isLink() ? u"ramo" : u"nodo"),
                              d.record(n.record()).handle, d.names().text(n.layer));
    }
    pick.problem = platform::format(
        platform::words(
            u"In più si chiamano \"%s\": %s. Scrivere =N:%s per il nodo, =R:%s per il ramo, "
            u"o l'handle."),
        name, all, name, name);
  }
  return pick;
}

// A point on a symbol means the symbol, though the polyline under it runs nearer: within the
// symbol's own box, the smallest first.
std::uint32_t symbolAt(const Drawing& d, const std::vector<std::uint32_t>& seen,
                       const AcGePoint3d& p) {
  std::uint32_t best = 0;
  double smallest = 0;
  for (const std::uint32_t e : seen) {
    if (d.record(e).type != Type::insert) continue;
    const AcDbExtents box = shape::symbolExtents(d, e);
    if (box.isEmpty()) continue;
    const AcGePoint3d low = box.minPoint(), high = box.maxPoint();
    if (p.x < low.x || p.x > high.x || p.y < low.y || p.y > high.y) continue;
    const double size = std::max(high.x - low.x, high.y - low.y);
    if (best && size >= smallest) continue;
    best = e;
    smallest = size;
  }
  return best;
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

namespace {

// "d<a": so far in a direction, in degrees counterclockwise from the east.
std::optional<AcGeVector3d> parsePolar(std::u16string_view text) {
  const std::size_t sign = text.find(u'<');
  if (sign == text.npos) return std::nullopt;
  const auto distance = platform::parseReal(text.substr(0, sign)),
             degrees = platform::parseReal(text.substr(sign + 1));
  if (!distance || !degrees) return std::nullopt;
  const double angle = *degrees * M_PI / 180;
  return AcGeVector3d(*distance * std::cos(angle), *distance * std::sin(angle), 0);
}

}  // namespace

std::optional<AcGePoint3d> parsePoint(std::u16string_view text, const AcGePoint3d* base) {
  const bool relative = !text.empty() && text[0] == u'@';
  if (relative) text.remove_prefix(1);
  if (const auto way = relative && base ? parsePolar(text) : std::nullopt) return *base + *way;
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
    const std::vector<std::uint32_t> seen = seenEntities(d);
    for (const std::uint32_t e : seen) {
      const double distance = shape::planDistance(d, e, *p);
      if (distance < best) {
        best = distance;
        pick.record = e;
      }
    }
    const bool line = pick.record && isLine(d.record(pick.record).type);
    if (const std::uint32_t symbol = line ? symbolAt(d, seen, *p) : 0) pick.record = symbol;
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
