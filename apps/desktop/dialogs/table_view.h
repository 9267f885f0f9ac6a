// What the views of report lists and grids have in common.
#pragma once

#include <QTableView>
#include <vector>

namespace desktop {

class TableView : public QTableView {
 public:
  explicit TableView(QWidget* parent);
  // Each column as wide as its title and a sample of its cells, and as its `widths` say where the
  // view has room for that.
  void fitColumns(const std::vector<int>& widths);
  QSize sizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  // The cells as they are pasted elsewhere: tabs between cells, a line end behind each row.
  QString textOf(const QModelIndexList& rows) const;

 private:
  void share();

  std::vector<int> least_, wished_;  // widths of columns
  bool byHand_ = false;              // the user has set them since
  bool sharing_ = false;
};

}  // namespace desktop
