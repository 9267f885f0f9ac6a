// Heights of a profile larger than its lengths.
#include <cmath>

#include "cad/view/sheet.h"
#include "platform/format.h"

namespace cad::view {
namespace {

constexpr int kGrey = 8;
// In text heights: between marks of levels, and of a number above that of the foot.
constexpr double kClosest = 2.5, kAboveFoot = 1.4;

// The smallest of 1, 2, 5, 10, 20... that is not below `least`.
double niceAbove(double least) {
  const double power = std::pow(10, std::floor(std::log10(least)));
  for (const double f : {1.0, 2.0, 5.0}) {
    if (power * f >= least * (1 - 1e-9)) return power * f;
  }
  return power * 10;
}
bool divides(double step, double whole) {
  const double times = whole / step;
  return std::fabs(times - std::round(times)) < 1e-6;
}

class Marks {
 public:
  Marks(Picture& picture, const Elevations& at, double times)
      : picture_(picture), at_(at), times_(times) {}

  void add() {
    // The frame has marks at steps of its own, which these must not come near.
    const double coarse = niceAbove(kClosest * at_.unit);
    double step = niceAbove(kClosest * at_.unit / times_);
    while (step < coarse && !divides(step, coarse)) step = niceAbove(step * 1.5);
    if (step >= coarse) return;
    const double high = at_.areaTop - at_.datum;
    for (double k = std::floor(at_.referenceLevel / step) + 1;
         k * step - at_.referenceLevel <= high; ++k) {
      const double rise = k * step - at_.referenceLevel;
      const double y = at_.datum + rise * times_;
      if (rise * times_ < kAboveFoot * at_.unit) continue;
      // The frame's own have no number where it would have stood on that of the foot.
      const bool own = divides(coarse, k * step);
      if (!own) mark(y);
      if (!own || rise < kAboveFoot * at_.unit) number(k * step, y);
    }
  }

 private:
  void mark(double y) {
    line({at_.areaLeft, y, 0}, {at_.areaRight, y, 0}, kGrey);
    line({at_.areaLeft - at_.unit, y, 0}, {at_.areaLeft, y, 0}, 7);
  }
  void number(double level, double y) {
    Item item;
    item.kind = Kind::text;
    item.first = static_cast<std::uint32_t>(picture_.points.size());
    item.count = 3;
    item.text = static_cast<std::uint32_t>(picture_.texts.size());
    picture_.texts.push_back({platform::format(u"%.3lf", level), 2, 2, 0});
    const AcGePoint3d at(at_.areaLeft - 1.5 * at_.unit, y, 0);
    picture_.points.insert(picture_.points.end(), {at, at + AcGeVector3d(at_.unit, 0, 0),
                                                   at + AcGeVector3d(0, at_.unit, 0)});
    picture_.items.push_back(item);
  }
  void line(const AcGePoint3d& a, const AcGePoint3d& b, int color) {
    Item item;
    item.pen.index = color;
    item.first = static_cast<std::uint32_t>(picture_.points.size());
    item.count = 2;
    picture_.points.insert(picture_.points.end(), {a, b});
    picture_.items.push_back(item);
  }

  Picture& picture_;
  const Elevations& at_;
  const double times_;
};

}  // namespace

void exaggerate(Picture& picture, const Elevations& at, double times) {
  const auto raised = [&](const AcGePoint3d& p) {
    if (p.x <= at.left || p.y <= at.datum) return p;
    return AcGePoint3d(p.x, at.datum + (p.y - at.datum) * times, p.z);
  };
  for (const Item& item : picture.items) {
    AcGePoint3d* const points = picture.points.data() + item.first;
    if (item.kind == Kind::text) {  // keeps its size
      const AcGeVector3d rise = raised(points[0]) - points[0];
      for (std::uint32_t i = 0; i < item.count; ++i) points[i] = points[i] + rise;
      continue;
    }
    for (std::uint32_t i = 0; i < item.count; ++i) points[i] = raised(points[i]);
  }
  if (times > 1) Marks(picture, at, times).add();
}

}  // namespace cad::view
