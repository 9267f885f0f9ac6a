// The controls with rows and columns: the report list, which shows, and the grid, which is edited.
#pragma once

#include <cstdint>
#include <vector>

#include "cad/ui/control.h"

namespace cad::ui {

struct Colour {
  std::uint8_t red = 255, green = 255, blue = 255;
  friend bool operator==(const Colour&, const Colour&) = default;
};

struct Column {
  std::u16string title{};
  int width = 100;        // pixels of a classic screen (96 to the inch)
  bool readOnly = false;  // grids only
};

struct ReportOptions {
  std::u16string name{};
  std::vector<Column> columns{};
  bool enabled = true;
  bool visible = true;
};

// Rows of texts under column titles, with full-row selection of at most one row. Rows keep the
// order in which they were added and count from 0. Opening empties it and keeps the declared
// columns.
class CAD_UI_API ReportList : public Control {
 public:
  using Row = std::vector<std::u16string>;
  ReportList(Place place, std::u16string_view label, ReportOptions options, Handler selected = {},
             Handler doubleClicked = {});

  const std::vector<Column>& columns() const { return columns_; }
  void setColumns(std::vector<Column> columns);
  int count() const { return static_cast<int>(rows_.size()); }
  // The row must exist.
  const Row& row(int index) const { return rows_[static_cast<std::size_t>(index)]; }
  // Empty for a cell that does not exist.
  const std::u16string& cell(int row, int column) const;
  void addRow(Row row);
  void setRows(std::vector<Row> rows);
  void clear();
  // Another number whenever rows or columns have changed: views need not look at each row again.
  unsigned revision() const { return revision_; }

  // The background of all rows; none is the usual one.
  std::optional<Colour> background() const { return background_; }
  void setBackground(std::optional<Colour> colour);

  int selected() const { return selected_; }
  void select(int row);  // a row that does not exist means none
  // The first cell of the selected row.
  std::u16string shown() const override { return cell(selected_, 0); }
  void accept(Visitor& visitor) override { visitor.visit(*this); }

 protected:
  // enter() selects the first row whose first cell is the text.
  Gesture onEnter(std::u16string_view text) override;
  Gesture onChoose(int row) override;
  Gesture onDoubleClick(int row) override;
  void resetFace() override;
  void visitTexts(const TextVisitor& visit) override;

 private:
  Gesture noRow(int row) const;
  std::vector<Column> columns_, declared_;
  std::vector<Row> rows_;
  std::optional<Colour> background_;
  int selected_ = -1;
  unsigned revision_ = 0;
  Handler selectedHandler_, doubleClicked_;
};

struct GridOptions {
  std::u16string name{};
  std::vector<Column> columns{};
  int fixedColumns = 0;  // leading columns that no one edits
  int rowHeight = 20;
  bool enabled = true;
  bool visible = true;
};

// A spreadsheet. Row 0 is the fixed header and holds the column titles; data rows count from 1,
// columns from 0. Opening empties it and keeps the declared columns. Derived grids add a popup menu
// by row.
class CAD_UI_API Grid : public Control {
 public:
  struct Cell {
    int row = 0, column = 0;
    friend bool operator==(const Cell&, const Cell&) = default;
  };

  Grid(Place place, std::u16string_view label, GridOptions options, Handler edited = {});

  // --- shape
  int columnCount() const { return static_cast<int>(columns_.size()); }
  int rowCount() const { return static_cast<int>(rows_.size()) + 1; }  // the header included
  const Column& column(int index) const { return columns_[static_cast<std::size_t>(index)]; }
  void setColumns(std::vector<Column> columns);
  void setColumnTitle(int column, std::u16string_view title);
  int fixedColumns() const { return fixedColumns_; }
  void setFixedColumns(int count);
  int rowHeight() const { return rowHeight_; }
  void setRowHeight(int pixels);
  // Makes the grid have `count` rows, the header included; new ones are blank.
  void setRowCount(int count);
  // Inserts a blank row before `row` (1..rowCount()); false, and nothing done, elsewhere.
  bool insertRow(int row);
  // Deletes a data row; false for the header and for rows that do not exist.
  bool deleteRow(int row);

  // --- cells
  bool contains(int row, int column) const;
  // A cell's text; row 0 gives the column title, a cell that does not exist the empty text.
  const std::u16string& cell(int row, int column) const;
  void setCell(int row, int column, std::u16string_view text);
  // Whether the user may edit the cell in place.
  bool editable(int row, int column) const;

  // --- selection: the rectangle between two corners, both in it
  Cell selectionFrom() const { return from_; }
  Cell selectionTo() const { return to_; }
  bool hasSelection() const { return from_.row > 0; }
  void select(Cell from, Cell to);
  // The selected cells as lines of cells with tabs between, and the reverse: fills from the
  // selection's first corner on, passes over cells that cannot be edited and stops at the edges.
  std::u16string copied() const;
  void paste(std::u16string_view text);

  // --- gestures
  Gesture enterCell(int row, int column, std::u16string_view text);
  Gesture selectCells(Cell from, Cell to);
  // The popup menu over a cell (header included): its entries, and choosing one.
  virtual std::vector<std::u16string> menu() const { return {}; }
  Gesture chooseMenu(Cell at, int entry);
  // The cell of the last edit, menu or selection gesture: what a handler asks for.
  Cell current() const { return current_; }

  std::u16string shown() const override;  // the current cell's text
  void accept(Visitor& visitor) override { visitor.visit(*this); }

 protected:
  // A chosen menu entry, by its place in menu().
  virtual void onMenu(int entry, Cell at);
  void resetFace() override;
  void visitTexts(const TextVisitor& visit) override;

 private:
  std::u16string place(Cell at) const;  // "[3,Quota]", as scripts write it
  std::vector<Column> columns_, declared_;
  std::vector<std::vector<std::u16string>> rows_;
  int fixedColumns_, declaredFixed_, rowHeight_;
  Cell from_{}, to_{}, current_{};
  Handler edited_;
};

}  // namespace cad::ui
