// The picture of a table: the lines and texts of the block that shows it.
#pragma once

#include <string>
#include <vector>

#include "cad/drawing/drawing.h"

namespace cad {

// What one type of rows looks like in a table style.
struct CellLook {
  std::u16string textStyle = u"Standard";
  double textHeight = 0.18;
  int alignment = 5;  // 1 top left ... 9 bottom right
  int color = 0;      // of the text; 0 by block
  int fill = 0;       // background colour, 0 none
};

// A table style as it reads: rows by type, margins.
struct TableLook {
  CellLook data, title, header;
  double horizontalMargin = 0.06, verticalMargin = 0.06;
  bool titleSuppressed = false, headerSuppressed = false;

  const CellLook& ofRow(int row) const {
    if (!titleSuppressed && row-- == 0) return title;
    if (!headerSuppressed && row == 0) return header;
    return data;
  }
};
// The look of a TABLESTYLE record; that of none (0) is the program's own.
TableLook lookOf(const Drawing& drawing, std::uint32_t style);

// One cell as it is drawn. A cell that spans others stands for them; those it covers are not drawn.
struct PictureCell {
  int row = 0, column = 0, rows = 1, columns = 1;
  std::u16string text;
  double textHeight = 0;
  int alignment = 5;
  std::u16string block;  // shown in place of a text
  double blockScale = 1;
};

struct TablePicture {
  std::vector<double> rowHeights, columnWidths;
  std::vector<PictureCell> cells;  // every drawn one, empty ones too: the lines go around them
  TableLook look;
};

// Fills a block, which must be empty, with the picture; the table's upper left corner is at its
// origin.
void drawTable(Drawing& drawing, const BlockInfo& block, const TablePicture& picture);

}  // namespace cad
