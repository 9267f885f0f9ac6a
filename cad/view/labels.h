// Which of the texts beside symbols find room on a page: one that would stand on another text, or
// be cut by the page's edge, is better left out than made unreadable with its neighbour.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace cad::view {

// In dots of the page.
struct PageBox {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;

  // Holds nothing until it grows.
  static PageBox empty() { return {1e300, 1e300, -1e300, -1e300}; }
  void grow(double x, double y) {
    *this = {std::min(x1, x), std::min(y1, y), std::max(x2, x), std::max(y2, y)};
  }
};

// The taken parts of a page, in a grid of cells.
class PageRoom {
 public:
  PageRoom(double width, double height);
  void take(const PageBox& box);
  // Whether nothing of it is taken, nor beyond the page.
  bool isFree(const PageBox& box) const;

 private:
  template <class Visit>
  bool visit(const PageBox& box, Visit&& visit) const;

  double width_, height_;
  int columns_, rows_;
  std::vector<std::vector<PageBox>> cells_;
};

struct Label {
  PageBox box;
  double height = 0;         // of its letters
  std::uint32_t symbol = 0;  // the texts of one symbol follow each other, its name first
  std::uint32_t item = 0;    // whose it is, for the caller
};

// Takes room for the labels that are shown, larger ones before smaller ones, names before what
// stands with them, and answers which those are. Without its name nothing of a symbol is shown.
std::vector<Label> placeLabels(std::vector<Label> labels, PageRoom& room);

}  // namespace cad::view
