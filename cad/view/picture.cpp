#include "cad/view/picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <set>

#include "cad/drawing/extents.h"
#include "cad/view/curves.h"
#include "platform/text.h"

namespace cad::view {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kDeepest = 24;
constexpr int kByBlock = 0, kByLayer = 256;

// How an entity says it is drawn, before layer and block have had their say.
struct Style {
  std::uint32_t layer = 0;
  int color = kByLayer;  // index, by layer or by block; -1 when exact holds
  Color exact;
  int weight = -1;          // hundredths of mm, -1 by layer, -2 by block
  std::u16string linetype;  // empty: by layer
  double scale = 1;
};

struct LayerLook {
  bool known = false, shown = true, isZero = false;
  int color = 7;
  bool hasExact = false;
  Color exact;
  int weight = 0;
  int linetype = -1;
};

// A primitive of a block in the block's own coordinates, with its style unresolved.
struct Primitive {
  Kind kind = Kind::line;
  bool closed = false;
  bool endless = false;
  Style style;
  Points points;
  std::vector<std::uint32_t> loops;
  Text text;
};

class Taker {
 public:
  Taker(const Drawing& drawing, const Selection& selection) : d_(drawing) {
    for (const std::u16string& name : selection.layers) only_.insert(d_.names().find(name));
  }

  Picture take() {
    const std::uint32_t space = d_.modelSpace();
    for (std::uint32_t e = d_.firstEntity(space); e; e = d_.nextEntity(space, e)) {
      if (!only_.empty() && !only_.count(d_.record(e).layer)) continue;
      if (!look(d_.record(e).layer).shown) continue;
      entity(
          e, [&](Primitive&& p) { emit(p); }, 0);
    }
    return std::move(picture_);
  }

 private:
  // --- layers and line types
  const LayerLook& look(std::uint32_t name) {
    if (name >= looks_.size()) looks_.resize(name + 64);
    LayerLook& l = looks_[name];
    if (l.known) return l;
    l.known = true;
    const std::u16string& text = d_.names().text(name);
    l.isZero = text == u"0" || text.empty();
    const std::uint32_t i = d_.tableEntry(Type::layer, text);
    if (!i) return l;
    TagList t;
    d_.parse(i, t);
    const TagRange body = t.body();
    const auto color = static_cast<int>(t.integerOr(62, 7, body));
    l.shown = !(t.integerOr(70, 0, body) & 1) && color >= 0;
    l.color = std::abs(color);
    if (const int exact = t.find(420, body); exact >= 0) {
      l.hasExact = true;
      l.exact = exactColor(t.integer(exact));
    }
    l.weight = static_cast<int>(t.integerOr(370, 0, body));
    l.linetype = linetype(t.textOr(6, u"Continuous", body));
    return looks_[name];
  }

  static Color exactColor(std::int64_t v) {
    return {static_cast<std::uint8_t>(v >> 16), static_cast<std::uint8_t>(v >> 8),
            static_cast<std::uint8_t>(v)};
  }

  int linetype(const std::u16string& name) {
    const auto known = linetypes_.find(name);
    if (known != linetypes_.end()) return known->second;
    int number = -1;
    if (const std::uint32_t i = d_.tableEntry(Type::ltype, name)) {
      TagList t;
      d_.parse(i, t);
      std::vector<double> dashes;
      for (int k = 1; k < t.xdataBegin(); ++k) {
        if (t[k].code == 49) dashes.push_back(t.real(k));
      }
      if (dashes.size() > 1) {
        number = static_cast<int>(picture_.linetypes.size());
        picture_.linetypes.push_back(std::move(dashes));
      }
    }
    linetypes_[name] = number;
    return number;
  }

  Style styleOf(std::uint32_t entity, const TagList& t) const {
    Style s;
    s.layer = d_.record(entity).layer;
    const TagRange common =
        d_.format().hasHandlesAndMarkers() ? t.subclass("AcDbEntity") : t.body();
    for (int i = common.begin; i < common.end; ++i) {
      switch (t[i].code) {
        case 62:
          s.color = static_cast<int>(t.integer(i));
          break;
        case 420:
          s.color = -1;
          s.exact = exactColor(t.integer(i));
          break;
        case 370:
          s.weight = static_cast<int>(t.integer(i));
          break;
        case 6:
          s.linetype = t.text(i);
          break;
        case 48:
          s.scale = t.real(i);
          break;
        default:
          break;
      }
    }
    return s;
  }

  // --- putting a primitive into the picture
  Pen resolve(const Style& s, const LayerLook& l) {
    Pen pen;
    pen.index = s.color;
    pen.exact = s.exact;
    if (s.color == kByLayer) {
      pen.index = l.hasExact ? -1 : l.color;
      pen.exact = l.exact;
    }
    if (pen.index == kByBlock) pen.index = 7;  // not in a block: the default
    const int weight = s.weight < 0 ? l.weight : s.weight;
    pen.weight = weight > 0 ? weight / 100.0 : 0;
    const bool own = !s.linetype.empty() && !platform::equalNoCase(s.linetype, u"ByLayer") &&
                     !platform::equalNoCase(s.linetype, u"ByBlock");
    pen.linetype = own ? linetype(s.linetype) : l.linetype;
    pen.linetypeScale = s.scale;
    return pen;
  }

  void emit(const Primitive& p) {
    const LayerLook& l = look(p.style.layer);
    if (!l.shown) return;
    Item item;
    item.kind = p.kind;
    item.closed = p.closed;
    item.endless = p.endless;
    item.pen = resolve(p.style, l);
    item.first = static_cast<std::uint32_t>(picture_.points.size());
    item.count = static_cast<std::uint32_t>(p.points.size());
    picture_.points.insert(picture_.points.end(), p.points.begin(), p.points.end());
    if (p.kind == Kind::fill) {
      item.loops = static_cast<std::uint32_t>(p.loops.size());
      picture_.loopSizes.insert(picture_.loopSizes.end(), p.loops.begin(), p.loops.end());
    }
    if (p.kind == Kind::text) {
      item.text = static_cast<std::uint32_t>(picture_.texts.size());
      picture_.texts.push_back(p.text);
    }
    picture_.items.push_back(item);
  }

  // --- entities
  template <class Sink>
  void entity(std::uint32_t e, Sink&& sink, int depth) {
    const Record& r = d_.record(e);
    auto held = borrowTags();
    TagList& t = *held;
    d_.parse(e, t);
    const TagRange body = t.body();
    if (t.integerOr(60, 0, body) != 1) {
      const Style style = styleOf(e, t);
      if (r.type == Type::insert || r.type == Type::acadTable || r.type == Type::dimension) {
        reference(e, t, style, sink, depth);
      } else {
        shape(e, t, style, sink);
      }
    }
    returnTags(std::move(held));
  }

  static AcGeMatrix3d axesOf(const TagList& t, TagRange body) {
    const int i = t.find(210, body);
    if (i < 0) return {};
    const AcGePoint3d n = t.point(i);
    if (n.x == 0 && n.y == 0 && n.z > 0) return {};
    return acGeEntitySystem({n.x, n.y, n.z});
  }

  template <class Sink>
  void line(const Style& style, Points points, bool closed, Sink&& sink,
            const AcGeMatrix3d* axes = nullptr) {
    if (points.empty()) return;
    Primitive p;
    p.kind = points.size() == 1 ? Kind::dot : Kind::line;
    p.closed = closed;
    p.style = style;
    if (axes) {
      for (AcGePoint3d& q : points) q = *axes * q;
    }
    p.points = std::move(points);
    sink(std::move(p));
  }

  template <class Sink>
  void fill(const Style& style, const Loops& loops, Sink&& sink, const AcGeMatrix3d& axes) {
    Primitive p;
    p.kind = Kind::fill;
    p.style = style;
    for (const Points& loop : loops) {
      p.loops.push_back(static_cast<std::uint32_t>(loop.size()));
      for (const AcGePoint3d& q : loop) p.points.push_back(axes * q);
    }
    if (!p.points.empty()) sink(std::move(p));
  }

  template <class Sink>
  void shape(std::uint32_t e, const TagList& t, const Style& style, Sink&& sink) {
    const TagRange body = t.body();
    const Record& r = d_.record(e);
    const auto at = [&](int code) {
      const int i = t.find(code, body);
      return i < 0 ? AcGePoint3d() : t.point(i);
    };
    switch (r.type) {
      case Type::line:
        line(style, {at(10), at(11)}, false, sink);
        break;
      case Type::point:
        line(style, {at(10)}, false, sink);
        break;
      case Type::ray:
      case Type::xline: {
        // Endless lines end far outside of what is drawn; the painter's window cuts them.
        const AcGePoint3d p = at(10), d = at(11);
        const AcGeVector3d way = AcGeVector3d(d.x, d.y, d.z) * 1e4;
        line(style, {r.type == Type::ray ? p : p + way * -1, p + way}, false,
             [&](Primitive&& endless) {
               endless.endless = true;
               sink(std::move(endless));
             });
        break;
      }
      case Type::polyline:
        polyline(e, t, style, sink);
        break;
      case Type::lwpolyline:
        lightPolyline(t, style, sink);
        break;
      case Type::circle:
      case Type::arc: {
        const AcGeMatrix3d axes = axesOf(t, body);
        const bool circle = r.type == Type::circle;
        double from = circle ? 0 : t.realOr(50, 0, body) * kPi / 180;
        double to = circle ? 2 * kPi : t.realOr(51, 360, body) * kPi / 180;
        if (to <= from) to += 2 * kPi;
        Points points;
        addArc(points, at(10), t.realOr(40, 0, body), from, to);
        line(style, std::move(points), circle, sink, &axes);
        break;
      }
      case Type::ellipse: {
        const AcGePoint3d axis = at(11), n = at(210);
        const AcGeVector3d normal =
            n.x == 0 && n.y == 0 && n.z == 0 ? AcGeVector3d(0, 0, 1) : AcGeVector3d(n.x, n.y, n.z);
        Points points;
        addEllipse(points, at(10), {axis.x, axis.y, axis.z}, t.realOr(40, 1, body), normal,
                   t.realOr(41, 0, body), t.realOr(42, 2 * kPi, body));
        line(style, std::move(points), false, sink);
        break;
      }
      case Type::spline:
        spline(t, style, sink);
        break;
      case Type::solid:
      case Type::trace: {
        const AcGeMatrix3d axes = axesOf(t, body);
        Points corners = {at(10), at(11), t.find(13, body) < 0 ? at(12) : at(13), at(12)};
        fill(style, {corners}, sink, axes);
        break;
      }
      case Type::face:
        line(style, {at(10), at(11), at(12), t.find(13, body) < 0 ? at(12) : at(13)}, true, sink);
        break;
      case Type::hatch: {
        const AcGeMatrix3d axes = axesOf(t, body);
        Loops loops, lines;
        readHatch(t, loops, lines);
        if (t.integerOr(70, 1, t.subclass("AcDbHatch")) == 1) {
          fill(style, loops, sink, axes);
        } else {
          for (Points& l : lines) line(style, std::move(l), false, sink, &axes);
          if (lines.empty()) {
            for (Points& l : loops) line(style, std::move(l), true, sink, &axes);
          }
        }
        break;
      }
      case Type::leader: {
        Points points;
        for (int i = body.begin; i < body.end; ++i) {
          if (t[i].code == 10) points.push_back(t.point(i));
        }
        line(style, std::move(points), false, sink);
        break;
      }
      case Type::multileader:
        multileader(t, style, sink);
        break;
      case Type::text:
        text(t, style, t.subclass("AcDbText"), t.subclass("AcDbText", 2), 73, sink);
        break;
      case Type::attrib:
        text(t, style, t.subclass("AcDbText"), t.subclass("AcDbAttribute"), 74, sink);
        break;
      case Type::mtext:
        multilineText(t, style, sink);
        break;
      case Type::attdef:
      case Type::seqend:
      case Type::viewport:
        break;
      default:
        ++picture_.unknown[d_.typeName(e)];
        break;
    }
  }

  template <class Sink>
  void polyline(std::uint32_t e, const TagList& t, const Style& style, Sink&& sink) {
    const TagRange body = t.body();
    const auto flags = t.integerOr(70, 0, body);
    const bool space = flags & (8 | 16 | 64);
    const AcGeMatrix3d axes = space ? AcGeMatrix3d() : axesOf(t, body);
    auto held = borrowTags();
    TagList& v = *held;
    Points points, mesh;
    std::vector<double> bulges;
    std::vector<std::array<std::int64_t, 4>> faces;
    for (std::uint32_t part = d_.firstPart(e); part; part = d_.nextPart(e, part)) {
      d_.parse(part, v);
      const TagRange own = v.body();
      const auto kind = v.integerOr(70, 0, own);
      if ((flags & 64) && !(kind & 64)) {
        faces.push_back({v.integerOr(71, 0, own), v.integerOr(72, 0, own), v.integerOr(73, 0, own),
                         v.integerOr(74, 0, own)});
        continue;
      }
      if (kind & 16 && !(flags & 64)) continue;  // control points of a curve: its own points follow
      if (const int i = v.find(10, own); i >= 0) {
        points.push_back(v.point(i));
        bulges.push_back(v.realOr(42, 0, own));
      }
    }
    returnTags(std::move(held));
    if (flags & 64) return faceMesh(style, points, faces, sink);
    if (flags & 16)
      return mesh_(style, points, t.integerOr(71, 0, body), t.integerOr(72, 0, body), flags, sink);
    if (!space) {
      const double z = t.realOr(30, 0, body);
      for (AcGePoint3d& p : points) p.z = z;
      points = withBulges(points, bulges, flags & 1);
    }
    line(style, std::move(points), flags & 1, sink, &axes);
  }

  static Points withBulges(const Points& corners, const std::vector<double>& bulges, bool closed) {
    if (std::all_of(bulges.begin(), bulges.end(), [](double b) { return b == 0; })) return corners;
    Points points;
    for (std::size_t i = 0; i < corners.size(); ++i) {
      if (i == 0) points.push_back(corners[0]);
      if (i + 1 < corners.size() || closed)
        addBulge(points, corners[i], corners[(i + 1) % corners.size()], bulges[i]);
    }
    return points;
  }

  template <class Sink>
  void faceMesh(const Style& style, const Points& points,
                const std::vector<std::array<std::int64_t, 4>>& faces, Sink&& sink) {
    for (const auto& f : faces) {
      Points corners;
      for (const std::int64_t i : f) {
        const auto n = static_cast<std::size_t>(std::llabs(i));
        if (n >= 1 && n <= points.size()) corners.push_back(points[n - 1]);
      }
      if (corners.size() > 1) line(style, std::move(corners), true, sink);
    }
  }

  template <class Sink>
  void mesh_(const Style& style, const Points& points, std::int64_t m, std::int64_t n,
             std::int64_t flags, Sink&& sink) {
    if (m < 1 || n < 1 || static_cast<std::size_t>(m * n) > points.size()) return;
    const auto point = [&](std::int64_t i, std::int64_t j) {
      return points[static_cast<std::size_t>(i * n + j)];
    };
    for (std::int64_t i = 0; i < m; ++i) {
      Points row;
      for (std::int64_t j = 0; j < n; ++j) row.push_back(point(i, j));
      line(style, std::move(row), flags & 32, sink);
    }
    for (std::int64_t j = 0; j < n; ++j) {
      Points column;
      for (std::int64_t i = 0; i < m; ++i) column.push_back(point(i, j));
      line(style, std::move(column), flags & 1, sink);
    }
  }

  template <class Sink>
  void lightPolyline(const TagList& t, const Style& style, Sink&& sink) {
    const TagRange body = t.subclass("AcDbPolyline");
    const AcGeMatrix3d axes = axesOf(t, body);
    const double z = t.realOr(38, 0, body), width = t.realOr(43, 0, body);
    const bool closed = t.integerOr(70, 0, body) & 1;
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
    if (width <= 0 || points.size() < 2) return line(style, std::move(points), closed, sink, &axes);
    if (closed) points.push_back(points.front());
    for (std::size_t i = 1; i < points.size(); ++i) {
      const AcGePoint3d &a = points[i - 1], &b = points[i];
      const double dx = b.x - a.x, dy = b.y - a.y, l = std::hypot(dx, dy);
      if (l == 0) continue;
      const double nx = -dy / l * width / 2, ny = dx / l * width / 2;
      fill(style,
           {{{a.x + nx, a.y + ny, z},
             {b.x + nx, b.y + ny, z},
             {b.x - nx, b.y - ny, z},
             {a.x - nx, a.y - ny, z}}},
           sink, axes);
    }
  }

  template <class Sink>
  void spline(const TagList& t, const Style& style, Sink&& sink) {
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
    line(style, std::move(points), false, sink);
  }

  template <class Sink>
  void multileader(const TagList& t, const Style& style, Sink&& sink) {
    Points points;
    const int end = t.xdataBegin();
    bool inside = false;
    for (int i = 1; i < end; ++i) {
      if (t[i].code == 304 && t.is(i, "LEADER_LINE{")) {
        inside = true;
        points.clear();
      } else if (inside && t[i].code == 10) {
        points.push_back(t.point(i));
      } else if (inside && t[i].code == 305) {
        inside = false;
        line(style, points, false, sink);
      } else if (!inside && t[i].code == 304 && t[i].size > 0 && t[i].value[t[i].size - 1] != '{') {
        // The text of the content; its place follows as 12.
        const std::vector<std::u16string> lines = plainLines(t.text(i));
        const int at = t.find(12, i, end), height = t.find(41, 1, end);
        if (at < 0) continue;
        textLines(style, lines, t.point(at), {1, 0, 0}, {0, 1, 0},
                  height < 0 ? 2.5 : t.real(height), 1, sink);
      }
    }
  }

  // --- texts
  template <class Sink>
  void oneText(const Style& style, std::u16string text, const AcGePoint3d& anchor,
               const AcGeVector3d& x, const AcGeVector3d& y, int horizontal, int vertical,
               double oblique, Sink&& sink) {
    if (text.empty()) return;
    Primitive p;
    p.kind = Kind::text;
    p.style = style;
    p.points = {anchor, anchor + x, anchor + y};
    p.text = {std::move(text), horizontal, vertical, oblique};
    sink(std::move(p));
  }

  template <class Sink>
  void text(const TagList& t, const Style& style, TagRange own, TagRange second, int verticalCode,
            Sink&& sink) {
    if (!d_.format().hasHandlesAndMarkers()) own = second = t.body();
    if (verticalCode == 74 && t.integerOr(70, 0, second) & 1) return;  // an invisible attribute
    const int first = t.find(10, own), anchorTag = t.find(11, own);
    if (first < 0) return;
    const double height = t.realOr(40, 1, own), angle = t.realOr(50, 0, own) * kPi / 180;
    const double factor = t.realOr(41, 1, own);
    int horizontal = static_cast<int>(t.integerOr(72, 0, own));
    int vertical = static_cast<int>(t.integerOr(verticalCode, 0, second));
    AcGePoint3d anchor = t.point(first);
    AcGeVector3d x(std::cos(angle), std::sin(angle), 0), y(-x.y, x.x, 0);
    double wide = height * factor;
    if (anchorTag >= 0 && (horizontal || vertical)) {
      const AcGePoint3d other = t.point(anchorTag);
      if (horizontal == 3 || horizontal == 5) {  // aligned and fitted: between two points
        const double l = std::hypot(other.x - anchor.x, other.y - anchor.y);
        if (l > 0) x = {(other.x - anchor.x) / l, (other.y - anchor.y) / l, 0};
        y = {-x.y, x.x, 0};
        horizontal = 0;
      } else {
        anchor = other;
      }
    }
    if (horizontal == 4) {
      horizontal = 1;
      vertical = 2;
    }
    const auto mirror = t.integerOr(71, 0, own);
    if (mirror & 2) x = x * -1;
    if (mirror & 4) y = y * -1;
    const AcGeMatrix3d axes = axesOf(t, own);
    oneText(style, plainText(t.textOr(1, u"", own)), axes * anchor, axes * x * wide,
            axes * y * height, std::clamp(horizontal, 0, 2), std::clamp(vertical, 0, 3),
            t.realOr(51, 0, own) * kPi / 180, sink);
  }

  template <class Sink>
  void textLines(const Style& style, const std::vector<std::u16string>& lines,
                 const AcGePoint3d& at, const AcGeVector3d& x, const AcGeVector3d& y, double height,
                 int attachment, Sink&& sink) {
    const double step = height * 5 / 3;
    const int column = (attachment - 1) % 3, row = (attachment - 1) / 3;
    const double whole = height + step * static_cast<double>(lines.size() - 1);
    double down = row == 0 ? height : row == 1 ? height - whole / 2 : height - whole;
    for (const std::u16string& l : lines) {
      oneText(style, l, at + y * -down, x * height, y * height, column, 0, 0, sink);
      down += step;
    }
  }

  template <class Sink>
  void multilineText(const TagList& t, const Style& style, Sink&& sink) {
    const TagRange own = t.subclass("AcDbMText");
    std::u16string all;
    for (int i = own.begin; i < own.end; ++i) {
      if (t[i].code == 3 || t[i].code == 1) all += t.text(i);
    }
    const int at = t.find(10, own), direction = t.find(11, own);
    if (at < 0) return;
    AcGeVector3d x;
    if (direction >= 0) {
      const AcGePoint3d d = t.point(direction);
      x = AcGeVector3d(d.x, d.y, d.z).normal();
    } else {
      const double a = t.realOr(50, 0, own) * kPi / 180;
      x = {std::cos(a), std::sin(a), 0};
    }
    const int n = t.find(210, own);
    const AcGePoint3d normal = n < 0 ? AcGePoint3d(0, 0, 1) : t.point(n);
    const AcGeVector3d y = AcGeVector3d(normal.x, normal.y, normal.z).normal().crossProduct(x);
    const auto attachment = std::clamp<std::int64_t>(t.integerOr(71, 1, own), 1, 9);
    textLines(style, plainLines(all), t.point(at), x, y, t.realOr(40, 1, own),
              static_cast<int>(attachment), sink);
  }

  // --- references
  struct BlockPicture {
    std::vector<Primitive> primitives;
    AcGePoint3d origin;
  };

  const BlockPicture* blockPicture(std::uint32_t id, int depth) {
    auto& slot = blocks_[id];
    if (slot) return slot.get();
    slot = std::make_unique<BlockPicture>();
    BlockPicture& picture = *slot;
    if (const BlockInfo* info = d_.block(id)) picture.origin = blockOrigin(d_, *info);
    if (depth >= kDeepest) return slot.get();
    for (std::uint32_t e = d_.firstEntity(id); e; e = d_.nextEntity(id, e)) {
      entity(
          e, [&](Primitive&& p) { picture.primitives.push_back(std::move(p)); }, depth + 1);
    }
    return blocks_[id].get();
  }

  template <class Sink>
  void reference(std::uint32_t e, const TagList& t, const Style& style, Sink&& sink, int depth) {
    const Record& r = d_.record(e);
    const TagRange body = t.body();
    const int nameTag = t.find(2, body);
    const std::uint32_t id = nameTag < 0 ? 0 : d_.blockByName(d_.names().find(t.text(nameTag)));
    if (id && depth < kDeepest && id != d_.modelSpace() && !underWay_.count(id)) {
      underWay_.insert(id);
      const BlockPicture* block = blockPicture(id, depth);
      underWay_.erase(id);
      const AcGeMatrix3d axes = axesOf(t, body);
      const auto rows =
          std::clamp<std::int64_t>(r.type == Type::insert ? t.integerOr(71, 1, body) : 1, 1, 1000);
      const auto columns =
          std::clamp<std::int64_t>(r.type == Type::insert ? t.integerOr(70, 1, body) : 1, 1, 1000);
      for (std::int64_t i = 0; i < rows * columns; ++i) {
        const AcGeMatrix3d m =
            axes * placement(r.type, t, body, block->origin, static_cast<double>(i % columns),
                             static_cast<double>(i / columns));
        for (const Primitive& p : block->primitives) sink(placed(p, m, style));
      }
    }
    for (std::uint32_t a = d_.firstPart(e); a; a = d_.nextPart(e, a)) {
      if (d_.record(a).type != Type::attrib || !look(d_.record(a).layer).shown) continue;
      auto held = borrowTags();
      d_.parse(a, *held);
      Style own = styleOf(a, *held);
      inherit(own, style);
      if (held->integerOr(60, 0, held->body()) != 1) shape(a, *held, own, sink);
      returnTags(std::move(held));
    }
  }

  static AcGeMatrix3d placement(Type type, const TagList& t, TagRange body,
                                const AcGePoint3d& origin, double column, double row) {
    AcGeMatrix3d m, base;
    base.entry[0][3] = -origin.x;
    base.entry[1][3] = -origin.y;
    base.entry[2][3] = -origin.z;
    // The block of a dimension is drawn where the dimension is.
    if (type == Type::dimension) return base;
    const int at = t.find(10, body);
    const AcGePoint3d p = at < 0 ? AcGePoint3d() : t.point(at);
    const bool table = type == Type::acadTable;
    const double a = table ? 0 : t.realOr(50, 0, body) * kPi / 180, c = std::cos(a),
                 s = std::sin(a);
    const double sx = table ? 1 : t.realOr(41, 1, body), sy = table ? 1 : t.realOr(42, 1, body),
                 sz = table ? 1 : t.realOr(43, 1, body);
    m.entry[0][0] = c * sx;
    m.entry[0][1] = -s * sy;
    m.entry[1][0] = s * sx;
    m.entry[1][1] = c * sy;
    m.entry[2][2] = sz;
    const double dx = table ? 0 : column * t.realOr(44, 0, body),
                 dy = table ? 0 : row * t.realOr(45, 0, body);
    m.entry[0][3] = p.x + c * dx - s * dy;
    m.entry[1][3] = p.y + s * dx + c * dy;
    m.entry[2][3] = p.z;
    return m * base;
  }

  // What a block leaves open its reference decides.
  void inherit(Style& s, const Style& block) {
    const bool zero = look(s.layer).isZero;
    if (s.color == kByBlock) {
      s.color = block.color;
      s.exact = block.exact;
      if (block.color == kByLayer && !zero) {
        const LayerLook& l = look(block.layer);
        s.color = l.hasExact ? -1 : l.color;
        s.exact = l.exact;
      }
    }
    if (s.weight == -2) s.weight = block.weight;
    if (platform::equalNoCase(s.linetype, u"ByBlock")) s.linetype = block.linetype;
    if (zero) s.layer = block.layer;
  }

  Primitive placed(const Primitive& p, const AcGeMatrix3d& m, const Style& block) {
    Primitive out = p;
    inherit(out.style, block);
    for (AcGePoint3d& q : out.points) q = m * q;
    return out;
  }

  const Drawing& d_;
  Picture picture_;
  std::set<std::uint32_t> only_, underWay_;
  std::vector<LayerLook> looks_;
  std::map<std::u16string, int> linetypes_;
  std::map<std::uint32_t, std::unique_ptr<BlockPicture>> blocks_;
};

}  // namespace

Picture takePicture(const Drawing& drawing, const Selection& selection) {
  return Taker(drawing, selection).take();
}

}  // namespace cad::view
