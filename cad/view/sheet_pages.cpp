// How a picture falls onto the pages of a sheet: the scale, the tiles, which of them show anything.
#include <algorithm>
#include <cmath>

#include "cad/view/labels.h"
#include "cad/view/paper_texts.h"
#include "cad/view/placed.h"
#include "cad/view/sheet_frame.h"
#include "platform/format.h"
#include "platform/text.h"

namespace cad::view {
namespace {

constexpr double kAir = 4;             // mm about what is drawn
constexpr double kOverlap = 6;         // mm that a page shows beyond its tile, on each side
constexpr double kMillimetres = 1000;  // to a metre
constexpr double kMostPixels = 2e8;

// The largest usual scale at which so many metres fit on so many millimetres.
double fittingScale(double width, double height, const Box& area) {
  const double least = std::max(width / (area.w - 2 * kAir), height / (area.h - 2 * kAir)) *
                       kMillimetres * (1 - 1e-9);
  if (least < 1e-6) return 100;  // a single point
  double power = std::pow(10, std::floor(std::log10(least)));
  for (;; power *= 10) {
    for (const double step : {1.0, 2.0, 2.5, 5.0}) {
      if (power * step >= least) return power * step;
    }
  }
}

// Marks the tiles that items show themselves on.
class Tiles {
 public:
  Tiles(const Picture& picture, const SheetPages& pages)
      : picture_(picture),
        at_(pages),
        used_(static_cast<std::size_t>(pages.columns) * static_cast<std::size_t>(pages.rows)) {}

  std::vector<SheetPages::Page> used() {
    for (const Item& item : picture_.items) mark(item);
    std::vector<SheetPages::Page> pages;
    for (int row = 0; row < at_.rows; ++row) {
      for (int column = 0; column < at_.columns; ++column) {
        if (used_[number(column, row)]) pages.push_back({column, row});
      }
    }
    return pages;
  }

 private:
  std::size_t number(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(at_.columns) +
           static_cast<std::size_t>(column);
  }
  Window window(int column, int row) const {
    const double x = at_.left + column * at_.tileWidth, y = at_.top - row * at_.tileHeight;
    return {x, y - at_.tileHeight, x + at_.tileWidth, y};
  }
  template <class Test>
  void mark(const Window& box, Test&& test) {
    const auto place = [](double value, int count) {
      return static_cast<int>(std::clamp(std::floor(value), -1.0, static_cast<double>(count)));
    };
    const int left = std::max(0, place((box.x1 - at_.left) / at_.tileWidth, at_.columns));
    const int right = place((box.x2 - at_.left) / at_.tileWidth, at_.columns);
    const int top = std::max(0, place((at_.top - box.y2) / at_.tileHeight, at_.rows));
    const int bottom = place((at_.top - box.y1) / at_.tileHeight, at_.rows);
    for (int row = top; row <= std::min(bottom, at_.rows - 1); ++row) {
      for (int column = left; column <= std::min(right, at_.columns - 1); ++column) {
        if (!used_[number(column, row)] && test(window(column, row))) {
          used_[number(column, row)] = true;
        }
      }
    }
  }
  void mark(const Item& item) {
    const auto box = boundsOf(picture_, item);
    if (!box) return;
    if (item.kind != Kind::line) return mark(*box, [](const Window&) { return true; });
    const auto segment = [&](const AcGePoint3d& a, const AcGePoint3d& b) {
      mark({std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)},
           [&](const Window& tile) {
             return meets({a.x, a.y, b.x, b.y}, {tile.x1, tile.y1, tile.x2, tile.y2});
           });
    };
    const AcGePoint3d* const points = picture_.points.data() + item.first;
    for (std::uint32_t i = 1; i < item.count; ++i) segment(points[i - 1], points[i]);
    if (item.closed) segment(points[item.count - 1], points[0]);
  }

  const Picture& picture_;
  const SheetPages& at_;
  std::vector<bool> used_;
};

// Tiles for an area of the drawing, about its middle. False when they would be too many.
bool tile(const Window& box, const Box& area, SheetPages& pages) {
  const double unit = pages.unit;
  pages.area = {area.x, area.y, area.right(), area.bottom()};
  const double width = box.x2 - box.x1, height = box.y2 - box.y1;
  const bool one = width / unit <= area.w - 2 * kAir && height / unit <= area.h - 2 * kAir;
  pages.tileWidth = (area.w - (one ? 0 : 2 * kOverlap)) * unit;
  pages.tileHeight = (area.h - (one ? 0 : 2 * kOverlap)) * unit;
  const double columns = std::max(1.0, std::ceil(width / pages.tileWidth - 1e-9));
  const double rows = std::max(1.0, std::ceil(height / pages.tileHeight - 1e-9));
  if (columns * rows > 1e6) return false;
  pages.columns = static_cast<int>(columns);
  pages.rows = static_cast<int>(rows);
  pages.left = (box.x1 + box.x2) / 2 - columns * pages.tileWidth / 2;
  pages.top = (box.y1 + box.y2) / 2 + rows * pages.tileHeight / 2;
  return true;
}

}  // namespace

std::optional<Paper> paperNamed(std::string_view name, bool landscape) {
  struct Row {
    const char16_t* name;
    Paper upright;
  };
  constexpr Row kPapers[] = {{u"A4", {210, 297, 1}},
                             {u"A3", {297, 420, 1.15}},
                             {u"A2", {420, 594, 1.3}},
                             {u"A1", {594, 841, 1.5}},
                             {u"A0", {841, 1189, 1.75}}};
  for (const auto& [known, upright] : kPapers) {
    if (!platform::equalNoCase(platform::widen(name), known)) continue;
    return landscape ? Paper{upright.height, upright.width, upright.print} : upright;
  }
  return std::nullopt;
}

std::u16string scaleText(double scale) {
  return scale >= 1 ? platform::format(u"1:%.10g", scale) : platform::format(u"%.10g:1", 1 / scale);
}

namespace {

// The scale, and the tiles of the first layout that holds everything.
SheetFault spread(const Picture& picture, const Sheet& sheet, SheetPages& pages) {
  const Window box = sheet.window ? *sheet.window : boundsOf(picture).value_or(Window{0, 0, 0, 0});
  // A second time with a key plan, which takes room, when one page is not enough.
  for (const bool keyPlan : {false, true}) {
    const SheetFrame frame = frameSheet(sheet, keyPlan);
    if (!frame.fits) return SheetFault::noRoom;
    pages.scale = sheet.scale.value_or(fittingScale(
        (box.x2 - box.x1) * sheet.metres, (box.y2 - box.y1) * sheet.metres, frame.drawing));
    pages.unit = pages.scale / kMillimetres / sheet.metres;
    if (!tile(box, frame.drawing, pages)) return SheetFault::tooManyPages;
    if (pages.columns * pages.rows == 1) break;
  }
  return SheetFault::none;
}

}  // namespace

Window drawingRoom(const Sheet& sheet) {
  const Box room = frameSheet(sheet, false).drawing;
  return {room.x + kAir, room.y + kAir, room.right() - kAir, room.bottom() - kAir};
}

SheetLayout layOutSheet(const Picture& picture, const Sheet& sheet) {
  SheetLayout result;
  SheetPages& pages = result.pages;
  const double dots = sheet.dpi / 25.4;
  if (sheet.format == Format::png &&
      sheet.paper.width * sheet.paper.height * dots * dots > kMostPixels) {
    result.fault = SheetFault::tooManyPixels;
    return result;
  }
  result.fault = spread(picture, sheet, pages);
  // Larger texts may reach farther, so that the next scale is needed, at which they are larger
  // still.
  for (double scale = 0; result.fault == SheetFault::none && pages.scale != scale;) {
    scale = pages.scale;
    result.picture = picture;
    result.leftOut = raiseTexts(result.picture, sheet.leastText * pages.unit);
    result.fault = spread(result.picture, sheet, pages);
    if (pages.scale < scale) break;  // what is left out makes the picture smaller
  }
  if (result.fault != SheetFault::none) return result;
  if (pages.columns * pages.rows > 1) pages.pages = Tiles(result.picture, pages).used();
  if (pages.pages.empty()) pages.pages = {{0, 0}};
  if (pages.pages.size() > kMostPages) result.fault = SheetFault::tooManyPages;
  return result;
}

}  // namespace cad::view
