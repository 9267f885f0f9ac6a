#include "cad/view/paper_texts.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "cad/view/labels.h"
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

}  // namespace

int raiseTexts(Picture& picture, double least) {
  std::vector<bool> low(picture.items.size());
  for (std::size_t i = 0; i < picture.items.size(); ++i) {
    const Item& item = picture.items[i];
    const double height = item.kind == Kind::text ? heightOf(picture, item) : 0;
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
    if (item.kind != Kind::text || low[i]) continue;
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
