// Building one table in the drawing.
#include "module/results/network_tables.h"

#include "module/host/translate.h"
#include "platform/decimals.h"

namespace vessora {

namespace {

constexpr int kTextColor = 2;
constexpr double kMargin = 0.1;  // of the text height

// The text style of the tables, made when it is missing.
AcDbObjectId textStyle(AcDbDatabase* database) {
  AcDbObjectId id;
  if (FindTextStyle(kTableStyle, id)) return id;
  AcDbTextStyleTable* opened = nullptr;
  if (database->getTextStyleTable(opened, AcDb::kForWrite) != Acad::eOk) return {};
  const Opened<AcDbTextStyleTable> table(opened);
  Fresh<AcDbTextStyleTableRecord> style;
  style->setName(kTableStyle);
  style->setFileName(u"romans.shx");
  return style.taken(table->add(id, style.get())) ? id : AcDbObjectId();
}

AcDbObjectId styleNamed(AcDbDatabase* database, std::u16string_view name) {
  AcDbDictionary* opened = nullptr;
  AcDbObjectId id;
  if (database && database->getTableStyleDictionary(opened, AcDb::kForRead) == Acad::eOk) {
    const Opened<AcDbDictionary> styles(opened);
    if (styles->getAt(name, id) != Acad::eOk) id.setNull();
  }
  return id;
}

AcDbObjectId modelSpace(AcDbDatabase* database) {
  AcDbBlockTable* opened = nullptr;
  AcDbObjectId id;
  if (database->getBlockTable(opened, AcDb::kForRead) != Acad::eOk) return id;
  const Opened<AcDbBlockTable> blocks(opened);
  if (blocks->getAt(u"*Model_Space", id) != Acad::eOk) id.setNull();
  return id;
}

void complain(std::u16string_view reason, Notices& notices) {
  notices.push_back({NoticeCode::tableNotDrawn, std::u16string(reason)});
}

// Puts a new table into the model space, where it stays open for write; empty when that fails.
Opened<AcDbTable> place(AcDbDatabase* database, Fresh<AcDbTable>& table, Notices& notices) {
  const Opened<AcDbBlockTableRecord> space(modelSpace(database), AcDb::kForWrite);
  const Acad::ErrorStatus status =
      space ? space->appendAcDbEntity(table.get()) : Acad::eNotOpenForWrite;
  if (!table.taken(status)) complain(acadErrorStatusText(status), notices);
  return table.release();
}

void fill(AcDbTable& table, const TableGrid& grid, Notices& notices) {
  if (!table.isWriteEnabled() || grid.empty()) return complain(u"eNotOpenForWrite", notices);
  if (table.numRows() != static_cast<int>(grid.size())) {
    return complain(u"Table and data does not match", notices);
  }
  for (int row = 0; row < table.numRows(); ++row) {
    const auto& cells = grid[static_cast<std::size_t>(row)];
    if (static_cast<int>(cells.size()) > table.numColumns()) {
      return complain(u"Table and data does not match", notices);
    }
    for (int column = 0; column < static_cast<int>(cells.size()); ++column) {
      table.setTextString(row, column, cells[static_cast<std::size_t>(column)]);
    }
  }
}

// Collects the rows of one table.
class GridBuilder {
 public:
  GridBuilder(const char16_t* title, std::u16string_view id) {
    grid_.push_back({std::u16string(TraduciTesto(title)).append(id)});
  }
  GridBuilder& real(const char16_t* label, double value) {
    if (value != kNoValue) add(label, platform::threeDecimals(value));
    return *this;
  }
  GridBuilder& text(const char16_t* label, std::u16string_view value) {
    if (value != kNoText) add(label, std::u16string(value));
    return *this;
  }
  const TableGrid& grid() const { return grid_; }

 private:
  void add(const char16_t* label, std::u16string value) {
    grid_.push_back({TraduciTesto(label), std::move(value)});
  }
  TableGrid grid_;
};

}  // namespace

void makeTableStyle(std::u16string_view name, double textHeight, int titleColor) {
  AcDbDatabase* const database = acdbHostApplicationServices()->workingDatabase();
  if (!database || !styleNamed(database, name).isNull()) return;
  const AcDbObjectId text = textStyle(database);
  AcDbDictionary* opened = nullptr;
  if (database->getTableStyleDictionary(opened, AcDb::kForWrite) != Acad::eOk) return;
  const Opened<AcDbDictionary> styles(opened);
  AcCmColor all, title;
  all.setColorIndex(kTextColor);
  title.setColorIndex(titleColor);
  Fresh<AcDbTableStyle> style;
  style->setName(name);
  style->setColor(all);
  style->setColor(title, AcDb::kTitleRow);
  style->setAlignment(AcDb::kMiddleCenter);
  style->setTextHeight(textHeight);
  style->setHorzCellMargin(kMargin * textHeight);
  style->setVertCellMargin(kMargin * textHeight);
  style->setTextStyle(text);
  AcDbObjectId id;
  style.taken(styles->setAt(name, style.get(), id));
}

void drawTable(std::u16string_view styleName, const TableGrid& grid, const TablePlace& at,
               Notices& notices) {
  AcDbDatabase* const database = acdbHostApplicationServices()->workingDatabase();
  const AcDbObjectId style = styleNamed(database, styleName);
  if (style.isNull()) {
    notices.push_back({NoticeCode::tableStyleMissing});
    return;
  }
  Fresh<AcDbTable> table;
  table->setTableStyle(style);
  table->setNumColumns(static_cast<int>(grid.size() > 1 ? grid[1].size() : grid[0].size()));
  table->setNumRows(static_cast<int>(grid.size()));
  table->setColumnWidth(at.columnWidth);
  table->setRowHeight(at.rowHeight);
  table->setPosition(at.position);
  table->setLayer(at.layer);
  if (const Opened<AcDbTable> placed = place(database, table, notices)) {
    fill(*placed, grid, notices);
  }
}

void DrawPipeDataTable(std::u16string_view styleName, std::u16string_view title, double length,
                       double diameter, double roughness, double minorLoss,
                       std::u16string_view status, const TablePlace& at, Notices& notices) {
  GridBuilder rows(u"ID Ramo: ", title);
  rows.real(u"Lunghezza [m]", length)
      .real(u"Diametro [mm]", diameter)
      .real(u"Scabrezza [mm]", roughness)
      .real(u"Perdita localizzata", minorLoss)
      .text(u"Stato", status);
  drawTable(styleName, rows.grid(), at, notices);
}

void DrawNodeResultTable(std::u16string_view styleName, std::u16string_view id, double demand,
                         double head, double pressure, std::u16string_view quality,
                         const TablePlace& at, Notices& notices) {
  GridBuilder rows(u"Risultati Nodo: ", id);
  rows.real(u"Portata [l/s]", demand)
      .real(u"Carico [m]", head)
      .real(u"Pressione [m]", pressure)
      .text(u"Qualità", quality);
  drawTable(styleName, rows.grid(), at, notices);
}

void DrawLinkResultTable(std::u16string_view styleName, std::u16string_view id, double flow,
                         double velocity, double headloss, std::u16string_view status,
                         const TablePlace& at, Notices& notices) {
  GridBuilder rows(u"Risultati Ramo: ", id);
  rows.real(u"Portata [l/s]", flow)
      .real(u"Velocità [m/s]", velocity)
      .real(u"Perdita [m/Km]", headloss)
      .text(u"Stato", status);
  drawTable(styleName, rows.grid(), at, notices);
}

}  // namespace vessora
