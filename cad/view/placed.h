// Pictures on a part of a page, for the painters of this folder.
#pragma once

#include <optional>
#include <vector>

#include "cad/view/painter.h"

typedef struct _cairo cairo_t;

namespace cad::view {

// Dots of the painter to a millimetre of paper: line weights are drawn with so many.
inline constexpr double kDotsPerMillimetre = 4;

// Where a point of the plan falls: `left`, `top` in the drawing is the origin of the page's part,
// whose size is in dots, Y downward.
struct Placement {
  double left = 0, top = 0;
  double scale = 1;  // dots to a drawing unit
  double width = 1, height = 1;
  double thinnest = 1;  // line, in dots
};

// Which texts beside symbols the pages had to show, and which found room on one; by item.
struct LabelsSeen {
  explicit LabelsSeen(const Picture& picture)
      : wanted(picture.items.size()), shown(picture.items.size()) {}
  std::vector<bool> wanted, shown;
};

// Paints the plan, without a ground; what lies beyond the part is for the caller to clip.
void paintPlaced(cairo_t* cr, const Picture& picture, const Placement& placement, LabelsSeen& seen);

// A colour as it is painted on white paper, where the lightest cannot be told from the ground, or
// on a dark ground.
struct Shade {
  double red = 0, green = 0, blue = 0;
};
Shade shownOn(const Color& color, bool dark);

// The text without halves of characters, which a file may hold and no font has: one of them would
// end the whole picture.
std::u16string wholeCharacters(std::u16string text);

// What one item covers in plan; nothing for an endless line or one that no number holds.
std::optional<Window> boundsOf(const Picture& picture, const Item& item);
// What everything covers.
std::optional<Window> boundsOf(const Picture& picture);

}  // namespace cad::view
