#include "apps/desktop/dialogs/table_view.h"

#include <QHeaderView>
#include <QScrollBar>
#include <algorithm>

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
  // Tab goes on to the next control of the dialog.
  setTabKeyNavigation(false);
}

void TableView::fitColumns(const std::vector<int>& widths) {
  constexpr int sample = 300, widest = 360, padding = 18;
  const QFontMetrics metrics = fontMetrics();
  const int rows = std::min(model()->rowCount(), sample);
  wanted_ = 0;
  for (int c = 0; c < model()->columnCount(); ++c) {
    const QString title = model()->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString();
    int width = metrics.horizontalAdvance(title) + padding + 14;  // room for the sign of sorting
    for (int r = 0; r < rows; ++r)
      width = std::max(width,
                       metrics.horizontalAdvance(model()->index(r, c).data().toString()) + padding);
    width = std::min(width, widest);
    if (static_cast<std::size_t>(c) < widths.size())
      width = std::max(width, widths[static_cast<std::size_t>(c)]);
    setColumnWidth(c, width);
    wanted_ += width;
  }
  updateGeometry();
}

QSize TableView::sizeHint() const {
  constexpr int least = 180, most = 900, rows = 9;
  const int frame = 2 * frameWidth();
  const int width = wanted_ + verticalScrollBar()->sizeHint().width() + frame;
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
