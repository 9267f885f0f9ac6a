#include "cad/view/page_labels.h"

#include <cmath>

namespace cad::view {
namespace {

constexpr double kSmallFill = 5;       // dots: what is smaller hides nothing
constexpr double kLargeSymbol = 60;    // from there on something is no symbol or part of one,
constexpr double kSymbolToLabel = 12;  // but beside letters that are large themselves; in heights
constexpr double kFar = 3;             // of these
constexpr double kReach = 16;          // of a label beyond its letters, in their heights
constexpr double kAir = 0.15;          // before and after a label, in heights of its letters

}  // namespace

PageBox boxOnPage(const Picture& picture, const Item& item, const Projection& at) {
  PageBox box = PageBox::empty();
  for (std::uint32_t i = 0; i < item.count; ++i) {
    const Spot s = at(picture.points[item.first + i]);
    box.grow(s.x, s.y);
  }
  return box;
}

bool isCut(const PageBox& box, const Projection& page) {
  const bool inside = box.x1 >= 0 && box.y1 >= 0 && box.x2 <= page.width && box.y2 <= page.height;
  return !inside && box.x2 - box.x1 < page.width / 2 && box.y2 - box.y1 < page.height / 2;
}

std::vector<Label> PageLabels::place(LabelsSeen* seen) {
  std::vector<Label> labels = wanted();
  if (labels.empty()) return labels;
  anchor(labels);
  // A name belongs to the page that shows its symbol.
  std::erase_if(labels, [&](const Label& label) {
    const PageBox& box = label.beside.isEmpty() ? label.box : label.beside;
    const bool here = room_.holds((box.x1 + box.x2) / 2, (box.y1 + box.y2) / 2);
    if (seen && here) seen->wanted[label.item] = true;
    return !here && !label.beside.isEmpty();
  });
  double highest = 0;
  for (const Label& label : labels) highest = std::max(highest, label.height);
  takeRoom(std::max(kLargeSymbol, kSymbolToLabel * highest));
  return placeLabels(std::move(labels), room_);
}

std::vector<Label> PageLabels::wanted() const {
  std::vector<Label> labels;
  for (std::uint32_t i = 0; i < p_.items.size(); ++i) {
    const Item& item = p_.items[i];
    if (!item.label || item.table || item.kind != Kind::text || isFar(item)) continue;
    const auto set = texts_.set(item, least_);
    if (!set) continue;
    Label& label = labels.emplace_back();
    const double air = kAir * set->height;
    label.box = {set->box.x1 - air, set->box.y1, set->box.x2 + air, set->box.y2};
    label.height = set->height;
    label.symbol = item.entity;
    label.item = i;
  }
  return labels;
}

// Whether neither a text nor its symbol can be on the page, without asking for its letters.
bool PageLabels::isFar(const Item& item) const {
  const AcGePoint3d* const points = p_.points.data() + item.first;
  const Spot a = at_(points[0]), up = at_(points[2]);
  const double reach = std::hypot(up.x - a.x, up.y - a.y) *
                       (static_cast<double>(p_.texts[item.text].text.size()) + kReach);
  return a.x < -reach || a.y < -reach || a.x > at_.width + reach || a.y > at_.height + reach;
}

// Somebody who puts a text far from its symbol wants it there; frames and the like have no sides.
bool standsAt(const PageBox& text, const PageBox& symbol, double height) {
  const double far = kFar * height;
  return symbol.size() <= kSymbolToLabel * height && text.x1 < symbol.x2 + far &&
         symbol.x1 < text.x2 + far && text.y1 < symbol.y2 + far && symbol.y1 < text.y2 + far;
}

// What an entity draws follows each other, its symbol before its labels.
void PageLabels::anchor(std::vector<Label>& labels) const {
  for (Label& label : labels) {
    if (&label != labels.data() && (&label)[-1].symbol == label.symbol) {
      label.beside = (&label)[-1].beside;
      continue;
    }
    for (std::uint32_t i = label.item; i-- > 0 && p_.items[i].entity == label.symbol;) {
      const Item& item = p_.items[i];
      if (item.symbol && item.kind != Kind::text) label.beside.grow(boxOnPage(p_, item, at_));
    }
    if (!standsAt(label.box, label.beside, label.height)) label.beside = PageBox::empty();
  }
}

void PageLabels::takeRoom(double largestSymbol) {
  for (std::size_t i = 0; i < p_.items.size();) {
    const Item& first = p_.items[i];
    if (first.symbol && !first.table) {
      PageBox symbol = PageBox::empty();
      for (; i < p_.items.size() && p_.items[i].symbol && p_.items[i].entity == first.entity; ++i) {
        const Item& item = p_.items[i];
        if (item.kind != Kind::text) symbol.grow(boxOnPage(p_, item, at_));
        if (item.kind == Kind::line) takeLines(item);
      }
      if (!symbol.isEmpty() && symbol.size() <= largestSymbol) room_.take(symbol, first.entity);
      continue;
    }
    const Item& item = p_.items[i++];
    if (item.kind == Kind::text && !item.label && !item.table) {
      if (const auto set = texts_.set(item, kSmallestText)) room_.take(set->box);
    } else if (item.kind == Kind::line && !item.table) {
      takeLines(item);
    } else if (item.kind == Kind::fill && (item.ground || !item.table)) {
      const PageBox box = boxOnPage(p_, item, at_);
      const bool dark = box.size() >= kSmallFill && box.size() <= largestSymbol;
      if (item.ground ? !isCut(box, at_) : dark) room_.take(box);
    }
  }
}

void PageLabels::takeLines(const Item& item) {
  Spot before = at_(p_.points[item.first]);
  const auto to = [&](std::uint32_t i) {
    const Spot s = at_(p_.points[item.first + i]);
    room_.cross({before.x, before.y, s.x, s.y}, item.entity);
    before = s;
  };
  for (std::uint32_t i = 1; i < item.count; ++i) to(i);
  if (item.closed && item.count > 1) to(0);
}

}  // namespace cad::view
