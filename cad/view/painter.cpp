#include "cad/view/painter.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <vector>

#include "cad/view/page_labels.h"
#include "cad/view/page_texts.h"
#include "cad/view/placed.h"
#include "cad/view/projection.h"
#include "cad/view/small_symbols.h"

namespace cad::view {
namespace {

constexpr double kSmallestLabel = 5;  // below that nobody reads what stands beside a symbol
constexpr double kSmallFill = 60;     // from there on it is no part of a symbol

cairo_status_t append(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

// The same picture is the same file, whenever it was made.
void withoutTime(cairo_surface_t* pdf) {
  cairo_pdf_surface_set_metadata(pdf, CAIRO_PDF_METADATA_CREATE_DATE, "");
}

class Painter {
 public:
  Painter(cairo_t* cr, const Picture& picture, const PaintOptions& options, const Projection& at,
          LabelsSeen* seen = nullptr)
      : cr_(cr),
        p_(picture),
        o_(options),
        at_(at),
        texts_(cr, picture, at),
        small_(picture, at),
        seen_(seen) {}

  void ground() {
    groundColor();
    cairo_paint(cr_);
  }

  void run() {
    cairo_set_line_join(cr_, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_cap(cr_, CAIRO_LINE_CAP_ROUND);
    cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_tolerance(cr_, 0.25);
    cairo_select_font_face(cr_, "sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    std::size_t loops = 0;
    for (const Item& item : p_.items) {
      loops_.push_back(loops);
      loops += item.loops;
    }
    paint(0, p_.items.size(), 0);
    labels();
    // The parts of a table follow each other.
    for (std::size_t i = 0; i < p_.items.size();) {
      const std::size_t first = i;
      const std::uint32_t table = p_.items[i].table;
      while (i < p_.items.size() && p_.items[i].table == table) ++i;
      if (!table) continue;
      const Item& ground = p_.items[i - 1];
      if (!ground.ground || !isCut(boxOf(ground), at_)) paint(first, i, table);
    }
  }

  // Texts on the page that are not among the labels shown, or too low.
  std::size_t unread(const LabelsSeen& seen) const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < p_.items.size(); ++i) {
      const Item& item = p_.items[i];
      if (item.kind != Kind::text) continue;
      const Spot at = spot(item.first), up = spot(item.first + 2);
      if (at.x < 0 || at.y < 0 || at.x > at_.width || at.y > at_.height) continue;
      const bool label = item.label && !item.table;
      count += label ? !seen.shown[i] : std::hypot(up.x - at.x, up.y - at.y) < least();
    }
    return count;
  }

 private:
  double least() const { return o_.format == Format::png ? kSmallestLabel : kSmallestText; }

  void groundColor() {
    o_.dark ? cairo_set_source_rgb(cr_, 0.13, 0.14, 0.16) : cairo_set_source_rgb(cr_, 1, 1, 1);
    haveColor_ = false;
  }

  // Items of one table, or of none, but for labels. Surfaces lie under lines, and texts over both.
  void paint(std::size_t first, std::size_t end, std::uint32_t table) {
    for (std::size_t i = first; i < end; ++i) {
      if (!p_.items[i].ground || p_.items[i].table != table) continue;
      groundColor();
      fill(p_.items[i], loops_[i]);
    }
    for (const Kind kind : {Kind::fill, Kind::line, Kind::dot, Kind::text}) {
      for (std::size_t i = first; i < end; ++i) {
        const Item& item = p_.items[i];
        if (item.kind != kind || item.table != table || item.ground) continue;
        if (kind != Kind::text && small_.hold(i)) continue;
        if (kind == Kind::text && item.label && !table) continue;
        source(item.pen);
        if (kind == Kind::fill) fill(item, loops_[i]);
        if (kind == Kind::line) line(item);
        if (kind == Kind::dot) dot(item);
        if (kind == Kind::text) text(item);
      }
      if (kind == Kind::dot && !table) smallSymbols();
    }
  }

  // The texts of symbols that find room. Lines under them stop short of their letters.
  void labels() {
    for (const Label& label : PageLabels(p_, texts_, at_, least()).place(seen_)) {
      text(p_.items[label.item], &label);
      if (seen_) seen_->shown[label.item] = true;
    }
  }

  PageBox boxOf(const Item& item) const { return boxOnPage(p_, item, at_); }
  Spot spot(std::uint32_t i) const { return at_(p_.points[i]); }

  void source(const Pen& pen) {
    Color c = pen.index < 0 ? pen.exact : indexedColor(pen.index, o_.dark);
    if (haveColor_ && c == color_) return;
    color_ = c;
    haveColor_ = true;
    const Shade shade = shownOn(c, o_.dark);
    cairo_set_source_rgb(cr_, shade.red, shade.green, shade.blue);
  }

  bool outside(const Item& item) const {
    const PageBox box = boxOf(item);
    return box.x2 < -50 || box.y2 < -50 || box.x1 > at_.width + 50 || box.y1 > at_.height + 50;
  }

  void fill(const Item& item, std::size_t loop) {
    if (outside(item)) return;
    std::uint32_t i = item.first;
    for (std::uint32_t n = 0; n < item.loops; ++n) {
      const std::uint32_t end = i + p_.loopSizes[loop + n];
      for (bool first = true; i < end; ++i, first = false) {
        const Spot s = spot(i);
        first ? cairo_move_to(cr_, s.x, s.y) : cairo_line_to(cr_, s.x, s.y);
      }
      cairo_close_path(cr_);
    }
    cairo_fill(cr_);
  }

  void line(const Item& item) {
    if (outside(item)) return;
    const double wide = std::max(at_.thinnest, item.pen.weight * kDotsPerMillimetre);
    cairo_set_line_width(cr_, wide);
    Spot before = spot(item.first);
    cairo_move_to(cr_, before.x, before.y);
    bool drawn = false;
    for (std::uint32_t i = 1; i < item.count; ++i) {
      const Spot s = spot(item.first + i);
      // Steps that nobody can see only cost time; the last point is always reached.
      if (i + 1 < item.count && std::fabs(s.x - before.x) + std::fabs(s.y - before.y) < 0.3)
        continue;
      cairo_line_to(cr_, s.x, s.y);
      before = s;
      drawn = true;
    }
    if (item.closed && drawn) cairo_close_path(cr_);
    dash(item.pen);
    cairo_stroke(cr_);
  }

  void dash(const Pen& pen) {
    if (pen.linetype < 0) {
      if (dashed_) cairo_set_dash(cr_, nullptr, 0, 0);
      dashed_ = false;
      return;
    }
    std::vector<double> lengths;
    double whole = 0;
    for (const double d : p_.linetypes[static_cast<std::size_t>(pen.linetype)]) {
      lengths.push_back(
          std::max(std::fabs(d) * pen.linetypeScale * at_.scale, d == 0 ? 0.01 : 0.0));
      whole += lengths.back();
    }
    if (lengths.size() % 2) lengths.pop_back();
    // A pattern too fine to be seen is a plain line; at this scale a dotted one would be a grey
    // veil.
    dashed_ = whole >= 4 && !lengths.empty();
    cairo_set_dash(cr_, lengths.data(), dashed_ ? static_cast<int>(lengths.size()) : 0, 0);
  }

  void smallSymbols() {
    for (const SmallSymbols::Dot& dot : small_.dots()) {
      source(p_.items[dot.item].pen);
      cairo_arc(cr_, dot.at.x, dot.at.y, small_.size() / 2, 0, 6.2832);
      cairo_fill(cr_);
    }
  }

  void dot(const Item& item) {
    const Spot s = spot(item.first);
    cairo_arc(cr_, s.x, s.y, 1.2, 0, 6.2832);
    cairo_fill(cr_);
  }

  // A label stands where it found room, in a halo.
  void text(const Item& item, const Label* label = nullptr) {
    auto set = texts_.set(item, kSmallestText);
    if (!set) return;
    cairo_set_font_matrix(cr_, &set->matrix);
    if (label) {
      set->at.x += label->moveX;
      set->at.y += label->moveY;
      cairo_move_to(cr_, set->at.x, set->at.y);
      cairo_text_path(cr_, set->utf8.c_str());
      groundColor();
      if (dashed_) cairo_set_dash(cr_, nullptr, 0, 0);
      dashed_ = false;
      cairo_set_line_width(cr_, std::clamp(set->height / 4, 1.5, 5.0));
      cairo_stroke(cr_);
      source(item.pen);
    }
    cairo_move_to(cr_, set->at.x, set->at.y);
    cairo_show_text(cr_, set->utf8.c_str());
  }

  cairo_t* cr_;
  const Picture& p_;
  const PaintOptions& o_;
  const Projection& at_;
  const PageTexts texts_;
  const SmallSymbols small_;
  LabelsSeen* seen_;  // where to note the labels, if anywhere
  Color color_;
  bool haveColor_ = false, dashed_ = false;
  std::vector<std::size_t> loops_;  // of each item: its first number in Picture::loopSizes
};

}  // namespace

bool isEmpty(const Picture& picture) { return picture.items.empty(); }

void paintPlaced(cairo_t* cr, const Picture& picture, const Placement& placement,
                 LabelsSeen& seen) {
  Painter(cr, picture, {}, Projection(placement), &seen).run();
}

std::optional<Window> boundsOf(const Picture& picture, const Item& item) {
  Window box{1e300, 1e300, -1e300, -1e300};
  Projection(Placement()).growItem(picture, item, [&](Spot s) {
    box = {std::min(box.x1, s.x), std::min(box.y1, s.y), std::max(box.x2, s.x),
           std::max(box.y2, s.y)};
  });
  return box.x1 <= box.x2 ? std::optional(box) : std::nullopt;
}

std::optional<Window> boundsOf(const Picture& picture) {
  std::optional<Window> all;
  for (const Item& item : picture.items) {
    const auto box = boundsOf(picture, item);
    if (!box) continue;
    if (!all) all = *box;
    *all = {std::min(all->x1, box->x1), std::min(all->y1, box->y1), std::max(all->x2, box->x2),
            std::max(all->y2, box->y2)};
  }
  return all;
}

platform::Result<std::string> paint(const Picture& picture, const PaintOptions& options,
                                    std::size_t* unread) {
  const Projection at(picture, options);
  std::string bytes;
  cairo_surface_t* made = nullptr;
  switch (options.format) {
    case Format::png:
      made = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(at.width),
                                        static_cast<int>(at.height));
      break;
    case Format::svg:
      made = cairo_svg_surface_create_for_stream(append, &bytes, at.width, at.height);
      break;
    case Format::pdf:
      made = cairo_pdf_surface_create_for_stream(append, &bytes, at.width, at.height);
      withoutTime(made);
      break;
  }
  const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface(made,
                                                                             cairo_surface_destroy);
  {
    const std::unique_ptr<cairo_t, void (*)(cairo_t*)> cr(cairo_create(surface.get()),
                                                          cairo_destroy);
    LabelsSeen seen(picture);
    Painter painter(cr.get(), picture, options, at, &seen);
    painter.ground();
    painter.run();
    if (unread) *unread = painter.unread(seen);
    cairo_show_page(cr.get());
    if (cairo_status(cr.get()) != CAIRO_STATUS_SUCCESS) {
      return platform::Error{cairo_status_to_string(cairo_status(cr.get()))};
    }
  }
  if (options.format == Format::png) {
    const cairo_status_t status = cairo_surface_write_to_png_stream(surface.get(), append, &bytes);
    if (status != CAIRO_STATUS_SUCCESS) return platform::Error{cairo_status_to_string(status)};
  }
  cairo_surface_finish(surface.get());
  return bytes;
}

}  // namespace cad::view
