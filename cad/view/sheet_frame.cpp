#include "cad/view/sheet_frame.h"

#include <algorithm>

namespace cad::view {
namespace {

// Before `Paper::print`, but for the margins: the left one is for the binding.
constexpr double kMargin = 10, kBinding = 20;
constexpr double kColumn = 62, kTitleWidth = 84, kGap = 3;
constexpr double kNorthWidth = 18, kNorthHeight = 20, kBarHeight = 13, kKeyHeight = 42;
constexpr double kLegendHead = 7, kLegendRow = 4.4, kLegendWidth = 46, kSmallestRow = 2.6;

double legendHeight(const SheetLegend& legend, double row) {
  return kLegendHead + row * static_cast<double>(legend.classes.size());
}

// What stands beside the title block, with its size.
std::vector<SheetBlock> blocksOf(const Sheet& sheet, bool keyPlan, double width, double row) {
  std::vector<SheetBlock> blocks;
  const auto add = [&](SheetBlock::Kind kind, double w, double h, std::size_t legend = 0) {
    const double k = sheet.paper.print;
    blocks.push_back({kind, legend, {0, 0, w * k, h * k}});
  };
  if (sheet.north) add(SheetBlock::Kind::north, kNorthWidth, kNorthHeight);
  for (std::size_t i = 0; i < sheet.legends.size(); ++i) {
    add(SheetBlock::Kind::legend, std::min(width, kLegendWidth),
        legendHeight(sheet.legends[i], row), i);
  }
  if (keyPlan) add(SheetBlock::Kind::keyPlan, width, kKeyHeight);
  add(SheetBlock::Kind::scaleBar, width, kBarHeight);
  return blocks;
}

double titleHeight(const Sheet& sheet) {
  const auto lines = static_cast<double>(fieldLines(sheet.fields).size() + 1);  // scale and sheet
  return (kTitleLine + kFieldLine * lines) * sheet.paper.print;
}

void frameLying(const Sheet& sheet, bool keyPlan, SheetFrame& f) {
  const double k = sheet.paper.print, column = kColumn * k, gap = kGap * k;
  const double high = titleHeight(sheet);
  f.title = {f.frame.right() - column, f.frame.bottom() - high, column, high};
  f.drawing = {f.frame.x, f.frame.y, f.frame.w - column, f.frame.h};
  // Legends give way when the column is short.
  for (f.legendRow = kLegendRow; f.legendRow > kSmallestRow; f.legendRow -= 0.2) {
    f.blocks = blocksOf(sheet, keyPlan, kColumn - 2 * kGap, f.legendRow);
    double y = f.frame.y + gap;
    for (SheetBlock& block : f.blocks) {
      block.box.x = f.title.x + gap;
      block.box.y = y;
      y += block.box.h + gap;
    }
    f.fits = y <= f.title.y;
    if (!f.fits) continue;
    // The bar of the scale belongs to the title block, the rest hangs from above.
    f.blocks.back().box.y = f.title.y - gap - f.blocks.back().box.h;
    return;
  }
}

void frameUpright(const Sheet& sheet, bool keyPlan, SheetFrame& f) {
  const double k = sheet.paper.print, gap = kGap * k, wide = kTitleWidth * k;
  const double room = f.frame.w - wide;
  f.legendRow = kLegendRow;
  f.blocks = blocksOf(sheet, keyPlan, std::min(kLegendWidth + 8, room / k - 2 * kGap), f.legendRow);
  double x = gap, y = gap, row = 0;
  for (SheetBlock& block : f.blocks) {
    if (x > gap && x + block.box.w + gap > room) {
      x = gap;
      y += row + gap;
      row = 0;
    }
    block.box.x = f.frame.x + x;
    block.box.y = y;
    x += block.box.w + gap;
    row = std::max(row, block.box.h);
  }
  const double high = std::max(titleHeight(sheet), y + row + gap);
  const double top = f.frame.bottom() - high;
  for (SheetBlock& block : f.blocks) block.box.y += top;
  f.title = {f.frame.right() - wide, f.frame.bottom() - titleHeight(sheet), wide,
             titleHeight(sheet)};
  f.drawing = {f.frame.x, f.frame.y, f.frame.w, f.frame.h - high};
  f.fits = f.drawing.h > f.frame.h / 4;
}

}  // namespace

std::vector<std::vector<SheetField>> fieldLines(const std::vector<SheetField>& fields) {
  std::vector<std::vector<SheetField>> lines;
  for (const SheetField& field : fields) {
    const bool joins =
        field.half && !lines.empty() && lines.back().size() == 1 && lines.back().front().half;
    if (!joins) lines.emplace_back();
    lines.back().push_back(field);
  }
  return lines;
}

SheetFrame frameSheet(const Sheet& sheet, bool keyPlan) {
  SheetFrame f;
  const Paper& paper = sheet.paper;
  f.frame = {kBinding, kMargin, paper.width - kBinding - kMargin, paper.height - 2 * kMargin};
  paper.width > paper.height ? frameLying(sheet, keyPlan, f) : frameUpright(sheet, keyPlan, f);
  return f;
}

}  // namespace cad::view
