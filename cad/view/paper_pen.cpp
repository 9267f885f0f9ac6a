#include "cad/view/paper_pen.h"

#include <cairo.h>

#include <algorithm>
#include <string>

#include "cad/view/placed.h"
#include "platform/text.h"

namespace cad::view {
namespace {

constexpr double kCapHeight = 0.73;  // of the em, in the fonts at hand
constexpr double kNarrowest = 0.65;  // of a text's own width
constexpr double kPi = 3.14159265358979323846;

double widthOf(cairo_t* cr, const std::string& text) {
  cairo_text_extents_t extents;
  cairo_text_extents(cr, text.c_str(), &extents);
  return extents.x_advance;
}

}  // namespace

PaperPen::PaperPen(cairo_t* cr) : cr_(cr) {
  // Letters take the same room at every resolution.
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  cairo_set_font_options(cr_, options);
  cairo_font_options_destroy(options);
}

void PaperPen::color(double red, double green, double blue) {
  cairo_set_source_rgb(cr_, red, green, blue);
}

void PaperPen::dashes(double length) { cairo_set_dash(cr_, &length, length > 0 ? 1 : 0, 0); }

void PaperPen::line(double x1, double y1, double x2, double y2, double width) {
  cairo_move_to(cr_, x1, y1);
  cairo_line_to(cr_, x2, y2);
  cairo_set_line_width(cr_, width);
  cairo_stroke(cr_);
}

void PaperPen::rectangle(const Box& box, double width) {
  cairo_rectangle(cr_, box.x, box.y, box.w, box.h);
  cairo_set_line_width(cr_, width);
  cairo_stroke(cr_);
}

void PaperPen::circle(double x, double y, double radius, double width) {
  cairo_arc(cr_, x, y, radius, 0, 2 * kPi);
  cairo_set_line_width(cr_, width);
  cairo_stroke(cr_);
}

void PaperPen::fill(const Box& box) {
  cairo_rectangle(cr_, box.x, box.y, box.w, box.h);
  cairo_fill(cr_);
}

void PaperPen::path(const std::vector<AcGePoint2d>& corners) {
  for (const AcGePoint2d& p : corners) cairo_line_to(cr_, p.x, p.y);
  cairo_close_path(cr_);
}

void PaperPen::fill(const std::vector<AcGePoint2d>& corners) {
  path(corners);
  cairo_fill(cr_);
}

void PaperPen::outline(const std::vector<AcGePoint2d>& corners, double width) {
  path(corners);
  cairo_set_line_width(cr_, width);
  cairo_stroke(cr_);
}

void PaperPen::swatch(const Box& box, const Shade& shade) {
  color(shade.red, shade.green, shade.blue);
  fill(box);
  color(0, 0, 0);
  rectangle(box, 0.1);
}

void PaperPen::text(std::u16string_view wide, const PaperText& how, double room) {
  std::string text = platform::narrow(wholeCharacters(std::u16string(wide)));
  if (text.empty()) return;
  cairo_save(cr_);
  cairo_new_path(cr_);
  cairo_select_font_face(cr_, "sans", CAIRO_FONT_SLANT_NORMAL,
                         how.strong ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cr_, how.height / kCapHeight);
  double width = widthOf(cr_, text), narrow = 1;
  if (room > 0 && width > room) {
    std::u16string rest(wide);
    while (rest.size() > 1 && width * kNarrowest > room) {
      rest.pop_back();
      text = platform::narrow(wholeCharacters(rest) + u"…");
      width = widthOf(cr_, text);
    }
    narrow = std::min(1.0, room / width);
  }
  cairo_translate(cr_, how.x, how.y);
  cairo_rotate(cr_, how.turn * kPi / 180);
  cairo_scale(cr_, narrow, 1);
  const double x = how.across == PaperText::center ? -width / 2 : 0;
  if (how.halo) {
    cairo_set_source_rgb(cr_, 1, 1, 1);
    const double edge = how.height * 0.3;
    cairo_rectangle(cr_, x - edge, -how.height / 2 - edge, width + 2 * edge, how.height + 2 * edge);
    cairo_fill(cr_);
    cairo_set_source_rgb(cr_, 0, 0, 0);
  }
  cairo_move_to(cr_, x, how.height / 2);
  cairo_show_text(cr_, text.c_str());
  cairo_restore(cr_);
}

}  // namespace cad::view
