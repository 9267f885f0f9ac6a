// The cells of a table, as they are read from its tags and written back into them: what nobody
// changed of a cell stays as it came.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "cad/drawing/drawing.h"
#include "cad/drawing/table_picture.h"

namespace cad {

constexpr int kTextCell = 1, kBlockCell = 2;

struct Cell {
  // Its tags as they came from the file, counted from the begin of the table's stretch; -1 for
  // none.
  int from = -1, to = -1;
  std::u16string text;
  bool textChanged = false, spanChanged = false, heightChanged = false;
  bool covered = false;  // by a cell that spans several
  int rows = 1, columns = 1;
  double height = 0;  // of the text; 0 is what the style says
  int alignment = 0;
  int kind = kTextCell;
  std::uint64_t block = 0;
  double blockScale = 1;
};

struct TableGrid {
  std::vector<double> rowHeights, columnWidths;
  std::vector<Cell> cells;
  AcDbObjectId style;
  bool fresh = true;  // made here and not yet in a file: the title spans its row by itself
  bool changed = false;

  int rows() const { return static_cast<int>(rowHeights.size()); }
  int columns() const { return static_cast<int>(columnWidths.size()); }
  bool has(int row, int column) const {
    return row >= 0 && row < rows() && column >= 0 && column < columns();
  }
  Cell& cell(int row, int column) {
    return cells[static_cast<std::size_t>(row) * columnWidths.size() +
                 static_cast<std::size_t>(column)];
  }
  const Cell& cell(int row, int column) const {
    return const_cast<TableGrid*>(this)->cell(row, column);
  }
  TableLook look() const {
    const Drawing* d = drawingNumbered(style.databaseIndex());
    return d && d->has(style) ? lookOf(*d, style.index()) : TableLook();
  }

  void resize(std::size_t newRows, std::size_t newColumns) {
    std::vector<Cell> now(newRows * newColumns);
    for (std::size_t r = 0; r < std::min(newRows, rowHeights.size()); ++r) {
      for (std::size_t c = 0; c < std::min(newColumns, columnWidths.size()); ++c) {
        Cell& to = now[r * newColumns + c];
        to = std::move(cells[r * columnWidths.size() + c]);
        const int room[] = {static_cast<int>(newRows - r), static_cast<int>(newColumns - c)};
        if (to.rows > room[0] || to.columns > room[1]) to.spanChanged = true;
        to.rows = std::min(to.rows, room[0]);
        to.columns = std::min(to.columns, room[1]);
      }
    }
    cells = std::move(now);
    rowHeights.resize(newRows, rowHeights.empty() ? 1 : rowHeights.back());
    columnWidths.resize(newColumns, columnWidths.empty() ? 1 : columnWidths.back());
    if (fresh && newRows > 0 && !look().titleSuppressed) merge(0, 0, 0, columns() - 1);
  }

  void merge(int minRow, int maxRow, int minColumn, int maxColumn) {
    for (int r = minRow; r <= maxRow; ++r) {
      for (int c = minColumn; c <= maxColumn; ++c) {
        Cell& one = cell(r, c);
        const bool first = r == minRow && c == minColumn;
        one.covered = !first;
        one.rows = first ? maxRow - minRow + 1 : 1;
        one.columns = first ? maxColumn - minColumn + 1 : 1;
        one.spanChanged = true;
      }
    }
  }

  void read(const TagList& t, const Drawing* d);
  void write(TagList& t, std::uint64_t block, int version) const;
  TablePicture picture(const Drawing& d) const;
};

}  // namespace cad
