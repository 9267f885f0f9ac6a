#include "cad/shape/curves.h"

#include <algorithm>
#include <cmath>

namespace cad::shape {
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

}  // namespace cad::shape
