#include "cad/ui/tables.h"

#include <algorithm>

#include "cad/ui/dialog.h"
#include "cad/ui/names.h"
#include "platform/format.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad::ui {

static const std::u16string noText;

// What fits in a cell: what parts cells and lines when they are copied becomes a blank in it.
static std::u16string cellText(std::u16string_view text) {
  std::u16string line(text);
  std::replace(line.begin(), line.end(), u'\t', u' ');
  std::replace(line.begin(), line.end(), u'\n', u' ');
  return line;
}

static std::size_t at(int index) { return static_cast<std::size_t>(index); }

// --- report list ---------------------------------------------------------------------------------

ReportList::ReportList(Place place, std::u16string_view label, ReportOptions o, Handler selected,
                       Handler doubleClicked)
    : Control(place, label, {o.name, o.enabled, o.visible}),
      columns_(std::move(o.columns)),
      declared_(columns_),
      selectedHandler_(std::move(selected)),
      doubleClicked_(std::move(doubleClicked)) {}

void ReportList::setColumns(std::vector<Column> columns) {
  columns_ = std::move(columns);
  ++revision_;
  refresh();
}

const std::u16string& ReportList::cell(int row, int column) const {
  if (row < 0 || row >= count() || column < 0 || at(column) >= rows_[at(row)].size()) return noText;
  return rows_[at(row)][at(column)];
}

void ReportList::addRow(Row row) {
  rows_.push_back(std::move(row));
  ++revision_;
  refresh();
}

void ReportList::setRows(std::vector<Row> rows) {
  rows_ = std::move(rows);
  selected_ = -1;
  ++revision_;
  refresh();
}

void ReportList::clear() { setRows({}); }

void ReportList::setBackground(std::optional<Colour> colour) {
  background_ = colour;
  refresh();
}

void ReportList::select(int row) {
  selected_ = row >= 0 && row < count() ? row : -1;
  refresh();
}

Gesture ReportList::noRow(int row) const {
  return platform::Error{platform::narrow(platform::format(
      platform::words(u"La riga %d non c'è: le righe sono %d."), row + 1, count()))};
}

Gesture ReportList::onEnter(std::u16string_view text) {
  for (int i = 0; i < count(); ++i)
    if (cell(i, 0) == text) return onChoose(i);
  return platform::Error{platform::narrow(
      platform::format(platform::words(u"Nessuna riga comincia con %s."), quoted(text)))};
}

Gesture ReportList::onChoose(int row) {
  if (row < 0 || row >= count()) return noRow(row);
  selected_ = row;
  done(platform::format(u"[%d]", row + 1), selectedHandler_);
  return {};
}

Gesture ReportList::onDoubleClick(int row) {
  if (row < 0 || row >= count()) return noRow(row);
  selected_ = row;
  done(platform::format(u"[%d] **", row + 1), doubleClicked_);
  return {};
}

void ReportList::resetFace() {
  Control::resetFace();
  columns_ = declared_;
  rows_.clear();
  ++revision_;
  background_.reset();
  selected_ = -1;
}

void ReportList::visitTexts(const TextVisitor& visit) {
  Control::visitTexts(visit);
  ++revision_;
  for (auto& column : columns_) visit(column.title);
}

// --- grid
// ------------------------------------------------------------------------------------------

Grid::Grid(Place place, std::u16string_view label, GridOptions o, Handler edited)
    : Control(place, label, {o.name, o.enabled, o.visible}),
      columns_(std::move(o.columns)),
      declared_(columns_),
      fixedColumns_(o.fixedColumns),
      declaredFixed_(o.fixedColumns),
      rowHeight_(o.rowHeight),
      edited_(std::move(edited)) {}

void Grid::setColumns(std::vector<Column> columns) {
  columns_ = std::move(columns);
  for (auto& row : rows_) row.resize(columns_.size());
  from_ = to_ = current_ = {};
  refresh();
}

void Grid::setColumnTitle(int index, std::u16string_view title) {
  if (index < 0 || index >= columnCount()) return;
  columns_[at(index)].title = title;
  refresh();
}

void Grid::setFixedColumns(int count) {
  fixedColumns_ = count;
  refresh();
}

void Grid::setRowHeight(int pixels) {
  rowHeight_ = pixels;
  refresh();
}

void Grid::setRowCount(int count) {
  rows_.resize(at(std::max(count - 1, 0)), std::vector<std::u16string>(columns_.size()));
  if (to_.row >= rowCount() || current_.row >= rowCount()) from_ = to_ = current_ = {};
  refresh();
}

bool Grid::insertRow(int row) {
  if (row < 1 || row > rowCount()) return false;
  rows_.insert(rows_.begin() + (row - 1), std::vector<std::u16string>(columns_.size()));
  refresh();
  return true;
}

bool Grid::deleteRow(int row) {
  if (row < 1 || row >= rowCount()) return false;
  rows_.erase(rows_.begin() + (row - 1));
  if (to_.row >= rowCount() || current_.row >= rowCount()) from_ = to_ = current_ = {};
  refresh();
  return true;
}

bool Grid::contains(int row, int column) const {
  return row >= 0 && row < rowCount() && column >= 0 && column < columnCount();
}

const std::u16string& Grid::cell(int row, int column) const {
  if (!contains(row, column)) return noText;
  return row == 0 ? columns_[at(column)].title : rows_[at(row - 1)][at(column)];
}

void Grid::setCell(int row, int column, std::u16string_view text) {
  if (!contains(row, column)) return;
  (row == 0 ? columns_[at(column)].title : rows_[at(row - 1)][at(column)]) = text;
  refresh();
}

bool Grid::editable(int row, int column) const {
  return contains(row, column) && row > 0 && column >= fixedColumns_ &&
         !columns_[at(column)].readOnly;
}

void Grid::select(Cell from, Cell to) {
  if (!contains(from.row, from.column) || !contains(to.row, to.column)) {
    from_ = to_ = {};
  } else {
    from_ = {std::min(from.row, to.row), std::min(from.column, to.column)};
    to_ = {std::max(from.row, to.row), std::max(from.column, to.column)};
  }
  refresh();
}

std::u16string Grid::copied() const {
  std::u16string out;
  if (!hasSelection()) return out;
  for (int r = from_.row; r <= to_.row; ++r) {
    for (int c = from_.column; c <= to_.column; ++c) {
      if (c > from_.column) out += u'\t';
      out += cellText(cell(r, c));
    }
    out += u'\n';
  }
  return out;
}

void Grid::paste(std::u16string_view text) {
  if (!hasSelection()) return;
  int row = from_.row;
  for (std::size_t i = 0; i < text.size() && row < rowCount(); ++row) {
    std::size_t end = std::min(text.find(u'\n', i), text.size());
    std::u16string_view line = text.substr(i, end - i);
    if (line.ends_with(u'\r')) line.remove_suffix(1);
    int column = from_.column;
    for (std::size_t k = 0; k <= line.size(); ++column) {
      std::size_t tab = std::min(line.find(u'\t', k), line.size());
      if (editable(row, column)) rows_[at(row - 1)][at(column)] = line.substr(k, tab - k);
      k = tab + 1;
    }
    i = end + 1;
  }
  refresh();
}

std::u16string Grid::place(Cell cell) const {
  std::u16string title = cell.column < columnCount() ? columns_[at(cell.column)].title : u"";
  int same = 0;
  for (const auto& column : columns_) same += sameName(column.title, title) ? 1 : 0;
  return platform::format(u"[%d,%s]", cell.row,
                          same == 1 && !plainName(title).empty()
                              ? plainName(title)
                              : platform::format(u"#%d", cell.column + 1));
}

Gesture Grid::enterCell(int row, int column, std::u16string_view text) {
  if (auto able = ready(); !able) return able;
  if (!contains(row, column) || row == 0)
    return platform::Error{platform::narrow(platform::format(
        platform::words(u"La cella %d,%d non c'è: le righe sono %d e le colonne %d."), row,
        column + 1, rowCount() - 1, columnCount()))};
  if (!editable(row, column))
    return platform::Error{platform::narrow(platform::format(
        platform::words(u"La cella %d,%d non si può modificare."), row, column + 1))};
  std::u16string& typed = rows_[at(row - 1)][at(column)];
  typed = cellText(text);
  current_ = {row, column};
  done(place(current_) + u" = " + quoted(typed), edited_);
  return {};
}

Gesture Grid::selectCells(Cell from, Cell to) {
  if (auto able = ready(); !able) return able;
  if (from.row < 1 || to.row < 1 || !contains(from.row, from.column) ||
      !contains(to.row, to.column))
    return platform::Error{platform::narrow(platform::format(
        platform::words(u"La selezione esce dalla griglia: le righe sono %d e le colonne %d."),
        rowCount() - 1, columnCount()))};
  select(from, to);
  current_ = from;
  done(from == to ? platform::format(u"[%d,#%d]", from_.row, from_.column + 1)
                  : platform::format(u"[%d,#%d..%d,#%d]", from_.row, from_.column + 1, to_.row,
                                     to_.column + 1),
       {});
  return {};
}

Gesture Grid::chooseMenu(Cell cell, int entry) {
  if (auto able = ready(); !able) return able;
  auto entries = menu();
  if (entries.empty()) return platform::Error{"La griglia non ha un menu."};
  if (entry < 0 || at(entry) >= entries.size())
    return platform::Error{platform::narrow(
        platform::format(platform::words(u"Il menu ha: %s."), enumerated(entries)))};
  if (!contains(cell.row, cell.column))
    return platform::Error{platform::narrow(platform::format(
        platform::words(u"La cella %d,%d non c'è: le righe sono %d e le colonne %d."), cell.row,
        cell.column + 1, rowCount() - 1, columnCount()))};
  current_ = cell;
  // A right click outside the selection moves it, as in any spreadsheet.
  bool inside = hasSelection() && cell.row >= from_.row && cell.row <= to_.row &&
                cell.column >= from_.column && cell.column <= to_.column;
  if (!inside) select(cell, cell);
  done(place(cell) + u" > " + entries[at(entry)],
       Handler([this, entry, cell] { onMenu(entry, cell); }));
  return {};
}

void Grid::onMenu(int, Cell) {}

std::u16string Grid::shown() const {
  return current_.row > 0 ? cell(current_.row, current_.column) : std::u16string();
}

void Grid::resetFace() {
  Control::resetFace();
  columns_ = declared_;
  fixedColumns_ = declaredFixed_;
  rows_.clear();
  from_ = to_ = current_ = {};
}

void Grid::visitTexts(const TextVisitor& visit) {
  Control::visitTexts(visit);
  for (auto& column : columns_) visit(column.title);
}

}  // namespace cad::ui
