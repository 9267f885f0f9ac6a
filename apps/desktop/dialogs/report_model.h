// The rows of a report list, in the order in which they are looked at. The list keeps its own.
#pragma once

#include <QAbstractTableModel>
#include <optional>
#include <vector>

#include "cad/ui/tables.h"

namespace desktop {

class ReportModel : public QAbstractTableModel {
 public:
  // `list` outlives the model.
  explicit ReportModel(const cad::ui::ReportList& list) : list_(list) { reload(); }

  // What the list has now. Rows stay sorted as they were while the columns are the same.
  void reload();
  // Whether the list has other rows or columns than at the last reload.
  bool outdated() const { return revision_ != list_.revision(); }
  // The list's colour or state has changed.
  void repaint();

  // Rows in the order of a column's texts, numbers as numbers and before other texts; no column is
  // the list's own order.
  void sortBy(std::optional<int> column, Qt::SortOrder order);

  // The list's row in a row of the view and the reverse; -1 for none.
  int listRow(int viewRow) const;
  int viewRow(int listRow) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  void arrange();
  void noteNumbers();

  const cad::ui::ReportList& list_;
  unsigned revision_ = 0;
  std::size_t columns_ = 0;
  std::vector<int> rows_, places_;  // view row -> list row, list row -> view row
  std::vector<bool> numbers_;       // columns that hold numbers alone
  std::optional<int> sorted_;
  Qt::SortOrder order_ = Qt::AscendingOrder;
};

}  // namespace desktop
