#include "apps/desktop/dialogs/report_model.h"

#include <QColor>
#include <algorithm>
#include <numeric>

#include "apps/desktop/text.h"
#include "cad/ui/names.h"
#include "platform/text.h"

namespace desktop {

namespace {

// A cell as sorting sees it. Texts point into the list.
struct Key {
  std::optional<double> number;
  const std::u16string* text;
};

bool less(const Key& a, const Key& b) {
  if (a.number && b.number) return *a.number < *b.number;
  if (a.number || b.number) return a.number.has_value();
  return *a.text < *b.text;
}

constexpr int kSample = 200;  // rows that tell what a column holds

}  // namespace

void ReportModel::reload() {
  beginResetModel();
  revision_ = list_.revision();
  if (columns_ != list_.columns().size()) sorted_.reset();
  columns_ = list_.columns().size();
  noteNumbers();
  arrange();
  endResetModel();
}

void ReportModel::repaint() {
  if (rows_.empty() || columns_ == 0) return;
  Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

void ReportModel::noteNumbers() {
  numbers_.assign(columns_, false);
  const int sample = std::min(list_.count(), kSample);
  for (std::size_t c = 0; c < columns_; ++c) {
    int filled = 0, numbers = 0;
    for (int r = 0; r < sample; ++r) {
      const std::u16string& text = list_.cell(r, static_cast<int>(c));
      if (text.empty()) continue;
      ++filled;
      numbers += platform::parseReal(text) ? 1 : 0;
    }
    numbers_[c] = filled > 0 && numbers == filled;
  }
}

void ReportModel::arrange() {
  rows_.resize(static_cast<std::size_t>(list_.count()));
  std::iota(rows_.begin(), rows_.end(), 0);
  if (sorted_) {
    std::vector<Key> keys;
    keys.reserve(rows_.size());
    for (int r = 0; r < list_.count(); ++r) {
      const std::u16string& text = list_.cell(r, *sorted_);
      keys.push_back({platform::parseReal(text), &text});
    }
    const bool up = order_ == Qt::AscendingOrder;
    std::stable_sort(rows_.begin(), rows_.end(), [&](int a, int b) {
      const Key& ka = keys[static_cast<std::size_t>(a)];
      const Key& kb = keys[static_cast<std::size_t>(b)];
      return up ? less(ka, kb) : less(kb, ka);
    });
  }
  places_.resize(rows_.size());
  for (std::size_t i = 0; i < rows_.size(); ++i)
    places_[static_cast<std::size_t>(rows_[i])] = static_cast<int>(i);
}

void ReportModel::sortBy(std::optional<int> column, Qt::SortOrder order) {
  if (outdated()) reload();
  Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
  sorted_ = column;
  order_ = order;
  const std::vector<int> before = rows_;
  arrange();
  QModelIndexList to;
  const QModelIndexList from = persistentIndexList();
  for (const QModelIndex& at : from)
    to.append(index(viewRow(before[static_cast<std::size_t>(at.row())]), at.column()));
  changePersistentIndexList(from, to);
  Q_EMIT layoutChanged({}, VerticalSortHint);
}

int ReportModel::listRow(int viewRow) const {
  return viewRow >= 0 && viewRow < rowCount() ? rows_[static_cast<std::size_t>(viewRow)] : -1;
}

int ReportModel::viewRow(int listRow) const {
  return listRow >= 0 && listRow < rowCount() ? places_[static_cast<std::size_t>(listRow)] : -1;
}

int ReportModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ReportModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(columns_);
}

QVariant ReportModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const auto column = static_cast<std::size_t>(index.column());
  switch (role) {
    case Qt::DisplayRole:
      return qt(list_.cell(listRow(index.row()), index.column()));
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::Alignment(Qt::AlignVCenter) |
                                 (numbers_[column] ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::BackgroundRole:
      if (const auto colour = list_.background())
        return QColor(colour->red, colour->green, colour->blue);
      return {};
    case Qt::ForegroundRole:
      if (const auto colour = list_.background())
        return QColor(QColor(colour->red, colour->green, colour->blue).lightness() > 128
                          ? Qt::black
                          : Qt::white);
      return {};
    default:
      return {};
  }
}

QVariant ReportModel::headerData(int section, Qt::Orientation orientation, int role) const {
  const auto column = static_cast<std::size_t>(section);
  if (orientation != Qt::Horizontal || section < 0 || column >= list_.columns().size()) return {};
  if (role == Qt::DisplayRole) return qt(cad::ui::plainName(list_.columns()[column].title));
  if (role == Qt::TextAlignmentRole && column < numbers_.size() && numbers_[column])
    return QVariant::fromValue(Qt::Alignment(Qt::AlignVCenter | Qt::AlignRight));
  return {};
}

}  // namespace desktop
