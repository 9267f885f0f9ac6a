// Tables as entities, and the styles that give them their look.
//
// A table is a grid of cells below and to the right of its position. Its picture is a block of its
// own, drawn anew whenever a table that was changed is closed, so that programs which know nothing
// of tables show it all the same. Row 0 is the title and spans all columns, row 1 the heading,
// unless the style suppresses them; what comes then is data.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "cad/api/entities.h"

namespace AcDb {
enum RowType { kUnknownRow = 0, kDataRow = 1, kTitleRow = 2, kHeaderRow = 4 };
constexpr int kAllRows = kDataRow | kTitleRow | kHeaderRow;
enum CellAlignment {
  kTopLeft = 1,
  kTopCenter,
  kTopRight,
  kMiddleLeft,
  kMiddleCenter,
  kMiddleRight,
  kBottomLeft,
  kBottomCenter,
  kBottomRight
};
}  // namespace AcDb

// Row types are given as masks of AcDb::RowType; a getter takes one.
class CAD_API AcDbTableStyle : public AcDbObject {
  ACRX_DECLARE(AcDbTableStyle)
 public:
  // The style that new drawings call "Standard".
  AcDbTableStyle();
  std::u16string getName() const;
  Acad::ErrorStatus setName(std::u16string_view name);
  double textHeight(AcDb::RowType row = AcDb::kDataRow) const;
  Acad::ErrorStatus setTextHeight(double height, int rows = AcDb::kAllRows);
  AcDb::CellAlignment alignment(AcDb::RowType row = AcDb::kDataRow) const;
  Acad::ErrorStatus setAlignment(AcDb::CellAlignment alignment, int rows = AcDb::kAllRows);
  AcCmColor color(AcDb::RowType row = AcDb::kDataRow) const;
  Acad::ErrorStatus setColor(const AcCmColor& color, int rows = AcDb::kAllRows);
  std::u16string textStyleName(AcDb::RowType row = AcDb::kDataRow) const;
  Acad::ErrorStatus setTextStyle(AcDbObjectId style, int rows = AcDb::kAllRows);
  double horzCellMargin() const;
  Acad::ErrorStatus setHorzCellMargin(double margin);
  double vertCellMargin() const;
  Acad::ErrorStatus setVertCellMargin(double margin);
  bool isTitleSuppressed() const;
  bool isHeaderSuppressed() const;

 protected:
  using AcDbObject::AcDbObject;
  void afterAppend() override;
  friend class cad::Drawing;
};

class CAD_API AcDbTable : public AcDbEntity {
  ACRX_DECLARE(AcDbTable)
 public:
  // One row and one column, at the origin, of the style "Standard".
  AcDbTable();
  ~AcDbTable() override;

  AcGePoint3d position() const;  // the upper left corner
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);
  AcDbObjectId tableStyle() const;
  Acad::ErrorStatus setTableStyle(AcDbObjectId style);

  // Rows and columns that come are empty and as large as the last one there was.
  int numRows() const;
  int numColumns() const;
  Acad::ErrorStatus setNumRows(int rows);
  Acad::ErrorStatus setNumColumns(int columns);
  double rowHeight(int row) const;
  double columnWidth(int column) const;
  // For all rows, or columns. Sizes are positive; eInvalidInput otherwise.
  Acad::ErrorStatus setRowHeight(double height);
  Acad::ErrorStatus setColumnWidth(double width);
  Acad::ErrorStatus setRowHeight(int row, double height);
  Acad::ErrorStatus setColumnWidth(int column, double width);
  // Overall size; setting it keeps the proportions of rows and columns.
  double width() const;
  double height() const;
  Acad::ErrorStatus setWidth(double width);
  Acad::ErrorStatus setHeight(double height);

  // Empty for a cell that is not there or holds no text.
  std::u16string textString(int row, int column) const;
  // eInvalidIndex for a cell that is not there.
  Acad::ErrorStatus setTextString(int row, int column, std::u16string_view text);
  // What the cell says for itself, or else its row's type in the style.
  double textHeight(int row, int column) const;
  Acad::ErrorStatus setTextHeight(double height, int rows = AcDb::kAllRows);
  AcDb::RowType rowType(int row) const;
  // Makes one cell of several; eInvalidIndex beyond the table's bounds.
  Acad::ErrorStatus mergeCells(int minRow, int maxRow, int minColumn, int maxColumn);
  // Whether the cell is one of several that were made one.
  bool isMergedCell(int row, int column) const;
  // Name of the block that shows the table; empty before it is first drawn.
  std::u16string blockName() const;

 protected:
  explicit AcDbTable(cad::ViewState* state);
  void beforeCommit() override;
  void afterAppend() override;
  friend class cad::Drawing;

 private:
  struct Grid;
  const Grid& grid() const;
  Grid& gridForWrite();
  mutable std::unique_ptr<Grid> grid_;
};
