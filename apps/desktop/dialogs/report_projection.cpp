// Report lists: rows to look at, to sort, to copy, to choose one of.
#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>

#include "apps/desktop/dialogs/projection.h"
#include "apps/desktop/dialogs/report_model.h"
#include "apps/desktop/dialogs/table_view.h"
#include "apps/desktop/text.h"

namespace desktop {

namespace ui = cad::ui;

namespace {

class ReportView : public TableView {
 public:
  ReportView(QWidget* parent, std::function<void(const QString&)> copy)
      : TableView(parent), copy_(std::move(copy)) {
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);  // several to copy; the list's own is the last one clicked
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    horizontalHeader()->setSortIndicatorShown(true);
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    horizontalHeader()->setSectionsClickable(true);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (!event->matches(QKeySequence::Copy)) return TableView::keyPressEvent(event);
    QModelIndexList rows = selectionModel()->selectedRows();
    if (rows.isEmpty()) return;  // what has been copied before stays
    std::sort(rows.begin(), rows.end());
    copy_(textOf(rows));
  }

 private:
  std::function<void(const QString&)> copy_;
};

class ReportProjection : public Projection {
 public:
  ReportProjection(ui::ReportList& list, QWidget* parent, Done report)
      : Projection(list, Shape::list, std::move(report)),
        list_(list),
        model_(list),
        view_(new ReportView(parent, [this](const QString& text) {
          list_.dialog().frontend().setClipboard(wide(text));
        })) {
    add(view_);
    view_->setModel(&model_);
    fit();
    QObject::connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, view_,
                     [this] { chosen(); });
    QObject::connect(view_, &QTableView::doubleClicked, view_, [this](const QModelIndex& at) {
      done(list_.doubleClick(model_.listRow(at.row())));
    });
    QObject::connect(view_->horizontalHeader(), &QHeaderView::sectionClicked, view_,
                     [this](int column) { sort(column); });
  }

 protected:
  void refresh() override {
    if (model_.outdated()) {
      model_.reload();
      fit();
    }
    if (background_ != list_.background()) {
      background_ = list_.background();
      model_.repaint();
    }
    const int row = model_.viewRow(list_.selected());
    if (row < 0) {
      view_->clearSelection();
    } else if (!view_->selectionModel()->isRowSelected(row)) {
      view_->selectRow(row);
    }
  }

 private:
  void fit() {
    std::vector<int> widths;
    for (const ui::Column& column : list_.columns()) widths.push_back(column.width);
    view_->fitColumns(widths);
  }

  // Up, down, and back to the order in which the rows came.
  void sort(int column) {
    QHeaderView* const header = view_->horizontalHeader();
    if (column != column_) {
      column_ = column;
      order_ = Qt::AscendingOrder;
    } else if (order_ == Qt::AscendingOrder) {
      order_ = Qt::DescendingOrder;
    } else {
      column_ = -1;
    }
    header->setSortIndicator(column_, order_);
    model_.sortBy(column_ < 0 ? std::nullopt : std::optional(column_), order_);
  }

  void chosen() {
    if (refreshing()) return;
    const QModelIndex at = view_->currentIndex();
    const bool selected = at.isValid() && view_->selectionModel()->isSelected(at);
    const int row = selected ? model_.listRow(at.row()) : -1;
    done(row < 0 || row == list_.selected() ? ui::Gesture() : list_.choose(row));
  }

  ui::ReportList& list_;
  ReportModel model_;
  ReportView* view_;
  std::optional<ui::Colour> background_;
  int column_ = -1;
  Qt::SortOrder order_ = Qt::AscendingOrder;
};

}  // namespace

std::unique_ptr<Projection> projectReport(ui::ReportList& c, QWidget* parent,
                                          Projection::Done done) {
  return std::make_unique<ReportProjection>(c, parent, std::move(done));
}

}  // namespace desktop
