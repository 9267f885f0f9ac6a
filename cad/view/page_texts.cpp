#include "cad/view/page_texts.h"

#include <algorithm>
#include <cmath>

#include "platform/text.h"

namespace cad::view {
namespace {

constexpr double kCapHeight = 0.73;    // of the em, in the fonts at hand
constexpr double kLargestText = 1e12;  // square pixels of an em

}  // namespace

std::u16string wholeCharacters(std::u16string text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((text[i] & 0xF800) != 0xD800) continue;
    const bool pair = text[i] < 0xDC00 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
    if (pair) {
      ++i;
    } else {
      text[i] = u'\uFFFD';
    }
  }
  return text;
}

std::optional<SetText> PageTexts::set(const Item& item, double least) const {
  const AcGePoint3d* const points = picture_.points.data() + item.first;
  const Spot a = at_(points[0]), b = at_(points[1]), c = at_(points[2]);
  const Spot x{b.x - a.x, b.y - a.y}, y{c.x - a.x, c.y - a.y};
  SetText set;
  set.height = std::hypot(y.x, y.y);
  if (set.height < least || a.x < -2000 || a.y < -2000 || a.x > at_.width + 2000 ||
      a.y > at_.height + 2000) {
    return std::nullopt;
  }
  const Text& t = picture_.texts[item.text];
  const double lean = std::tan(t.oblique);
  cairo_matrix_t& m = set.matrix;
  cairo_matrix_init(&m, x.x / kCapHeight, x.y / kCapHeight, -(y.x + x.x * lean) / kCapHeight,
                    -(y.y + x.y * lean) / kCapHeight, 0, 0);
  // Seen from its edge, or of a size that no number holds.
  const double area = std::fabs(m.xx * m.yy - m.xy * m.yx);
  if (!(area >= 1e-6 && area < kLargestText)) return std::nullopt;
  cairo_set_font_matrix(cr_, &m);
  set.utf8 = platform::narrow(wholeCharacters(t.text));
  cairo_text_extents_t extents;
  cairo_text_extents(cr_, set.utf8.c_str(), &extents);
  const double along = t.horizontal == 1 ? 0.5 : t.horizontal == 2 ? 1 : 0;
  const double up = t.vertical == 1 ? -0.25 : t.vertical == 2 ? 0.5 : t.vertical == 3 ? 1 : 0;
  set.at = {a.x - extents.x_advance * along - y.x * up, a.y - extents.y_advance * along - y.y * up};
  // As far below as letters hang, but not so far that lines of text would touch.
  const double hang = std::clamp((extents.y_bearing + extents.height) / set.height, 0.05, 0.25);
  set.box = PageBox::empty();
  for (const double end : {0.0, 1.0}) {
    for (const double side : {-hang, 1.05}) {
      set.box.grow(set.at.x + extents.x_advance * end + y.x * side,
                   set.at.y + extents.y_advance * end + y.y * side);
    }
  }
  return set;
}

}  // namespace cad::view
