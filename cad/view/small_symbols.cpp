#include "cad/view/small_symbols.h"

#include <algorithm>
#include <cmath>

#include "cad/view/page_labels.h"

namespace cad::view {
namespace {

constexpr double kTold = 5;         // dots across: the colour of what is smaller cannot be told
constexpr double kCovering = 0.06;  // the part of a page that its symbols may cover

// The parts of a symbol follow each other.
struct Symbol {
  std::size_t first, end;
  PageBox box;
};

std::vector<Symbol> symbolsOn(const Picture& picture, const Projection& at) {
  std::vector<Symbol> symbols;
  for (std::size_t i = 0; i < picture.items.size();) {
    const Item& first = picture.items[i];
    Symbol symbol{i, ++i, PageBox::empty()};
    if (!first.symbol || first.table) continue;
    const auto grow = [&](const Item& item) {
      if (item.kind != Kind::text) symbol.box.grow(boxOnPage(picture, item, at));
    };
    grow(first);
    for (; i < picture.items.size() && picture.items[i].symbol &&
           picture.items[i].entity == first.entity;
         ++i) {
      grow(picture.items[i]);
    }
    symbol.end = i;
    const PageBox& b = symbol.box;
    if (b.x2 >= 0 && b.y2 >= 0 && b.x1 <= at.width && b.y1 <= at.height) symbols.push_back(symbol);
  }
  return symbols;
}

}  // namespace

SmallSymbols::SmallSymbols(const Picture& picture, const Projection& at) {
  const std::vector<Symbol> symbols = symbolsOn(picture, at);
  const double room = kCovering * at.width * at.height / static_cast<double>(symbols.size());
  size_ = std::min(kTold, std::sqrt(room));
  for (const Symbol& symbol : symbols) {
    if (symbol.box.size() >= size_) continue;
    parts_.resize(picture.items.size());
    std::fill(parts_.begin() + static_cast<std::ptrdiff_t>(symbol.first),
              parts_.begin() + static_cast<std::ptrdiff_t>(symbol.end), true);
    dots_.push_back({{(symbol.box.x1 + symbol.box.x2) / 2, (symbol.box.y1 + symbol.box.y2) / 2},
                     static_cast<std::uint32_t>(symbol.first)});
  }
}

}  // namespace cad::view
