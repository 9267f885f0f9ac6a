// Lines, areas and texts on paper, in millimetres.
#pragma once

#include <string_view>
#include <vector>

#include "cad/view/placed.h"
#include "cad/view/sheet_frame.h"

typedef struct _cairo cairo_t;

namespace cad::view {

// How a text stands at its point, which is in the middle of its height.
struct PaperText {
  enum Across { left, center };
  double x = 0, y = 0;
  double height = 2;  // of capital letters
  Across across = left;
  double turn = 0;    // degrees, clockwise
  bool halo = false;  // on white, where it stands on lines
  bool strong = false;
};

class PaperPen {
 public:
  explicit PaperPen(cairo_t* cr);

  void color(double red, double green, double blue);
  // Dashes of a length; 0 for a plain line.
  void dashes(double length);
  void line(double x1, double y1, double x2, double y2, double width);
  void rectangle(const Box& box, double width);
  void circle(double x, double y, double radius, double width);
  void fill(const Box& box);
  void fill(const std::vector<AcGePoint2d>& corners);
  void outline(const std::vector<AcGePoint2d>& corners, double width);
  // A filled box with a thin edge, in a colour of its own.
  void swatch(const Box& box, const Shade& shade);
  // Within `room` when that is positive: a longer text is made narrower, and cut at the end where
  // it would get too narrow to be read.
  void text(std::u16string_view text, const PaperText& how, double room = 0);

 private:
  void path(const std::vector<AcGePoint2d>& corners);
  cairo_t* cr_;
};

}  // namespace cad::view
