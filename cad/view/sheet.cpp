#include "cad/view/sheet.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "cad/view/paper_pen.h"
#include "cad/view/placed.h"
#include "cad/view/sheet_frame.h"
#include "platform/format.h"

namespace cad::view {
namespace {

constexpr double kThick = 0.5, kThin = 0.18, kHair = 0.13;  // lines, mm
constexpr double kPointsPerMillimetre = 72 / 25.4;
constexpr double kGrey = 0.45;

// Everything on one page.
class PagePainter {
 public:
  PagePainter(cairo_t* cr, const Sheet& sheet, const SheetLayout& layout, LabelsSeen& seen)
      : cr_(cr),
        pen_(cr),
        picture_(layout.picture),
        sheet_(sheet),
        at_(layout.pages),
        seen_(seen),
        frame_(frameSheet(sheet, at_.columns * at_.rows > 1)),
        k_(sheet.paper.print) {}

  void paint(std::size_t page) {
    page_ = page;
    cairo_set_source_rgb(cr_, 1, 1, 1);
    cairo_paint(cr_);
    plan();
    seams();
    pen_.color(0, 0, 0);
    pen_.rectangle(frame_.frame, kThick);
    pen_.rectangle(frame_.drawing, kThin);
    for (const SheetBlock& block : frame_.blocks) {
      switch (block.kind) {
        case SheetBlock::Kind::north:
          north(block.box);
          break;
        case SheetBlock::Kind::legend:
          legend(block.box, sheet_.legends[block.legend]);
          break;
        case SheetBlock::Kind::keyPlan:
          keyPlan(block.box);
          break;
        case SheetBlock::Kind::scaleBar:
          scaleBar(block.box);
          break;
      }
    }
    titleBlock();
  }

 private:
  const SheetPages::Page& page() const { return at_.pages[page_]; }
  double unit() const { return at_.unit; }

  // The corner of the drawing's part of this page, in the drawing: tiles stand in its middle.
  AcGePoint2d corner() const {
    const Box& a = frame_.drawing;
    const double beyondX = (a.w * unit() - at_.tileWidth) / 2,
                 beyondY = (a.h * unit() - at_.tileHeight) / 2;
    return {at_.left + page().column * at_.tileWidth - beyondX,
            at_.top - page().row * at_.tileHeight + beyondY};
  }

  void plan() {
    const Box& a = frame_.drawing;
    Placement placement;
    placement.left = corner().x;
    placement.top = corner().y;
    placement.scale = kDotsPerMillimetre / unit();
    placement.width = a.w * kDotsPerMillimetre;
    placement.height = a.h * kDotsPerMillimetre;
    placement.thinnest = kThin * kDotsPerMillimetre;
    cairo_save(cr_);
    cairo_rectangle(cr_, a.x, a.y, a.w, a.h);
    cairo_clip(cr_);
    cairo_translate(cr_, a.x, a.y);
    cairo_scale(cr_, 1 / kDotsPerMillimetre, 1 / kDotsPerMillimetre);
    paintPlaced(cr_, picture_, placement, seen_);
    cairo_restore(cr_);
  }

  // The page of a tile, counted from 1; 0 when it has none.
  std::size_t pageAt(int column, int row) const {
    for (std::size_t i = 0; i < at_.pages.size(); ++i) {
      if (at_.pages[i].column == column && at_.pages[i].row == row) return i + 1;
    }
    return 0;
  }

  // Where another page goes on, and which.
  void seams() {
    const Box& a = frame_.drawing;
    const double x = (a.w - at_.tileWidth / unit()) / 2, y = (a.h - at_.tileHeight / unit()) / 2;
    const struct {
      int column, row;
      double x1, y1, x2, y2;  // the seam
      double turn;            // of the text, which stands beyond
    } kSides[] = {
        {-1, 0, a.x + x, a.y + y, a.x + x, a.bottom() - y, -90},
        {1, 0, a.right() - x, a.y + y, a.right() - x, a.bottom() - y, 90},
        {0, -1, a.x + x, a.y + y, a.right() - x, a.y + y, 0},
        {0, 1, a.x + x, a.bottom() - y, a.right() - x, a.bottom() - y, 0},
    };
    for (const auto& side : kSides) {
      const std::size_t other = pageAt(page().column + side.column, page().row + side.row);
      if (!other) continue;
      pen_.color(kGrey, kGrey, kGrey);
      pen_.dashes(4);
      pen_.line(side.x1, side.y1, side.x2, side.y2, kHair);
      pen_.dashes(0);
      pen_.color(0, 0, 0);
      const double middleX = (side.x1 + side.x2) / 2 + side.column * x / 2;
      const double middleY = (side.y1 + side.y2) / 2 + side.row * y / 2;
      pen_.text(sheet_.words.sheet + u" " + platform::format(u"%d", other),
                {middleX, middleY, 2.2, PaperText::center, side.turn, true});
    }
  }

  void north(const Box& box) {
    const double x = box.x + box.w / 2, r = box.w * 0.32;
    const double y = box.bottom() - r - 0.5 * k_;
    pen_.color(0, 0, 0);
    pen_.circle(x, y, r, kThin);
    const double tip = y - r * 1.35;
    pen_.fill({{x, tip}, {x + r * 0.45, y + r * 0.75}, {x, y + r * 0.4}});
    pen_.outline({{x, tip}, {x - r * 0.45, y + r * 0.75}, {x, y + r * 0.4}}, kThin);
    pen_.text(u"N", {x, box.y + 1.9 * k_, 3.2 * k_, PaperText::center, 0, false, true});
  }

  void legend(const Box& box, const SheetLegend& legend) {
    const double row = frame_.legendRow * k_, high = std::min(2.3 * k_, row * 0.6);
    pen_.text(legend.title, {box.x, box.y + 2.5 * k_, 2.5 * k_, PaperText::left, 0, false, true},
              box.w);
    double y = box.y + 7 * k_ + row / 2;
    for (const SheetLegend::Class& c : legend.classes) {
      pen_.swatch({box.x, y - row * 0.3, 8 * k_, row * 0.6},
                  shownOn(indexedColor(c.color, false), false));
      pen_.text(c.text, {box.x + 10 * k_, y, high, PaperText::left}, box.w - 10 * k_);
      y += row;
    }
  }

  // All pages over the course of the lines, this one in grey.
  void keyPlan(const Box& box) {
    pen_.text(sheet_.words.keyPlan,
              {box.x, box.y + 2 * k_, 2.5 * k_, PaperText::left, 0, false, true}, box.w);
    const double top = box.y + 5 * k_, high = box.bottom() - top;
    const double wide = at_.columns * at_.tileWidth, tall = at_.rows * at_.tileHeight;
    const double scale = std::min(box.w / wide, high / tall);
    const double left = box.x + (box.w - wide * scale) / 2;
    const auto tile = [&](const SheetPages::Page& p) {
      return Box{left + p.column * at_.tileWidth * scale, top + p.row * at_.tileHeight * scale,
                 at_.tileWidth * scale, at_.tileHeight * scale};
    };
    pen_.color(0.82, 0.82, 0.82);
    pen_.fill(tile(page()));
    pen_.color(kGrey, kGrey, kGrey);
    cairo_save(cr_);
    cairo_rectangle(cr_, left, top, wide * scale, tall * scale);  // of a window there is more
    cairo_clip(cr_);
    courses(left, top, scale);
    cairo_restore(cr_);
    pen_.color(0, 0, 0);
    for (std::size_t i = 0; i < at_.pages.size(); ++i) {
      const Box b = tile(at_.pages[i]);
      pen_.rectangle(b, i == page_ ? kThick : kThin);
      const double height = std::min({2.6 * k_, b.h * 0.5, b.w * 0.35});
      pen_.text(platform::format(u"%d", i + 1),
                {b.x + b.w / 2, b.y + b.h / 2, height, PaperText::center, 0, true, i == page_});
    }
  }

  void courses(double left, double top, double scale) {
    for (const Item& item : picture_.items) {
      if (item.kind != Kind::line || item.endless) continue;
      bool begun = false;
      double x = 0, y = 0;
      for (std::uint32_t i = 0; i < item.count; ++i) {
        const AcGePoint3d& p = picture_.points[item.first + i];
        const double nextX = left + (p.x - at_.left) * scale, nextY = top + (at_.top - p.y) * scale;
        // What is smaller than the line is wide cannot be seen.
        const bool far = i == 0 || std::fabs(nextX - x) + std::fabs(nextY - y) > kHair ||
                         (begun && i + 1 == item.count);
        if (!far) continue;
        i == 0 ? cairo_move_to(cr_, nextX, nextY) : cairo_line_to(cr_, nextX, nextY);
        begun = i > 0;
        x = nextX;
        y = nextY;
      }
    }
    cairo_set_line_width(cr_, kHair);
    cairo_stroke(cr_);
  }

  void scaleBar(const Box& box) {
    const double metre = 1000 / at_.scale;  // in millimetres
    const double room = (box.w - 12 * k_) / metre;
    double power = std::pow(10, std::floor(std::log10(room))), length = power;
    for (const double step : {2.0, 4.0, 5.0}) {
      if (power * step <= room) length = power * step;
    }
    const double part = length * metre / 4, high = 1.6 * k_, y = box.y + 6 * k_;
    const double x = box.x + 2 * k_;
    pen_.color(0, 0, 0);
    for (int i = 0; i < 4; ++i) {
      const Box b{x + i * part, y, part, high};
      if (i % 2 == 0) pen_.fill(b);
      pen_.rectangle(b, kThin);
    }
    for (const int i : {0, 2, 4}) {
      const std::u16string number = platform::format(u"%.6g", length * i / 4);
      pen_.text(i == 4 ? number + u" m" : number,
                {x + i * part, y - 2.2 * k_, 2 * k_, PaperText::center});
    }
    pen_.text(sheet_.words.scale + u" " + scaleText(at_.scale),
              {x + 2 * part, y + high + 2.6 * k_, 2.2 * k_, PaperText::center});
  }

  void titleBlock() {
    const Box& t = frame_.title;
    pen_.color(0, 0, 0);
    pen_.rectangle(t, kThick);
    field({t.x, t.y, t.w, kTitleLine * k_}, {sheet_.words.title, sheet_.title, false}, 4.2);
    std::vector<SheetField> fields = sheet_.fields;
    fields.push_back({sheet_.words.scale, scaleText(at_.scale), true});
    fields.push_back(
        {sheet_.words.sheet, platform::format(u"%d / %d", page_ + 1, at_.pages.size()), true});
    double y = t.y + kTitleLine * k_;
    for (const auto& line : fieldLines(fields)) {
      const double width = t.w / static_cast<double>(line.size());
      for (std::size_t i = 0; i < line.size(); ++i) {
        const Box box{t.x + width * static_cast<double>(i), y, width, kFieldLine * k_};
        pen_.rectangle(box, kThin);
        field(box, line[i], 2.8);
      }
      y += kFieldLine * k_;
    }
  }

  void field(const Box& box, const SheetField& f, double height) {
    const double x = box.x + 1.5 * k_, room = box.w - 3 * k_;
    pen_.color(kGrey, kGrey, kGrey);
    pen_.text(f.label, {x, box.y + 1.9 * k_, 1.5 * k_, PaperText::left}, room);
    pen_.color(0, 0, 0);
    const double below = box.y + 3 * k_, middle = (below + box.bottom() - 0.5 * k_) / 2;
    pen_.text(f.value, {x, middle, height * k_ * 0.8, PaperText::left, 0, false, height > 4}, room);
  }

  cairo_t* cr_;
  PaperPen pen_;
  const Picture& picture_;
  const Sheet& sheet_;
  const SheetPages& at_;
  LabelsSeen& seen_;
  const SheetFrame frame_;
  const double k_;
  std::size_t page_ = 0;
};

using Surface = std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)>;
using Context = std::unique_ptr<cairo_t, void (*)(cairo_t*)>;

cairo_status_t append(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

Surface surfaceFor(const Sheet& sheet, std::string& bytes) {
  const double wide = sheet.paper.width * kPointsPerMillimetre,
               high = sheet.paper.height * kPointsPerMillimetre;
  switch (sheet.format) {
    case Format::png:
      return {cairo_image_surface_create(
                  CAIRO_FORMAT_RGB24,
                  static_cast<int>(std::lround(sheet.paper.width / 25.4 * sheet.dpi)),
                  static_cast<int>(std::lround(sheet.paper.height / 25.4 * sheet.dpi))),
              cairo_surface_destroy};
    case Format::svg:
      return {cairo_svg_surface_create_for_stream(append, &bytes, wide, high),
              cairo_surface_destroy};
    case Format::pdf:
      break;
  }
  Surface pdf(cairo_pdf_surface_create_for_stream(append, &bytes, wide, high),
              cairo_surface_destroy);
  // The same sheet is the same file, whenever it was made.
  cairo_pdf_surface_set_metadata(pdf.get(), CAIRO_PDF_METADATA_CREATE_DATE, "");
  return pdf;
}

// Cairo names the group of the page after how many surfaces the process has made.
void nameGroup(std::string& svg) {
  const std::string begin = "<g id=\"surface";
  const std::size_t at = svg.find(begin), end = svg.find('"', at + begin.size());
  if (at != svg.npos && end != svg.npos) svg.replace(at, end - at, "<g id=\"page");
}

// Pages from `first` up to `last`, which is not among them.
platform::Result<std::string> paintFile(const Sheet& sheet, const SheetLayout& layout,
                                        std::size_t first, std::size_t last, LabelsSeen& seen) {
  std::string bytes;
  const Surface surface = surfaceFor(sheet, bytes);
  {
    const Context cr(cairo_create(surface.get()), cairo_destroy);
    const double dots = sheet.format == Format::png ? sheet.dpi / 25.4 : kPointsPerMillimetre;
    cairo_scale(cr.get(), dots, dots);
    PagePainter painter(cr.get(), sheet, layout, seen);
    for (std::size_t page = first; page < last; ++page) {
      painter.paint(page);
      cairo_show_page(cr.get());
    }
    if (cairo_status(cr.get()) != CAIRO_STATUS_SUCCESS) {
      return platform::Error{cairo_status_to_string(cairo_status(cr.get()))};
    }
  }
  cairo_status_t status = CAIRO_STATUS_SUCCESS;
  if (sheet.format == Format::png) {
    status = cairo_surface_write_to_png_stream(surface.get(), append, &bytes);
  }
  cairo_surface_finish(surface.get());
  if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(surface.get());
  if (status != CAIRO_STATUS_SUCCESS) return platform::Error{cairo_status_to_string(status)};
  if (sheet.format == Format::svg) nameGroup(bytes);
  return bytes;
}

}  // namespace

platform::Result<SheetFiles> paintSheet(const Sheet& sheet, const SheetLayout& layout) {
  SheetFiles files;
  LabelsSeen seen(layout.picture);
  const std::size_t count = layout.pages.pages.size();
  const std::size_t each = sheet.format == Format::pdf ? count : 1;
  for (std::size_t first = 0; first < count; first += each) {
    auto bytes = paintFile(sheet, layout, first, first + each, seen);
    if (!bytes) return platform::Error{bytes.error()};
    files.bytes.push_back(std::move(*bytes));
  }
  files.leftOut = layout.leftOut;
  for (std::size_t i = 0; i < seen.wanted.size(); ++i) {
    if (seen.wanted[i] && !seen.shown[i]) ++files.leftOut;
  }
  return files;
}

}  // namespace cad::view
