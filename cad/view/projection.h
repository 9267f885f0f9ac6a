// From the drawing to the dots of a page.
#pragma once

#include <algorithm>
#include <cmath>

#include "cad/view/placed.h"

namespace cad::view {

struct Spot {
  double x = 0, y = 0;
};

// Everything of a picture or its window with some air about it, or what a placement says.
class Projection {
 public:
  static constexpr double kMargin = 0.03;  // of the larger side

  Projection(const Picture& picture, const PaintOptions& options)
      : iso_(options.view == View::isometric) {
    double low[2] = {1e300, 1e300}, high[2] = {-1e300, -1e300};
    const auto grow = [&](Spot s) {
      low[0] = std::min(low[0], s.x);
      low[1] = std::min(low[1], s.y);
      high[0] = std::max(high[0], s.x);
      high[1] = std::max(high[1], s.y);
    };
    if (options.window && !iso_) {
      grow({options.window->x1, options.window->y1});
      grow({options.window->x2, options.window->y2});
    } else {
      for (const Item& item : picture.items) growItem(picture, item, grow);
    }
    if (low[0] > high[0]) low[0] = low[1] = 0, high[0] = high[1] = 1;
    double w = high[0] - low[0], h = high[1] - low[1];
    const double margin = std::max({w, h, 1e-6}) * kMargin;
    w = std::max(w + 2 * margin, 1e-6);
    h = std::max(h + 2 * margin, 1e-6);
    width = options.width;
    height = std::clamp(std::ceil(width * h / w), width / 4, width * 1.5);
    scale = std::min(width / w, height / h);
    left_ = (low[0] + high[0]) / 2 - width / scale / 2;
    top_ = (low[1] + high[1]) / 2 + height / scale / 2;
  }

  explicit Projection(const Placement& at)
      : width(at.width),
        height(at.height),
        scale(at.scale),
        thinnest(at.thinnest),
        left_(at.left),
        top_(at.top) {}

  Spot operator()(const AcGePoint3d& p) const {
    const Spot s = flat(p);
    return {(s.x - left_) * scale, (top_ - s.y) * scale};
  }

  double width = 0, height = 0, scale = 1;
  double thinnest = 1;  // line

  // Hands over what an item reaches.
  template <class Grow>
  void growItem(const Picture& picture, const Item& item, Grow&& grow) const {
    if (item.endless || item.follows || isPointless(picture, item)) return;
    if (item.kind == Kind::text) return growText(picture, item, grow);
    for (std::uint32_t i = 0; i < item.count; ++i) {
      const AcGePoint3d& p = picture.points[item.first + i];
      if (std::isfinite(p.x) && std::isfinite(p.y) && std::fabs(p.x) < 1e15 &&
          std::fabs(p.y) < 1e15)
        grow(flat(p));
    }
  }

 private:
  // A line of no length, which shows nothing wherever it stands.
  static bool isPointless(const Picture& picture, const Item& item) {
    if (item.kind != Kind::line) return false;
    const AcGePoint3d& first = picture.points[item.first];
    for (std::uint32_t i = 1; i < item.count; ++i) {
      const AcGePoint3d& p = picture.points[item.first + i];
      if (p.x != first.x || p.y != first.y || p.z != first.z) return false;
    }
    return true;
  }

  // A text reaches as far as its letters do, by an average of their width.
  template <class Grow>
  void growText(const Picture& picture, const Item& item, Grow&& grow) const {
    const AcGePoint3d& a = picture.points[item.first];
    const AcGeVector3d x = picture.points[item.first + 1] - a,
                       y = picture.points[item.first + 2] - a;
    const Text& t = picture.texts[item.text];
    const double length = 0.85 * static_cast<double>(t.text.size());
    const double along = t.horizontal == 1 ? 0.5 : t.horizontal == 2 ? 1 : 0;
    for (const double end : {-along * length, (1 - along) * length}) {
      for (const double side : {-0.3, 1.1}) grow(flat(a + x * end + y * side));
    }
  }

  Spot flat(const AcGePoint3d& p) const {
    if (!iso_) return {p.x, p.y};
    return {(p.x - p.y) / std::sqrt(2.0),
            (p.x + p.y) / std::sqrt(6.0) + p.z * std::sqrt(2.0 / 3.0)};
  }
  bool iso_ = false;
  double left_ = 0, top_ = 0;
};

}  // namespace cad::view
