// Grids: cells to edit, rectangles of them to copy and to paste, a menu by right click.
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <algorithm>

#include "apps/desktop/dialogs/grid_model.h"
#include "apps/desktop/dialogs/projection.h"
#include "apps/desktop/dialogs/table_view.h"
#include "apps/desktop/text.h"

namespace desktop {

namespace ui = cad::ui;
using Cell = ui::Grid::Cell;

namespace {

class GridProjection;

class GridView : public TableView {
 public:
  GridView(QWidget* parent, GridProjection& projection)
      : TableView(parent), projection_(projection) {
    setSelectionMode(ContiguousSelection);
    setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

 private:
  GridProjection& projection_;
};

class GridProjection : public Projection {
 public:
  GridProjection(ui::Grid& grid, QWidget* parent, Done report)
      : Projection(grid, Shape::list, std::move(report)),
        grid_(grid),
        model_(grid, [this](Cell at, const QString& text) { return enter(at, text); }),
        view_(new GridView(parent, *this)) {
    add(view_);
    view_->setModel(&model_);
    view_->verticalHeader()->setMinimumSectionSize(8);
    fit();
    QObject::connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, view_,
                     [this] { selectionMoved_ = selectionMoved_ || !refreshing(); });
    QHeaderView* const header = view_->horizontalHeader();
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(header, &QWidget::customContextMenuRequested, view_,
                     [this, header](QPoint at) {
                       if (const int column = header->logicalIndexAt(at); column >= 0)
                         popUp({0, column}, header->mapToGlobal(at));
                     });
  }

  // Tells the grid which cells are selected now: once, when the user has let go of them.
  void takeSelection() {
    if (!std::exchange(selectionMoved_, false)) return;
    const QItemSelection ranges = view_->selectionModel()->selection();
    if (ranges.isEmpty()) return;
    const QItemSelectionRange& range = ranges.front();
    done(grid_.selectCells({range.top() + 1, range.left()}, {range.bottom() + 1, range.right()}));
  }

  bool copy() {
    takeSelection();
    if (!grid_.hasSelection()) return false;
    grid_.dialog().frontend().setClipboard(grid_.copied());
    return true;
  }

  // From the first selected cell on, cell by cell, as by hand; what is fixed is passed over.
  void paste() {
    takeSelection();
    const Cell from =
        grid_.hasSelection() ? grid_.selectionFrom() : GridModel::cellOf(view_->currentIndex());
    const QStringList lines = qt(grid_.dialog().frontend().clipboard()).split(u'\n');
    for (int r = 0; r < lines.size() && from.row + r < grid_.rowCount(); ++r) {
      const QString line = lines[r].endsWith(u'\r') ? lines[r].chopped(1) : lines[r];
      if (r + 1 == lines.size() && line.isEmpty()) break;  // the end of the last line
      const QStringList cells = line.split(u'\t');
      for (int c = 0; c < cells.size(); ++c)
        if (grid_.editable(from.row + r, from.column + c))
          enter({from.row + r, from.column + c}, cells[c]);
    }
  }

  void clear() {
    takeSelection();
    if (!grid_.hasSelection()) return;
    const Cell from = grid_.selectionFrom(), to = grid_.selectionTo();
    for (int r = from.row; r <= to.row; ++r)
      for (int c = from.column; c <= to.column; ++c)
        if (grid_.editable(r, c) && !grid_.cell(r, c).empty()) enter({r, c}, {});
  }

  void popUp(Cell at, QPoint where) {
    if (!grid_.enabled()) return;
    takeSelection();
    QMenu menu(view_);
    int entry = 0;
    for (const std::u16string& text : grid_.menu()) menu.addAction(qt(text))->setData(entry++);
    if (menu.isEmpty()) return;
    if (const QAction* const chosen = menu.exec(where))
      done(grid_.chooseMenu(at, chosen->data().toInt()));
  }

 protected:
  void refresh() override {
    view_->verticalHeader()->setDefaultSectionSize(
        std::max(grid_.rowHeight(), view_->fontMetrics().height() + 6));
    model_.reload();
    if (columnWidths() != widths_) fit();
    if (!grid_.hasSelection()) return;
    const QItemSelection wanted(model_.indexOf(grid_.selectionFrom()),
                                model_.indexOf(grid_.selectionTo()));
    if (wanted != view_->selectionModel()->selection())
      view_->selectionModel()->select(wanted, QItemSelectionModel::ClearAndSelect);
  }

 private:
  bool enter(Cell at, const QString& text) {
    const ui::Gesture entered = grid_.enterCell(at.row, at.column, wide(text));
    done(entered);
    return static_cast<bool>(entered);
  }
  std::vector<int> columnWidths() const {
    std::vector<int> widths;
    for (int c = 0; c < grid_.columnCount(); ++c) widths.push_back(grid_.column(c).width);
    return widths;
  }
  void fit() {
    widths_ = columnWidths();
    view_->fitColumns(widths_);
  }

  ui::Grid& grid_;
  GridModel model_;
  GridView* view_;
  std::vector<int> widths_;
  bool selectionMoved_ = false;
};

void GridView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    projection_.copy();
  } else if (event->matches(QKeySequence::Cut)) {
    if (projection_.copy()) projection_.clear();
  } else if (event->matches(QKeySequence::Paste)) {
    projection_.paste();
  } else if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
    projection_.clear();
  } else {
    TableView::keyPressEvent(event);
    if (state() != EditingState) projection_.takeSelection();
  }
}

void GridView::mouseReleaseEvent(QMouseEvent* event) {
  TableView::mouseReleaseEvent(event);
  projection_.takeSelection();
}

void GridView::contextMenuEvent(QContextMenuEvent* event) {
  const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
  const QModelIndex at = byKey ? currentIndex() : indexAt(event->pos());
  if (!at.isValid()) return;
  const QPoint where = byKey ? visualRect(at).bottomLeft() : event->pos();
  projection_.popUp(GridModel::cellOf(at), viewport()->mapToGlobal(where));
}

// Enter goes down to the next row, as in any spreadsheet.
void GridView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  TableView::closeEditor(editor, hint);
  const QModelIndex below = currentIndex().siblingAtRow(currentIndex().row() + 1);
  if (hint == QAbstractItemDelegate::SubmitModelCache && below.isValid()) setCurrentIndex(below);
  projection_.takeSelection();
}

}  // namespace

std::unique_ptr<Projection> projectGrid(ui::Grid& c, QWidget* parent, Projection::Done done) {
  return std::make_unique<GridProjection>(c, parent, std::move(done));
}

}  // namespace desktop
