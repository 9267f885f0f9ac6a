// Where things stand on a sheet: the frame, the part for the drawing, the title block, and beside
// it what explains the drawing. Millimetres from the upper left corner of the paper.
#pragma once

#include <cstddef>
#include <vector>

#include "cad/view/sheet.h"

namespace cad::view {

struct Box {
  double x = 0, y = 0, w = 0, h = 0;
  double right() const { return x + w; }
  double bottom() const { return y + h; }
};

struct SheetBlock {
  enum class Kind { north, legend, keyPlan, scaleBar };
  Kind kind = Kind::north;
  std::size_t legend = 0;  // number in Sheet::legends
  Box box;
};

// On lying paper a column at the right holds everything, the title block at its foot; on upright
// paper a strip at the foot does, the title block at its right.
struct SheetFrame {
  Box frame, drawing, title;
  std::vector<SheetBlock> blocks;
  double legendRow = 0;  // height of a row of a legend
  bool fits = true;
};
SheetFrame frameSheet(const Sheet& sheet, bool keyPlan);

// Heights of the title block's lines, before `Paper::print`.
inline constexpr double kTitleLine = 14, kFieldLine = 8;
// The lines of fields: a pair of halves is one.
std::vector<std::vector<SheetField>> fieldLines(const std::vector<SheetField>& fields);

}  // namespace cad::view
