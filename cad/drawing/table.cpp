#include "cad/api/table.h"

#include <cmath>
#include <utility>

#include "cad/api/database.h"
#include "cad/api/owners.h"
#include "cad/api/tables.h"
#include "cad/drawing/drawing.h"
#include "cad/drawing/fields.h"
#include "cad/drawing/table_grid.h"

using cad::BlockInfo;
using cad::Drawing;
using cad::Record;
using cad::TagList;
using cad::TagRange;
using cad::Type;

ACRX_DEFINE(AcDbTable, AcDbEntity)

struct AcDbTable::Grid : cad::TableGrid {};

namespace {

bool isSize(double value) { return std::isfinite(value) && value > 0; }

// Programs that know more of tables than their entity keep it in an extension dictionary, with a
// picture of the table beside it; both would contradict what has been changed.
void eraseTree(Drawing& d, std::uint32_t record) {
  std::vector<std::uint32_t> todo{record};
  TagList t;
  while (!todo.empty()) {
    const std::uint32_t i = todo.back();
    todo.pop_back();
    if (!i || d.record(i).is(Record::erased) || d.record(i).is(Record::open)) continue;
    d.parse(i, t);
    for (int k = 1; k < t.xdataBegin(); ++k) {
      if (t[k].code == 350 || (t[k].code >= 360 && t[k].code <= 369))
        todo.push_back(d.byHandle(t.handle(k)));
    }
    d.erase(i, true);
  }
}

void dropContent(Drawing& d, TagList& t) {
  const TagRange group = t.group("ACAD_XDICTIONARY");
  const int at = group.empty() ? -1 : t.find(360, group);
  const std::uint32_t dictionary = at < 0 ? 0 : d.byHandle(t.handle(at));
  if (!dictionary || d.record(dictionary).is(Record::open)) return;
  TagList entries;
  d.parse(dictionary, entries);
  for (int i = 1; i < entries.xdataBegin(); ++i) {
    if (entries[i].code != 3 || !entries.text(i).starts_with(u"ACAD_XREC_ROUNDTRIP")) continue;
    int end = i + 1;
    for (; end < entries.xdataBegin() && entries[end].code != 3; ++end) {
      if (entries[end].code == 350 || entries[end].code == 360) {
        eraseTree(d, d.byHandle(entries.handle(end)));
      }
    }
    entries.erase(i--, end);
  }
  if (entries.find(3, entries.body()) >= 0) {
    d.writer().rewrite(dictionary, entries);
  } else {
    d.erase(dictionary, true);
    t.erase(group.begin, group.end);
  }
}

void dropProxyPicture(TagList& t) {
  const TagRange common = t.subclass("AcDbEntity");
  for (int i = common.end - 1; i >= common.begin; --i) {
    if (t[i].code == 310 || t[i].code == 160 || t[i].code == 92) t.erase(i, i + 1);
  }
}

// What tables of no style of their own fall back to; null where the drawing cannot hold styles.
AcDbObjectId standardStyle(Drawing& d) {
  AcDbDictionary* opened = nullptr;
  AcDbObjectId id;
  if (d.database()->getTableStyleDictionary(opened, AcDb::kForRead) != Acad::eOk) return id;
  const cad::Opened<AcDbDictionary> styles(opened);
  styles->getAt(u"Standard", id);
  return id;
}

}  // namespace

AcDbTable::AcDbTable() {
  TagList& t = tagsForWrite();
  t.create(cad::neutralFormat(), "ACAD_TABLE");
  t.addAscii(100, "AcDbEntity");
  const AcDbDatabase* current = acdbHostApplicationServices()->workingDatabase();
  t.addText(8, current ? current->drawing().header().currentLayer() : std::u16string(u"0"));
  t.addAscii(100, "AcDbBlockReference");
  t.addAscii(2, "");
  t.addPoint(10, {});
  t.addAscii(100, "AcDbTable");
  grid_ = std::make_unique<Grid>();
  grid_->changed = true;
  grid_->resize(1, 1);
}
AcDbTable::AcDbTable(cad::ViewState* state) : AcDbEntity(state) {}
AcDbTable::~AcDbTable() = default;

const AcDbTable::Grid& AcDbTable::grid() const {
  if (!grid_) {
    grid_ = std::make_unique<Grid>();
    grid_->read(tags(), view_->drawing);
  }
  return *grid_;
}

AcDbTable::Grid& AcDbTable::gridForWrite() {
  (void)grid();
  tagsForWrite();
  grid_->changed = true;
  return *grid_;
}

void AcDbTable::afterAppend() { gridForWrite(); }

void AcDbTable::beforeCommit() {
  if (!grid_ || !grid_->changed || !view_->drawing) return;
  Drawing& d = *view_->drawing;
  if (!d.format().hasHandlesAndMarkers()) return;
  TagList& t = tagsForWrite();
  const std::uint32_t known = d.structure().blockByName(d.names().find(blockName()));
  BlockInfo block;
  if (const BlockInfo* info = d.structure().block(known); info && info->end) {
    block = *info;
    std::vector<std::uint32_t> old;
    for (std::uint32_t e = d.structure().firstEntity(known); e;
         e = d.structure().nextEntity(known, e))
      old.push_back(e);
    for (const std::uint32_t e : old) d.erase(e, true);
  } else {
    block = d.structure().addBlock(d.structure().freeTableName(), {});
  }
  if (grid_->style.isNull()) grid_->style = standardStyle(d);
  cad::drawTable(d, block, grid_->picture(d));
  dropProxyPicture(t);
  dropContent(d, t);
  const TagRange reference = t.subclass("AcDbBlockReference");
  t.putText(2, d.names().text(d.record(block.id).name), reference);
  grid_->write(t, d.record(block.id).handle, d.format().version);
  grid_->changed = false;
}

AcGePoint3d AcDbTable::position() const {
  const int i = tags().find(10, tags().subclass("AcDbBlockReference"));
  return i < 0 ? AcGePoint3d() : tags().point(i);
}
Acad::ErrorStatus AcDbTable::setPosition(const AcGePoint3d& position) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  if (!cad::isFinite(position)) return Acad::eInvalidInput;
  TagList& t = tagsForWrite();
  dropProxyPicture(t);
  t.putPoint(10, position, t.subclass("AcDbBlockReference"));
  return Acad::eOk;
}

AcDbObjectId AcDbTable::tableStyle() const { return grid().style; }
Acad::ErrorStatus AcDbTable::setTableStyle(AcDbObjectId style) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  const Drawing* d = cad::drawingNumbered(style.databaseIndex());
  if (!d || !d->has(style) || d->record(style.index()).type != Type::tableStyle) {
    return Acad::eInvalidInput;
  }
  gridForWrite().style = style;
  return Acad::eOk;
}

int AcDbTable::numRows() const { return grid().rows(); }
int AcDbTable::numColumns() const { return grid().columns(); }
Acad::ErrorStatus AcDbTable::setNumRows(int rows) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  if (rows < 1) return Acad::eInvalidInput;
  Grid& g = gridForWrite();
  g.resize(static_cast<std::size_t>(rows), g.columnWidths.size());
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTable::setNumColumns(int columns) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  if (columns < 1) return Acad::eInvalidInput;
  Grid& g = gridForWrite();
  g.resize(g.rowHeights.size(), static_cast<std::size_t>(columns));
  return Acad::eOk;
}

double AcDbTable::rowHeight(int row) const {
  return grid().has(row, 0) ? grid().rowHeights[static_cast<std::size_t>(row)] : 0;
}
double AcDbTable::columnWidth(int column) const {
  return grid().has(0, column) ? grid().columnWidths[static_cast<std::size_t>(column)] : 0;
}
Acad::ErrorStatus AcDbTable::setRowHeight(double height) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  if (!isSize(height)) return Acad::eInvalidInput;
  for (double& h : gridForWrite().rowHeights) h = height;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTable::setColumnWidth(double width) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  if (!isSize(width)) return Acad::eInvalidInput;
  for (double& w : gridForWrite().columnWidths) w = width;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTable::setRowHeight(int row, double height) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  if (!isSize(height)) return Acad::eInvalidInput;
  if (!grid().has(row, 0)) return Acad::eInvalidIndex;
  gridForWrite().rowHeights[static_cast<std::size_t>(row)] = height;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTable::setColumnWidth(int column, double width) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  if (!isSize(width)) return Acad::eInvalidInput;
  if (!grid().has(0, column)) return Acad::eInvalidIndex;
  gridForWrite().columnWidths[static_cast<std::size_t>(column)] = width;
  return Acad::eOk;
}

double AcDbTable::width() const {
  double sum = 0;
  for (const double w : grid().columnWidths) sum += w;
  return sum;
}
double AcDbTable::height() const {
  double sum = 0;
  for (const double h : grid().rowHeights) sum += h;
  return sum;
}
Acad::ErrorStatus AcDbTable::setWidth(double width) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  const double now = this->width();
  if (!isSize(width) || !(now > 0)) return Acad::eInvalidInput;
  for (double& w : gridForWrite().columnWidths) w *= width / now;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTable::setHeight(double height) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  const double now = this->height();
  if (!isSize(height) || !(now > 0)) return Acad::eInvalidInput;
  for (double& h : gridForWrite().rowHeights) h *= height / now;
  return Acad::eOk;
}

std::u16string AcDbTable::textString(int row, int column) const {
  return grid().has(row, column) ? grid().cell(row, column).text : std::u16string();
}
Acad::ErrorStatus AcDbTable::setTextString(int row, int column, std::u16string_view text) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  if (!grid().has(row, column)) return Acad::eInvalidIndex;
  cad::Cell& c = gridForWrite().cell(row, column);
  c.text = text;
  c.textChanged = true;
  c.kind = cad::kTextCell;
  c.block = 0;
  return Acad::eOk;
}

double AcDbTable::textHeight(int row, int column) const {
  if (!grid().has(row, column)) return 0;
  const cad::Cell& c = grid().cell(row, column);
  return c.height > 0 ? c.height : grid().look().ofRow(row).textHeight;
}
AcDb::RowType AcDbTable::rowType(int row) const {
  const cad::TableLook look = grid().look();
  const cad::CellLook* is = &look.ofRow(row);
  return is == &look.title    ? AcDb::kTitleRow
         : is == &look.header ? AcDb::kHeaderRow
                              : AcDb::kDataRow;
}
Acad::ErrorStatus AcDbTable::setTextHeight(double height, int rows) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  if (!isSize(height)) return Acad::eInvalidInput;
  Grid& g = gridForWrite();
  for (int r = 0; r < g.rows(); ++r) {
    if (!(rows & rowType(r))) continue;
    for (int c = 0; c < g.columns(); ++c) {
      g.cell(r, c).height = height;
      g.cell(r, c).heightChanged = true;
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTable::mergeCells(int minRow, int maxRow, int minColumn, int maxColumn) {
  if (const auto s = cad::writable(*this); s != Acad::eOk) return s;
  if (minRow > maxRow || minColumn > maxColumn || !grid().has(minRow, minColumn) ||
      !grid().has(maxRow, maxColumn)) {
    return Acad::eInvalidIndex;
  }
  gridForWrite().merge(minRow, maxRow, minColumn, maxColumn);
  return Acad::eOk;
}
bool AcDbTable::isMergedCell(int row, int column) const {
  if (!grid().has(row, column)) return false;
  const cad::Cell& c = grid().cell(row, column);
  return c.covered || c.rows > 1 || c.columns > 1;
}

std::u16string AcDbTable::blockName() const {
  return tags().textOr(2, u"", tags().subclass("AcDbBlockReference"));
}
