#include "cad/api/table.h"

#include <algorithm>
#include <utility>

#include "cad/api/database.h"
#include "cad/api/tables.h"
#include "cad/drawing/drawing.h"
#include "cad/drawing/table_picture.h"
#include "platform/text.h"

using cad::BlockInfo;
using cad::Drawing;
using cad::Record;
using cad::TagList;
using cad::TagRange;
using cad::Type;

ACRX_DEFINE(AcDbTableStyle, AcDbObject)
ACRX_DEFINE(AcDbTable, AcDbEntity)

// --- styles --------------------------------------------------------------------------------------

namespace {

const cad::Format& neutral() {
  static const cad::Format format;
  return format;
}

// The stretches of a style that describe one type of rows come in this order.
constexpr int kRowTypes[] = {AcDb::kDataRow, AcDb::kTitleRow, AcDb::kHeaderRow};

TagRange rowRange(const TagList& t, int index) {
  const TagRange own = t.subclass("AcDbTableStyle");
  int from = t.find(7, own);
  for (; index > 0 && from >= 0; --index) from = t.find(7, from + 1, own.end);
  if (from < 0) return {own.end, own.end};
  const int next = t.find(7, from + 1, own.end);
  return {from, next < 0 ? own.end : next};
}

TagRange headRange(const TagList& t) {
  const TagRange own = t.subclass("AcDbTableStyle");
  const int rows = t.find(7, own);
  return {own.begin, rows < 0 ? own.end : rows};
}

int indexOf(AcDb::RowType row) {
  return row == AcDb::kTitleRow ? 1 : row == AcDb::kHeaderRow ? 2 : 0;
}

void addRowLook(TagList& t, double height, int alignment) {
  t.addAscii(7, "Standard");
  t.addReal(140, height);
  t.addInteger(170, alignment);
  t.addInteger(62, 0);
  t.addInteger(63, 257);
  t.addInteger(283, 0);
  t.addInteger(90, 4);
  t.addInteger(91, 0);
  t.addAscii(1, "");
  for (int border = 0; border < 6; ++border) {
    t.addInteger(274 + border, -2);
    t.addInteger(284 + border, 1);
    t.addInteger(64 + border, 0);
  }
}

}  // namespace

AcDbTableStyle::AcDbTableStyle() {
  TagList& t = tagsForWrite();
  t.create(neutral(), "TABLESTYLE");
  t.addAscii(100, "AcDbTableStyle");
  t.addAscii(3, "Standard");
  t.addInteger(70, 0);
  t.addInteger(71, 0);
  t.addReal(40, 1.5);
  t.addReal(41, 1.5);
  t.addInteger(280, 0);
  t.addInteger(281, 0);
  addRowLook(t, 4.5, AcDb::kTopCenter);
  addRowLook(t, 6, AcDb::kMiddleCenter);
  addRowLook(t, 4.5, AcDb::kMiddleCenter);
}

void AcDbTableStyle::afterAppend() {
  Drawing& d = *view_->drawing;
  d.structure().ensureClass("TABLESTYLE", "AcDbTableStyle", "ObjectDBX Classes", 4095, false);
  TagList& t = tagsForWrite();
  const std::uint64_t dictionary = d.record(d.record(view_->record).owner).handle;
  const int at = t.find(5, 1) + 1;
  t.insertAscii(at, 102, "{ACAD_REACTORS");
  t.insertHandle(at + 1, 330, dictionary);
  t.insertAscii(at + 2, 102, "}");
  if (d.format().version >= 1021) return;
  // The data type of rows came later.
  for (int i = t.body().end - 1; i > at + 2; --i) {
    const int c = t[i].code;
    if (c == 90 || c == 91 || c == 1) t.erase(i, i + 1);
  }
}

std::u16string AcDbTableStyle::getName() const { return tags().textOr(3, u"", headRange(tags())); }
Acad::ErrorStatus AcDbTableStyle::setName(std::u16string_view name) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!cad::usableName(name, neutral().version)) return Acad::eInvalidInput;
  TagList& t = tagsForWrite();
  t.putText(3, name, headRange(t));
  return Acad::eOk;
}

double AcDbTableStyle::textHeight(AcDb::RowType row) const {
  return tags().realOr(140, 0, rowRange(tags(), indexOf(row)));
}
Acad::ErrorStatus AcDbTableStyle::setTextHeight(double height, int rows) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!(height > 0)) return Acad::eInvalidInput;
  TagList& t = tagsForWrite();
  for (int i = 0; i < 3; ++i) {
    if (rows & kRowTypes[i]) t.putReal(140, height, rowRange(t, i));
  }
  return Acad::eOk;
}

AcDb::CellAlignment AcDbTableStyle::alignment(AcDb::RowType row) const {
  return static_cast<AcDb::CellAlignment>(tags().integerOr(170, 5, rowRange(tags(), indexOf(row))));
}
Acad::ErrorStatus AcDbTableStyle::setAlignment(AcDb::CellAlignment alignment, int rows) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  TagList& t = tagsForWrite();
  for (int i = 0; i < 3; ++i) {
    if (rows & kRowTypes[i]) t.putInteger(170, alignment, rowRange(t, i));
  }
  return Acad::eOk;
}

AcCmColor AcDbTableStyle::color(AcDb::RowType row) const {
  AcCmColor color;
  color.setColorIndex(static_cast<int>(tags().integerOr(62, 0, rowRange(tags(), indexOf(row)))));
  return color;
}
Acad::ErrorStatus AcDbTableStyle::setColor(const AcCmColor& color, int rows) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (color.colorIndex() < 0 || color.colorIndex() > 256) return Acad::eInvalidInput;
  TagList& t = tagsForWrite();
  for (int i = 0; i < 3; ++i) {
    if (rows & kRowTypes[i]) t.putInteger(62, color.colorIndex(), rowRange(t, i));
  }
  return Acad::eOk;
}

std::u16string AcDbTableStyle::textStyleName(AcDb::RowType row) const {
  return tags().textOr(7, u"Standard", rowRange(tags(), indexOf(row)));
}
Acad::ErrorStatus AcDbTableStyle::setTextStyle(AcDbObjectId style, int rows) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  const Drawing* d = cad::drawingNumbered(style.databaseIndex());
  if (!d || !d->has(style) || d->record(style.index()).type != Type::style)
    return Acad::eInvalidInput;
  TagList& t = tagsForWrite();
  for (int i = 0; i < 3; ++i) {
    if (rows & kRowTypes[i]) {
      t.putText(7, d->names().text(d->record(style.index()).name), rowRange(t, i));
    }
  }
  return Acad::eOk;
}

double AcDbTableStyle::horzCellMargin() const { return tags().realOr(40, 0, headRange(tags())); }
double AcDbTableStyle::vertCellMargin() const { return tags().realOr(41, 0, headRange(tags())); }
Acad::ErrorStatus AcDbTableStyle::setHorzCellMargin(double margin) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  TagList& t = tagsForWrite();
  t.putReal(40, margin, headRange(t));
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTableStyle::setVertCellMargin(double margin) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  TagList& t = tagsForWrite();
  t.putReal(41, margin, headRange(t));
  return Acad::eOk;
}
bool AcDbTableStyle::isTitleSuppressed() const {
  return tags().integerOr(280, 0, headRange(tags())) != 0;
}
bool AcDbTableStyle::isHeaderSuppressed() const {
  return tags().integerOr(281, 0, headRange(tags())) != 0;
}

// --- tables --------------------------------------------------------------------------------------

namespace {

constexpr int kTextCell = 1, kBlockCell = 2;
constexpr int kHeightOverride = 0x20;  // bit of a cell's flags: it has a text height of its own
constexpr std::size_t kPiece = 250;    // characters of a text in one tag

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

std::u16string pieces(const TagList& t, TagRange range, int piece, int last) {
  std::u16string text;
  for (int i = range.begin; i < range.end; ++i) {
    if (t[i].code == piece || t[i].code == last) text += t.text(i);
    if (t[i].code == last) break;
  }
  return text;
}

Cell readCell(const TagList& t, TagRange range, int base) {
  Cell c;
  c.from = range.begin - base;
  c.to = range.end - base;
  c.kind = static_cast<int>(t.integerOr(171, kTextCell, range));
  c.covered = t.integerOr(173, 0, range) != 0;
  c.columns = static_cast<int>(std::max<std::int64_t>(1, t.integerOr(175, 1, range)));
  c.rows = static_cast<int>(std::max<std::int64_t>(1, t.integerOr(176, 1, range)));
  c.height = t.realOr(140, 0, range);
  c.alignment = static_cast<int>(t.integerOr(170, 0, range));
  if (c.kind == kBlockCell) {
    if (const int i = t.find(340, range); i >= 0) c.block = t.handle(i);
    c.blockScale = t.realOr(144, 1, range);
  } else {
    c.text = t.find(302, range) >= 0 ? pieces(t, range, 303, 302) : pieces(t, range, 2, 1);
  }
  return c;
}

void addPieces(TagList& out, int piece, int last, std::u16string_view text) {
  for (; text.size() > kPiece; text.remove_prefix(kPiece))
    out.addText(piece, text.substr(0, kPiece));
  out.addText(last, text);
}

void addValue(TagList& out, std::u16string_view text, int version) {
  if (version < 1021) {
    addPieces(out, 2, 1, text);
    return;
  }
  out.addInteger(92, 0);
  out.addAscii(301, "CELL_VALUE");
  out.addInteger(93, text.empty() ? 3 : 2);
  if (text.empty()) {
    out.addInteger(90, 0);
    out.addInteger(91, 0);
  } else {
    out.addInteger(90, 4);
    addPieces(out, 2, 1, text);
  }
  out.addInteger(94, 0);
  out.addAscii(300, "");
  addPieces(out, 303, 302, text);
  out.addAscii(304, "ACVALUE_END");
}

void addNewCell(TagList& out, const Cell& c, int version) {
  out.addInteger(171, kTextCell);
  out.addInteger(172, 0);
  out.addInteger(173, c.covered ? 1 : 0);
  out.addInteger(174, 0);
  out.addInteger(175, c.columns);
  out.addInteger(176, c.rows);
  out.addInteger(91, c.height > 0 ? kHeightOverride : 0);
  out.addInteger(178, 0);
  out.addReal(145, 0);
  if (c.height > 0) out.addReal(140, c.height);
  addValue(out, c.text, version);
}

// What of a cell's tags is its value, not its look.
bool isValue(int code) {
  switch (code) {
    case 1:
    case 2:
    case 11:
    case 90:
    case 92:
    case 93:
    case 94:
    case 144:
    case 179:
    case 340:
    case 344:
    case 331:
      return true;
    default:
      return code >= 300 && code <= 304;
  }
}

// A cell from the file with what has changed of it; everything else stays.
void addChangedCell(TagList& out, const TagList& in, TagRange range, const Cell& c, int version) {
  bool inValue = false, heightDone = !c.heightChanged, flagsDone = false;
  const auto height = [&] {
    if (!heightDone && c.height > 0) out.addReal(140, c.height);
    heightDone = true;
  };
  for (int i = range.begin; i < range.end; ++i) {
    const int code = in[i].code;
    if (isValue(code)) {
      height();
      inValue = true;
    }
    if (c.textChanged && (isValue(code) || (inValue && code == 91))) continue;
    if (inValue) {
      out.insertCopy(out.size(), in, i);
    } else if (code == 91 && !flagsDone) {
      const std::int64_t flags = in.integer(i);
      out.addInteger(91, c.heightChanged ? flags | kHeightOverride : flags);
      flagsDone = true;
    } else if (code == 140 && c.heightChanged) {
      height();
    } else if (code == 171 && c.textChanged) {
      out.addInteger(171, kTextCell);
    } else if (code == 173 && c.spanChanged) {
      out.addInteger(173, c.covered ? 1 : 0);
    } else if ((code == 175 || code == 176) && c.spanChanged) {
      out.addInteger(code, code == 175 ? c.columns : c.rows);
    } else {
      out.insertCopy(out.size(), in, i);
    }
  }
  height();
  if (c.textChanged) addValue(out, c.text, version);
}

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
  AcDbDictionary* styles = nullptr;
  AcDbObjectId id;
  if (d.database()->getTableStyleDictionary(styles, AcDb::kForRead) != Acad::eOk) return id;
  styles->getAt(u"Standard", id);
  styles->close();
  return id;
}

}  // namespace

struct AcDbTable::Grid {
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
  const Cell& cell(int row, int column) const { return const_cast<Grid*>(this)->cell(row, column); }
  cad::TableLook look() const {
    const Drawing* d = cad::drawingNumbered(style.databaseIndex());
    return d && d->has(style) ? cad::lookOf(*d, style.index()) : cad::TableLook();
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
  cad::TablePicture picture(const Drawing& d) const;
};

void AcDbTable::Grid::read(const TagList& t, const Drawing* d) {
  fresh = false;
  const TagRange own = t.subclass("AcDbTable");
  std::vector<int> starts;
  for (int i = own.begin; i < own.end; ++i) {
    if (t[i].code == 141 && starts.empty()) rowHeights.push_back(t.real(i));
    if (t[i].code == 142 && starts.empty()) columnWidths.push_back(t.real(i));
    if (t[i].code == 171) starts.push_back(i);
  }
  starts.push_back(own.end);
  const TagRange head{own.begin, starts.front()};
  if (const int i = t.find(342, head); i >= 0 && d) style = d->idOf(d->byHandle(t.handle(i)));
  // A file may claim any size; the cells that are there decide.
  const std::size_t count = starts.size() - 1;
  const auto claimed = [&](int code) {
    return std::min(
        count, static_cast<std::size_t>(std::max<std::int64_t>(0, t.integerOr(code, 0, head))));
  };
  const std::size_t columnCount = claimed(92);
  const std::size_t rowCount = columnCount ? std::min(claimed(91), count / columnCount) : 0;
  rowHeights.resize(rowCount, rowHeights.empty() ? 1 : rowHeights.back());
  columnWidths.resize(columnCount, columnWidths.empty() ? 1 : columnWidths.back());
  for (std::size_t i = 0; i < rowCount * columnCount; ++i) {
    cells.push_back(readCell(t, {starts[i], starts[i + 1]}, own.begin));
  }
}

// Replaces the table's own tags, keeping those of the file that still hold.
void AcDbTable::Grid::write(TagList& t, std::uint64_t block, int version) const {
  TagList out;
  out.create(t.format(), "ACAD_TABLE");
  const TagRange own = t.subclass("AcDbTable");
  for (int i = 1; i < own.begin; ++i) out.insertCopy(out.size(), t, i);
  int at = own.begin;
  if (own.empty()) {
    const Drawing* d = cad::drawingNumbered(style.databaseIndex());
    out.addHandle(342, d ? d->record(style.index()).handle : 0);
    out.addHandle(343, block);
    out.addPoint(11, {1, 0, 0});
    out.addInteger(90, 22);
    out.addInteger(91, rows());
    out.addInteger(92, columns());
    for (int code = 93; code <= 96; ++code) out.addInteger(code, 0);
  } else {
    for (; at < own.end && t[at].code != 141 && t[at].code != 142 && t[at].code != 171; ++at) {
      if (t[at].code == 342) {
        const Drawing* d = cad::drawingNumbered(style.databaseIndex());
        out.addHandle(342, d ? d->record(style.index()).handle : t.handle(at));
      } else if (t[at].code == 343) {
        out.addHandle(343, block);
      } else if (t[at].code == 91 || t[at].code == 92) {
        out.addInteger(t[at].code, t[at].code == 91 ? rows() : columns());
      } else {
        out.insertCopy(out.size(), t, at);
      }
    }
    while (at < own.end && (t[at].code == 141 || t[at].code == 142)) ++at;
  }
  for (const double h : rowHeights) out.addReal(141, h);
  for (const double w : columnWidths) out.addReal(142, w);
  for (; at < own.end && t[at].code != 171; ++at) out.insertCopy(out.size(), t, at);
  for (const Cell& c : cells) {
    if (c.from < 0) {
      addNewCell(out, c, version);
    } else {
      addChangedCell(out, t, {own.begin + c.from, own.begin + c.to}, c, version);
    }
  }
  for (int i = own.end; i < t.size(); ++i) out.insertCopy(out.size(), t, i);
  std::swap(t, out);
}

cad::TablePicture AcDbTable::Grid::picture(const Drawing& d) const {
  cad::TablePicture p;
  p.rowHeights = rowHeights;
  p.columnWidths = columnWidths;
  p.look = look();
  for (int r = 0; r < rows(); ++r) {
    for (int c = 0; c < columns(); ++c) {
      const Cell& from = cell(r, c);
      if (from.covered) continue;
      cad::PictureCell& to = p.cells.emplace_back();
      to.row = r;
      to.column = c;
      to.rows = from.rows;
      to.columns = from.columns;
      to.text = from.text;
      to.textHeight = from.height > 0 ? from.height : p.look.ofRow(r).textHeight;
      to.alignment = from.alignment > 0 ? from.alignment : p.look.ofRow(r).alignment;
      if (const std::uint32_t block = from.block ? d.byHandle(from.block) : 0) {
        to.block = d.names().text(d.record(block).name);
        to.blockScale = from.blockScale;
      }
    }
  }
  return p;
}

AcDbTable::AcDbTable() {
  TagList& t = tagsForWrite();
  t.create(neutral(), "ACAD_TABLE");
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
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  TagList& t = tagsForWrite();
  dropProxyPicture(t);
  t.putPoint(10, position, t.subclass("AcDbBlockReference"));
  return Acad::eOk;
}

AcDbObjectId AcDbTable::tableStyle() const { return grid().style; }
Acad::ErrorStatus AcDbTable::setTableStyle(AcDbObjectId style) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
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
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (rows < 1) return Acad::eInvalidInput;
  Grid& g = gridForWrite();
  g.resize(static_cast<std::size_t>(rows), g.columnWidths.size());
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTable::setNumColumns(int columns) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
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
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!(height > 0)) return Acad::eInvalidInput;
  for (double& h : gridForWrite().rowHeights) h = height;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTable::setColumnWidth(double width) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!(width > 0)) return Acad::eInvalidInput;
  for (double& w : gridForWrite().columnWidths) w = width;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTable::setRowHeight(int row, double height) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!(height > 0)) return Acad::eInvalidInput;
  if (!grid().has(row, 0)) return Acad::eInvalidIndex;
  gridForWrite().rowHeights[static_cast<std::size_t>(row)] = height;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTable::setColumnWidth(int column, double width) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!(width > 0)) return Acad::eInvalidInput;
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
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  const double now = this->width();
  if (!(width > 0) || !(now > 0)) return Acad::eInvalidInput;
  for (double& w : gridForWrite().columnWidths) w *= width / now;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTable::setHeight(double height) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  const double now = this->height();
  if (!(height > 0) || !(now > 0)) return Acad::eInvalidInput;
  for (double& h : gridForWrite().rowHeights) h *= height / now;
  return Acad::eOk;
}

std::u16string AcDbTable::textString(int row, int column) const {
  return grid().has(row, column) ? grid().cell(row, column).text : std::u16string();
}
Acad::ErrorStatus AcDbTable::setTextString(int row, int column, std::u16string_view text) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!grid().has(row, column)) return Acad::eInvalidIndex;
  Cell& c = gridForWrite().cell(row, column);
  c.text = text;
  c.textChanged = true;
  c.kind = kTextCell;
  c.block = 0;
  return Acad::eOk;
}

double AcDbTable::textHeight(int row, int column) const {
  if (!grid().has(row, column)) return 0;
  const Cell& c = grid().cell(row, column);
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
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!(height > 0)) return Acad::eInvalidInput;
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
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (minRow > maxRow || minColumn > maxColumn || !grid().has(minRow, minColumn) ||
      !grid().has(maxRow, maxColumn)) {
    return Acad::eInvalidIndex;
  }
  gridForWrite().merge(minRow, maxRow, minColumn, maxColumn);
  return Acad::eOk;
}
bool AcDbTable::isMergedCell(int row, int column) const {
  if (!grid().has(row, column)) return false;
  const Cell& c = grid().cell(row, column);
  return c.covered || c.rows > 1 || c.columns > 1;
}

std::u16string AcDbTable::blockName() const {
  return tags().textOr(2, u"", tags().subclass("AcDbBlockReference"));
}
