#include "apps/desktop/dialogs/grid_model.h"

#include <QApplication>
#include <QPalette>

#include "apps/desktop/text.h"
#include "cad/ui/names.h"

namespace desktop {

GridModel::GridModel(const cad::ui::Grid& grid, Edit edit)
    : grid_(grid),
      edit_(std::move(edit)),
      rows_(grid.rowCount() - 1),
      columns_(grid.columnCount()) {}

void GridModel::reload() {
  const int rows = grid_.rowCount() - 1;
  if (rows != rows_ || grid_.columnCount() != columns_) {
    beginResetModel();
    rows_ = rows;
    columns_ = grid_.columnCount();
    endResetModel();
    return;
  }
  if (columns_ == 0) return;
  Q_EMIT headerDataChanged(Qt::Horizontal, 0, columns_ - 1);
  if (rows_ > 0) Q_EMIT dataChanged(index(0, 0), index(rows_ - 1, columns_ - 1));
}

int GridModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_; }

int GridModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns_;
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const auto [row, column] = cellOf(index);
  if (role == Qt::DisplayRole || role == Qt::EditRole) return qt(grid_.cell(row, column));
  // Cells that nobody edits look like the header.
  if (role == Qt::BackgroundRole && !grid_.editable(row, column))
    return QApplication::palette().button();
  return {};
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return qt(cad::ui::plainName(grid_.cell(0, section)));
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
  Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  const auto [row, column] = cellOf(index);
  if (index.isValid() && grid_.editable(row, column)) flags |= Qt::ItemIsEditable;
  return flags;
}

bool GridModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return false;
  if (value.toString() == data(index, Qt::EditRole).toString()) return true;  // opened and left
  if (!edit_(cellOf(index), value.toString())) return false;
  Q_EMIT dataChanged(index, index);
  return true;
}

}  // namespace desktop
