// Symbols that are too small on a page for their colour to be told.
#pragma once

#include <cstdint>
#include <vector>

#include "cad/view/projection.h"

namespace cad::view {

// Where each of them is to be shown as a dot instead, so that a plan of thousands of nodes still
// says of what class each is. Dots are as large as the number of symbols on the page lets them be
// without covering it.
class SmallSymbols {
 public:
  SmallSymbols(const Picture& picture, const Projection& at);

  struct Dot {
    Spot at;
    std::uint32_t item;  // the first of the symbol's parts, whose pen is its colour
  };
  const std::vector<Dot>& dots() const { return dots_; }
  double size() const { return size_; }  // of a dot, across
  // Whether an item is part of one of them.
  bool hold(std::size_t item) const { return !parts_.empty() && parts_[item]; }

 private:
  std::vector<Dot> dots_;
  std::vector<bool> parts_;
  double size_ = 0;
};

}  // namespace cad::view
