#include "cad/view/paper_texts.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "cad/view/labels.h"
#include "cad/view/page_labels.h"
#include "cad/view/placed.h"

namespace cad::view {
namespace {

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

// The texts of one symbol grow about it, so that they keep their distance from it and from each
// other. A text that stands far from its symbol, or at something that is larger than a symbol,
// stays where it is.
class LabelRaiser {
 public:
  LabelRaiser(Picture& picture, double least) : picture_(picture), least_(least) {}

  void run() {
    for (Item& item : picture_.items) {
      if (item.entity != entity_) {
        entity_ = item.entity;
        symbol_ = PageBox::empty();
        factor_ = 0;
      }
      if (item.symbol && item.kind != Kind::text) grow(item);
      if (item.label && item.kind == Kind::text && !item.table && !symbol_.isEmpty()) raise(item);
    }
  }

 private:
  void grow(const Item& item) {
    for (std::uint32_t i = 0; i < item.count; ++i) {
      const AcGePoint3d& p = picture_.points[item.first + i];
      symbol_.grow(p.x, p.y);
    }
  }

  void raise(Item& item) {
    const double height = heightOf(picture_, item);
    if (!(height > 0)) return;
    // The name says how much.
    if (factor_ == 0) factor_ = std::max(1.0, least_ / height);
    const auto box = boundsOf(picture_, item);
    if (factor_ == 1 || !box || !standsAt({box->x1, box->y1, box->x2, box->y2}, symbol_, height)) {
      return;
    }
    AcGePoint3d* const points = picture_.points.data() + item.first;
    const AcGePoint3d centre((symbol_.x1 + symbol_.x2) / 2, (symbol_.y1 + symbol_.y2) / 2,
                             points->z);
    for (std::uint32_t i = 0; i < item.count; ++i) {
      points[i] = centre + (points[i] - centre) * factor_;
    }
    if (height * factor_ < least_) enlarge(picture_, item, least_ / (height * factor_));
    item.follows = true;
  }

  Picture& picture_;
  const double least_;
  std::uint32_t entity_ = 0;
  PageBox symbol_ = PageBox::empty();
  double factor_ = 0;
};

}  // namespace

int raiseTexts(Picture& picture, double least) {
  LabelRaiser(picture, least).run();
  std::vector<bool> low(picture.items.size());
  for (std::size_t i = 0; i < picture.items.size(); ++i) {
    const Item& item = picture.items[i];
    const bool own = item.kind == Kind::text && !item.follows;
    const double height = own ? heightOf(picture, item) : 0;
    low[i] = height > 0 && height < least * (1 - 1e-9);
    if (low[i]) enlarge(picture, item, least / height);
  }
  const auto all = boundsOf(picture);
  if (!all) return 0;
  // Some dots to a text, of which the room's cells hold a few.
  const double dots = 10 / least;
  PageRoom room((all->x2 - all->x1) * dots, (all->y2 - all->y1) * dots);
  const auto boxOf = [&](const Item& item) -> std::optional<PageBox> {
    const auto box = boundsOf(picture, item);
    if (!box) return std::nullopt;
    return PageBox{(box->x1 - all->x1) * dots, (box->y1 - all->y1) * dots,
                   (box->x2 - all->x1) * dots, (box->y2 - all->y1) * dots};
  };
  for (std::size_t i = 0; i < picture.items.size(); ++i) {
    const Item& item = picture.items[i];
    if (item.kind != Kind::text || low[i] || item.follows) continue;
    if (const auto box = boxOf(item)) room.take(*box);
  }
  int leftOut = 0;
  std::uint32_t nameless = 0;  // the entity whose latest text has been left out
  std::size_t i = 0;
  std::erase_if(picture.items, [&](const Item& item) {
    if (!low[i++]) return false;
    const auto box = boxOf(item);
    // What stands under a name says nothing without it.
    const bool follows = item.entity != 0 && item.entity == nameless;
    if (!follows && (!box || room.isFree(*box))) {
      if (box) room.take(*box);
      return false;
    }
    nameless = item.entity;
    ++leftOut;
    return true;
  });
  return leftOut;
}

}  // namespace cad::view
