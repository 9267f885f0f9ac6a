// Texts of a picture as they stand on a page, by the letters of its font.
#pragma once

#include <cairo.h>

#include <optional>
#include <string>

#include "cad/view/labels.h"
#include "cad/view/projection.h"

namespace cad::view {

// Texts whose letters are lower than so many dots are dust.
inline constexpr double kSmallestText = 1.6;

// A text ready to be shown.
struct SetText {
  std::string utf8;
  cairo_matrix_t matrix;
  Spot at;
  double height;  // of its letters, in dots
  PageBox box;
};

class PageTexts {
 public:
  PageTexts(cairo_t* cr, const Picture& picture, const Projection& at)
      : cr_(cr), picture_(picture), at_(at) {}

  // Nothing for one that is off the page, smaller than `least` dots or seen from its edge.
  std::optional<SetText> set(const Item& item, double least) const;

 private:
  cairo_t* cr_;
  const Picture& picture_;
  const Projection& at_;
};

}  // namespace cad::view
