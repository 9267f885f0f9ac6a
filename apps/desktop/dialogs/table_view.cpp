#include "apps/desktop/dialogs/table_view.h"

#include <QHeaderView>
#include <QScrollBar>
#include <algorithm>
#include <numeric>

namespace desktop {

TableView::TableView(QWidget* parent) : QTableView(parent) {
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  horizontalHeader()->setStretchLastSection(true);
  setWordWrap(false);
  setHorizontalScrollMode(ScrollPerPixel);
  QObject::connect(horizontalHeader(), &QHeaderView::sectionResized, this,
                   [this] { byHand_ = byHand_ || !sharing_; });
  // Tab goes on to the next control of the dialog.
  setTabKeyNavigation(false);
}

void TableView::fitColumns(const std::vector<int>& widths) {
  constexpr int sample = 300, widest = 360, padding = 16;
  const QFontMetrics metrics = fontMetrics();
  const int rows = std::min(model()->rowCount(), sample);
  least_.clear();
  wished_.clear();
  for (int c = 0; c < model()->columnCount(); ++c) {
    const QString title = model()->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString();
    int width = metrics.horizontalAdvance(title) + padding;
    for (int r = 0; r < rows; ++r)
      width = std::max(width,
                       metrics.horizontalAdvance(model()->index(r, c).data().toString()) + padding);
    least_.push_back(std::min(width, widest));
    const auto at = static_cast<std::size_t>(c);
    wished_.push_back(std::max(least_.back(), at < widths.size() ? widths[at] : 0));
  }
  byHand_ = false;
  share();
  updateGeometry();
}

static int sumOf(const std::vector<int>& widths) {
  return std::accumulate(widths.begin(), widths.end(), 0);
}

// What all columns wish for beyond what they need shrinks alike where there is not room for it.
void TableView::share() {
  if (byHand_) return;
  const int spare = sumOf(wished_) - sumOf(least_);
  const int room = std::clamp(viewport()->width() - sumOf(least_), 0, spare);
  sharing_ = true;
  for (std::size_t c = 0; c < wished_.size(); ++c) {
    const int more = spare > 0 ? (wished_[c] - least_[c]) * room / spare : 0;
    setColumnWidth(static_cast<int>(c), least_[c] + more);
  }
  sharing_ = false;
}

void TableView::resizeEvent(QResizeEvent* event) {
  sharing_ = true;  // the last column takes what is left
  QTableView::resizeEvent(event);
  share();
}

QSize TableView::sizeHint() const {
  constexpr int least = 180, most = 900, rows = 9;
  const int frame = 2 * frameWidth();
  const int width = sumOf(wished_) + verticalScrollBar()->sizeHint().width() + frame;
  return {std::clamp(width, least, most), horizontalHeader()->sizeHint().height() +
                                              rows * verticalHeader()->defaultSectionSize() +
                                              frame};
}

QString TableView::textOf(const QModelIndexList& rows) const {
  QString text;
  for (const QModelIndex& row : rows) {
    for (int c = 0; c < model()->columnCount(); ++c) {
      QString cell = row.siblingAtColumn(c).data().toString();
      for (QChar& sign : cell)
        if (sign == u'\t' || sign == u'\n') sign = u' ';
      text += (c > 0 ? QStringLiteral("\t") : QString()) + cell;
    }
    text += u'\n';
  }
  return text;
}

}  // namespace desktop
