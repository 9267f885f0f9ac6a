#include "cad/view/paper_texts.h"

#include <cmath>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "cad/view/placed.h"

namespace cad::view {
namespace {

// Boxes of texts by the cells that they touch.
class Taken {
 public:
  explicit Taken(double cell) : cell_(cell) {}

  // False when the box would lie on another one; else it is taken.
  bool take(const Window& box) {
    const bool free = eachCell(box, [&](std::vector<Window>& cell) {
      for (const Window& other : cell) {
        if (box.x1 < other.x2 && other.x1 < box.x2 && box.y1 < other.y2 && other.y1 < box.y2) {
          return false;
        }
      }
      return true;
    });
    if (free) add(box);
    return free;
  }
  void add(const Window& box) {
    eachCell(box, [&](std::vector<Window>& cell) {
      cell.push_back(box);
      return true;
    });
  }

 private:
  template <class Visit>
  bool eachCell(const Window& box, Visit&& visit) {
    const auto place = [&](double v) { return static_cast<std::int64_t>(std::floor(v / cell_)); };
    // A text of a thousand cells is no label beside others.
    if ((box.x2 - box.x1) * (box.y2 - box.y1) > 1000 * cell_ * cell_) return true;
    for (std::int64_t x = place(box.x1); x <= place(box.x2); ++x) {
      for (std::int64_t y = place(box.y1); y <= place(box.y2); ++y) {
        if (!visit(cells_[static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15U ^
                          static_cast<std::uint64_t>(y)])) {
          return false;
        }
      }
    }
    return true;
  }
  double cell_;
  std::unordered_map<std::uint64_t, std::vector<Window>> cells_;
};

double heightOf(const Picture& picture, const Item& item) {
  const AcGeVector3d up = picture.points[item.first + 2] - picture.points[item.first];
  return std::hypot(up.x, up.y);
}

void enlarge(Picture& picture, const Item& item, double factor) {
  const AcGePoint3d at = picture.points[item.first];
  for (const std::uint32_t i : {item.first + 1, item.first + 2}) {
    picture.points[i] = at + (picture.points[i] - at) * factor;
  }
}

}  // namespace

int raiseTexts(Picture& picture, double least) {
  Taken taken(least * 8);
  const auto isText = [](const Item& item) { return item.kind == Kind::text; };
  for (const Item& item : picture.items) {
    if (!isText(item) || heightOf(picture, item) < least * (1 - 1e-9)) continue;
    if (const auto box = boundsOf(picture, item)) taken.add(*box);
  }
  int leftOut = 0;
  std::uint32_t nameless = 0;  // the entity whose latest text has been left out
  std::erase_if(picture.items, [&](const Item& item) {
    const double height = isText(item) ? heightOf(picture, item) : least;
    if (!(height < least * (1 - 1e-9)) || height <= 0) return false;
    enlarge(picture, item, least / height);
    const auto box = boundsOf(picture, item);
    // What stands under a name says nothing without it.
    const bool follows = item.entity != 0 && item.entity == nameless;
    if (!follows && (!box || taken.take(*box))) return false;
    nameless = item.entity;
    ++leftOut;
    return true;
  });
  return leftOut;
}

}  // namespace cad::view
