// What the views of report lists and grids have in common.
#pragma once

#include <QTableView>

namespace desktop {

class TableView : public QTableView {
 public:
  explicit TableView(QWidget* parent);
  // Each column as wide as its title and a sample of its cells, and at least as its `widths` say.
  void fitColumns(const std::vector<int>& widths);
  QSize sizeHint() const override;

 protected:
  // The cells as they are pasted elsewhere: tabs between cells, a line end behind each row.
  QString textOf(const QModelIndexList& rows) const;

 private:
  int wanted_ = 0;  // width of all columns
};

}  // namespace desktop
