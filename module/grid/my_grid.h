// The grids of the material and pattern dialogs: spreadsheets whose rows come and go by a popup
// menu.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cad/ui/dialog.h"

namespace vessora {

// What both have. The menu's copy and paste go by the front end's clipboard, as lines of cells with
// tabs between, so that a spreadsheet works on the other side; rows are inserted before the one
// that was clicked, and nothing is done on the header row. Pasting adds no rows.
class RowGrid : public cad::ui::Grid {
 public:
  using Grid::Grid;

  std::vector<std::u16string> menu() const override;
  // Writes the numbers of the rows from `row` on into the first column, when that is fixed.
  void number(int row);

 protected:
  void onMenu(int entry, Cell at) override;
  // For what a dialog keeps beside the rows: called when the row is there, or gone.
  virtual void rowInserted(int) {}
  virtual void rowDeleted(int) {}
};

// Of the material dialog, which keeps a text for each data row that the grid does not show.
class MyGrid : public RowGrid {
 public:
  // `thirdLines` must outlive the grid. New rows get "0,0,0" there.
  MyGrid(cad::ui::Place place, std::u16string_view label, cad::ui::GridOptions options,
         std::vector<std::u16string>& thirdLines)
      : RowGrid(place, label, std::move(options)), thirdLines_(thirdLines) {}

 protected:
  void rowInserted(int row) override;
  void rowDeleted(int row) override;

 private:
  std::vector<std::u16string>& thirdLines_;
};

// Of the dialog of patterns and curves. Rows of patterns are numbered, those of curves are data in
// both columns.
class MyGridPAT : public RowGrid {
 public:
  using RowGrid::RowGrid;

  bool isCurve() const { return isCurve_; }
  // Sets what differs between the two: widths, and whether the first column is fixed.
  void setCurve(bool isCurve);

 private:
  bool isCurve_ = false;
};

}  // namespace vessora
