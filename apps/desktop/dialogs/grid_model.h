// The data rows of a grid; its row 0 is the header. Edits go to the grid as gestures.
#pragma once

#include <QAbstractTableModel>
#include <functional>

#include "cad/ui/tables.h"

namespace desktop {

class GridModel : public QAbstractTableModel {
 public:
  using Edit = std::function<bool(cad::ui::Grid::Cell, const QString&)>;

  // `grid` outlives the model; `edit` tells whether the text has been taken.
  GridModel(const cad::ui::Grid& grid, Edit edit);

  // What the grid has now.
  void reload();

  static cad::ui::Grid::Cell cellOf(const QModelIndex& index) {
    return {index.row() + 1, index.column()};
  }
  QModelIndex indexOf(cad::ui::Grid::Cell cell) const { return index(cell.row - 1, cell.column); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 private:
  const cad::ui::Grid& grid_;
  Edit edit_;
  int rows_ = 0, columns_ = 0;  // as views have been told
};

}  // namespace desktop
