#include "cad/shape/hatch.h"

#include <algorithm>
#include <cmath>

#include "cad/shape/curves.h"

namespace cad::shape {

namespace {

constexpr double kPi = 3.14159265358979323846;

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

}  // namespace cad::shape
