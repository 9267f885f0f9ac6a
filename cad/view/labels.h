// Which of the texts beside symbols find room on a page, and where: one that would stand on another
// text or symbol, or be cut by the page's edge, moves to another side of its symbol, and is better
// left out than made unreadable with its neighbour when no side is free.
#pragma once

#include <algorithm>
#include <cstdint>
#include <unordered_set>
#include <vector>

#include "cad/api/export.h"

namespace cad::view {

// In dots of the page.
struct PageBox {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;

  // Holds nothing until it grows.
  static PageBox empty() { return {1e300, 1e300, -1e300, -1e300}; }
  bool isEmpty() const { return x1 > x2; }
  void grow(double x, double y) {
    *this = {std::min(x1, x), std::min(y1, y), std::max(x2, x), std::max(y2, y)};
  }
  void grow(const PageBox& box) {
    grow(box.x1, box.y1);
    grow(box.x2, box.y2);
  }
  double size() const { return std::max(x2 - x1, y2 - y1); }
};

struct PageLine {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};

// Whether any of the line lies in the box.
bool meets(const PageLine& line, const PageBox& box);

// The taken parts of a page, in a grid of cells. What a symbol takes is no obstacle to that symbol;
// 0 is nobody's.
class CAD_API PageRoom {
 public:
  PageRoom(double width, double height);
  PageRoom empty() const { return {width_, height_}; }  // as large, with nothing on it
  void take(const PageBox& box, std::uint32_t symbol = 0);
  void giveBack(std::uint32_t symbol) { gone_.insert(symbol); }
  // Whether nothing of it is taken, nor beyond the page.
  bool isFree(const PageBox& box, std::uint32_t symbol = 0) const;
  // Lines take no room, but what can stand beside them is read more easily.
  void cross(const PageLine& line, std::uint32_t symbol = 0);
  bool isCrossed(const PageBox& box, std::uint32_t symbol = 0) const;
  bool holds(double x, double y) const { return x >= 0 && y >= 0 && x <= width_ && y <= height_; }

 private:
  template <class Thing>
  struct Of {
    Thing thing;
    std::uint32_t symbol;
  };
  struct Cell {
    std::vector<Of<PageBox>> boxes;
    std::vector<Of<PageLine>> lines;
  };
  template <class Visit>
  bool visit(const PageBox& box, Visit&& visit) const;
  std::size_t cell(int column, int row) const;
  int column(double x) const;
  int row(double y) const;

  double width_, height_;
  int columns_, rows_;
  std::vector<Cell> cells_;
  std::unordered_set<std::uint32_t> gone_;  // those whose boxes count no more
};

struct Label {
  PageBox box;
  double height = 0;                  // of its letters
  std::uint32_t symbol = 0;           // the texts of one symbol follow each other, its name first
  std::uint32_t item = 0;             // whose it is, for the caller
  PageBox beside = PageBox::empty();  // the symbol; without it the label stays in place
  double moveX = 0, moveY = 0;        // to the place where it is shown
};

// Takes room for the labels that are shown, larger ones before smaller ones, names before what
// stands with them, and answers which those are and where. Without its name nothing of a symbol is
// shown; its texts keep together. They stay where they are drawn unless another side of the symbol
// is better: one that is free, and without lines.
std::vector<Label> placeLabels(std::vector<Label> labels, PageRoom& room);

}  // namespace cad::view
