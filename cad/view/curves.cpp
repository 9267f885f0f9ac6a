#include "cad/view/curves.h"

#include <algorithm>
#include <cmath>

namespace cad::view {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kStep = kPi / 24;  // 7.5 degrees: a circle of 48 sides

}  // namespace

void addArc(Points& points, const AcGePoint3d& c, double radius, double from, double to) {
  const int n = std::clamp(static_cast<int>(std::ceil(std::fabs(to - from) / kStep)), 1, 200);
  for (int i = 0; i <= n; ++i) {
    const double a = from + (to - from) * i / n;
    points.emplace_back(c.x + radius * std::cos(a), c.y + radius * std::sin(a), c.z);
  }
}

void addBulge(Points& points, const AcGePoint3d& a, const AcGePoint3d& b, double bulge) {
  const double dx = b.x - a.x, dy = b.y - a.y, chord = std::hypot(dx, dy);
  if (std::fabs(bulge) < 1e-9 || chord == 0) {
    points.push_back(b);
    return;
  }
  const double radius = chord * (1 + bulge * bulge) / (4 * bulge);
  const double offset = radius - chord * bulge / 2;  // from the chord's middle to the centre
  const AcGePoint3d c((a.x + b.x) / 2 - dy / chord * offset, (a.y + b.y) / 2 + dx / chord * offset,
                      a.z);
  const double from = std::atan2(a.y - c.y, a.x - c.x), sweep = 4 * std::atan(bulge);
  Points arc;
  addArc(arc, c, std::fabs(radius), from, from + sweep);
  arc.back() = b;
  points.insert(points.end(), arc.begin() + 1, arc.end());
}

void addEllipse(Points& points, const AcGePoint3d& center, const AcGeVector3d& major, double ratio,
                const AcGeVector3d& normal, double from, double to) {
  const AcGeVector3d minor = normal.normal().crossProduct(major) * ratio;
  if (to <= from) to += 2 * kPi;
  const int n = std::clamp(static_cast<int>(std::ceil((to - from) / kStep)), 1, 200);
  for (int i = 0; i <= n; ++i) {
    const double a = from + (to - from) * i / n;
    points.push_back(center + major * std::cos(a) + minor * std::sin(a));
  }
}

void addSpline(Points& points, int degree, const std::vector<double>& knots, const Points& controls,
               const std::vector<double>& weights) {
  const auto n = static_cast<int>(controls.size());
  if (degree < 1 || degree > 20 || n <= degree || static_cast<int>(knots.size()) < n + degree + 1)
    return;
  const auto knot = [&](int i) { return knots[static_cast<std::size_t>(i)]; };
  struct Homogeneous {
    double x, y, z, w;
  };
  std::vector<Homogeneous> d(static_cast<std::size_t>(degree) + 1);
  // Each span between knots in as many steps as a cubic needs to look smooth.
  for (int k = degree; k < n; ++k) {
    if (knot(k + 1) <= knot(k)) continue;
    for (int s = points.empty() || k == degree ? 0 : 1; s <= 12; ++s) {
      const double u = knot(k) + (knot(k + 1) - knot(k)) * s / 12;
      for (int j = 0; j <= degree; ++j) {
        const auto i = static_cast<std::size_t>(j + k - degree);
        const double w = i < weights.size() ? weights[i] : 1;
        d[static_cast<std::size_t>(j)] = {controls[i].x * w, controls[i].y * w, controls[i].z * w,
                                          w};
      }
      for (int r = 1; r <= degree; ++r) {
        for (int j = degree; j >= r; --j) {
          const double low = knot(j + k - degree), high = knot(j + 1 + k - r);
          const double a = high > low ? (u - low) / (high - low) : 0;
          Homogeneous& p = d[static_cast<std::size_t>(j)];
          const Homogeneous& q = d[static_cast<std::size_t>(j) - 1];
          p = {q.x + a * (p.x - q.x), q.y + a * (p.y - q.y), q.z + a * (p.z - q.z),
               q.w + a * (p.w - q.w)};
        }
      }
      const Homogeneous& p = d[static_cast<std::size_t>(degree)];
      if (p.w != 0) points.emplace_back(p.x / p.w, p.y / p.w, p.z / p.w);
    }
  }
}

// --- hatches -------------------------------------------------------------------------------------

namespace {

// Reads the tags of a hatch in their fixed order.
class HatchReader {
 public:
  explicit HatchReader(const TagList& tags) : t_(tags), end_(tags.subclass("AcDbHatch").end) {
    at_ = tags.subclass("AcDbHatch").begin;
  }

  void read(Loops& loops, Loops& lines) {
    const double z = t_.realOr(30, 0, {at_, end_});
    const bool solid = t_.integerOr(70, 1, {at_, end_}) == 1;
    at_ = t_.find(91, at_, end_);
    if (at_ < 0) return;
    const auto count = t_.integer(at_++);
    for (std::int64_t i = 0; i < count && at_ < end_; ++i) {
      const int flag = t_.find(92, at_, end_);
      if (flag < 0) break;
      at_ = flag + 1;
      Points loop;
      t_.integer(flag) & 2 ? polyline(loop) : edges(loop);
      for (AcGePoint3d& p : loop) p.z = z;
      if (loop.size() > 2) loops.push_back(std::move(loop));
    }
    if (!solid) pattern(loops, lines);
  }

 private:
  bool is(int code) const { return at_ < end_ && t_[at_].code == code; }
  double real(int code, double fallback = 0) { return is(code) ? t_.real(at_++) : fallback; }
  std::int64_t integer(int code, std::int64_t fallback = 0) {
    return is(code) ? t_.integer(at_++) : fallback;
  }
  AcGePoint3d point(int code) {
    const double x = real(code), y = real(code + 10);
    return {x, y, 0};
  }

  void polyline(Points& loop) {
    const bool bulges = integer(72) != 0;
    integer(73);
    const auto n = integer(93);
    std::vector<double> bulge;
    Points corners;
    for (std::int64_t i = 0; i < n && is(10); ++i) {
      corners.push_back(point(10));
      bulge.push_back(bulges ? real(42) : 0);
    }
    for (std::size_t i = 0; i < corners.size(); ++i) {
      if (i == 0) loop.push_back(corners[0]);
      addBulge(loop, corners[i], corners[(i + 1) % corners.size()], bulge[i]);
    }
  }

  void edges(Points& loop) {
    const auto n = integer(93);
    for (std::int64_t i = 0; i < n && is(72); ++i) {
      Points edge;
      switch (integer(72)) {
        case 1: {
          edge.push_back(point(10));
          edge.push_back(point(11));
          break;
        }
        case 2: {
          const AcGePoint3d c = point(10);
          const double r = real(40), from = real(50), to = real(51);
          turned(edge, integer(73, 1) != 0, from, to,
                 [&](Points& p, double a, double b) { addArc(p, c, r, a, b); });
          break;
        }
        case 3: {
          const AcGePoint3d c = point(10), axis = point(11);
          const double ratio = real(40), from = real(50), to = real(51);
          turned(edge, integer(73, 1) != 0, from, to, [&](Points& p, double a, double b) {
            addEllipse(p, c, {axis.x, axis.y, 0}, ratio, {0, 0, 1}, a, b);
          });
          break;
        }
        case 4:
          spline(edge);
          break;
        default:
          return;
      }
      // Edges may run either way: the nearer end joins on.
      if (!loop.empty() && !edge.empty() &&
          loop.back().distanceTo(edge.back()) < loop.back().distanceTo(edge.front())) {
        std::reverse(edge.begin(), edge.end());
      }
      loop.insert(loop.end(), edge.begin(), edge.end());
    }
  }

  // Angles of clockwise edges are mirrored.
  template <class Add>
  void turned(Points& edge, bool counterclockwise, double from, double to, Add&& add) {
    from *= kPi / 180;
    to *= kPi / 180;
    if (!counterclockwise) {
      const double a = -to, b = -from;
      from = a;
      to = b;
    }
    if (to < from) to += 2 * kPi;
    add(edge, from, to);
    if (!counterclockwise) std::reverse(edge.begin(), edge.end());
  }

  void spline(Points& edge) {
    const auto degree = static_cast<int>(integer(94));
    integer(73);
    integer(74);
    const auto nk = integer(95), nc = integer(96);
    std::vector<double> knots, weights;
    Points controls;
    for (std::int64_t i = 0; i < nk && is(40); ++i) knots.push_back(real(40));
    for (std::int64_t i = 0; i < nc && is(10); ++i) {
      controls.push_back(point(10));
      if (is(42)) weights.push_back(real(42));
    }
    addSpline(edge, degree, knots, controls, weights);
  }

  // The families of parallel lines, cut at the boundary by the even-odd rule. Dashes are left to
  // the eye.
  void pattern(const Loops& loops, Loops& lines) {
    at_ = t_.find(78, at_, end_);
    if (at_ < 0 || loops.empty()) return;
    const auto families = integer(78);
    for (std::int64_t f = 0; f < families && is(53); ++f) {
      const double angle = real(53) * kPi / 180;
      const double bx = real(43), by = real(44), ox = real(45), oy = real(46);
      for (auto dashes = integer(79); dashes > 0 && is(49); --dashes) ++at_;
      family(loops, lines, angle, {bx, by, 0}, {ox, oy, 0});
    }
  }

  static void family(const Loops& loops, Loops& lines, double angle, const AcGePoint3d& base,
                     const AcGePoint3d& offset) {
    const double c = std::cos(angle), s = std::sin(angle);
    const double step = std::fabs(-s * offset.x + c * offset.y);
    if (step <= 0) return;
    const auto across = [&](const AcGePoint3d& p) {
      return -s * (p.x - base.x) + c * (p.y - base.y);
    };
    const auto along = [&](const AcGePoint3d& p) {
      return c * (p.x - base.x) + s * (p.y - base.y);
    };
    double low = across(loops[0][0]), high = low;
    for (const Points& loop : loops) {
      for (const AcGePoint3d& p : loop) {
        low = std::min(low, across(p));
        high = std::max(high, across(p));
      }
    }
    if ((high - low) / step > 2000) return;  // would be one grey surface: the outline tells more
    std::vector<double> cuts;
    for (double v = std::ceil(low / step) * step; v <= high; v += step) {
      cuts.clear();
      for (const Points& loop : loops) {
        for (std::size_t i = 0; i < loop.size(); ++i) {
          const AcGePoint3d &p = loop[i], &q = loop[(i + 1) % loop.size()];
          const double a = across(p), b = across(q);
          if ((a <= v) == (b <= v)) continue;
          cuts.push_back(along(p) + (along(q) - along(p)) * (v - a) / (b - a));
        }
      }
      std::sort(cuts.begin(), cuts.end());
      const double z = loops[0][0].z;
      for (std::size_t i = 0; i + 1 < cuts.size(); i += 2) {
        lines.push_back({{base.x + c * cuts[i] - s * v, base.y + s * cuts[i] + c * v, z},
                         {base.x + c * cuts[i + 1] - s * v, base.y + s * cuts[i + 1] + c * v, z}});
      }
    }
  }

  const TagList& t_;
  int at_, end_;
};

}  // namespace

void readHatch(const TagList& tags, Loops& loops, Loops& patternLines) {
  HatchReader(tags).read(loops, patternLines);
}

// --- texts ---------------------------------------------------------------------------------------

std::u16string plainText(std::u16string_view text) {
  std::u16string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'%' || i + 2 >= text.size() || text[i + 1] != u'%') {
      out += text[i];
      continue;
    }
    switch (text[i + 2]) {
      case u'c':
      case u'C':
        out += u'\u2300';
        break;
      case u'd':
      case u'D':
        out += u'\u00B0';
        break;
      case u'p':
      case u'P':
        out += u'\u00B1';
        break;
      case u'%':
        out += u'%';
        break;
      case u'u':
      case u'U':
      case u'o':
      case u'O':
        break;  // underline and overline
      default:
        out += text[i + 2];
        break;
    }
    i += 2;
  }
  return out;
}

std::vector<std::u16string> plainLines(std::u16string_view s) {
  std::vector<std::u16string> lines(1);
  for (std::size_t i = 0; i < s.size(); ++i) {
    const char16_t c = s[i];
    if (c == u'{' || c == u'}') continue;
    if (c == u'\n') {
      lines.emplace_back();
      continue;
    }
    if (c != u'\\' || i + 1 >= s.size()) {
      if (c >= 32) lines.back() += c;
      continue;
    }
    const char16_t code = s[++i];
    switch (code) {
      case u'P':
      case u'X':
        lines.emplace_back();
        break;
      case u'~':
        lines.back() += u' ';
        break;
      case u'\\':
      case u'{':
      case u'}':
        lines.back() += code;
        break;
      case u'L':
      case u'l':
      case u'O':
      case u'o':
      case u'K':
      case u'k':
      case u'N':
        break;
      case u'S': {  // a fraction: its parts with a stroke between
        std::size_t end = s.find(u';', i);
        if (end == s.npos) end = s.size();
        for (++i; i < end; ++i) lines.back() += s[i] == u'^' || s[i] == u'#' ? u'/' : s[i];
        break;
      }
      default: {  // font, height, colour, width and the like, up to the semicolon
        const std::size_t end = s.find(u';', i);
        if (end != s.npos) i = end;
        break;
      }
    }
  }
  for (std::u16string& line : lines) line = plainText(line);
  return lines;
}

}  // namespace cad::view
