#include "apps/desktop/docks/layers.h"

#include <QEvent>
#include <QFontMetrics>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

#include "apps/desktop/docks/filter_line.h"
#include "apps/desktop/docks/natural_order.h"
#include "apps/desktop/docks/palette_popup.h"
#include "apps/desktop/icons.h"
#include "apps/desktop/text.h"

namespace desktop {

using cad::LayerInfo;

namespace {

// Framed, so that the colour of the list itself is seen too.
QPixmap swatchOf(int colour, bool darkGround) {
  constexpr int kSide = 14, kFine = 2;
  QPixmap swatch(kSide * kFine, kSide * kFine);
  swatch.setDevicePixelRatio(kFine);
  swatch.fill(shownColour(colour, darkGround));
  QPainter painter(&swatch);
  painter.setPen(QColor(128, 128, 128));
  painter.drawRect(QRectF(0.5, 0.5, kSide - 1, kSide - 1));
  return swatch;
}

}  // namespace

// --- the model -----------------------------------------------------------------------------------

void LayerModel::setLayers(std::vector<LayerInfo> layers) {
  std::sort(layers.begin(), layers.end(),
            [](const LayerInfo& a, const LayerInfo& b) { return isBefore(a.name, b.name); });
  if (layers == layers_) return;
  const bool same = std::equal(layers.begin(), layers.end(), layers_.begin(), layers_.end(),
                               [](const auto& a, const auto& b) { return a.name == b.name; });
  if (same) {
    layers_ = std::move(layers);
    if (!shown_.empty()) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
    return;
  }
  beginResetModel();
  layers_ = std::move(layers);
  shown_ = filtered();
  endResetModel();
}

void LayerModel::setFilter(const QString& filter) {
  if (filter == filter_) return;
  beginResetModel();
  filter_ = filter;
  shown_ = filtered();
  endResetModel();
}

std::vector<std::size_t> LayerModel::filtered() const {
  std::vector<std::size_t> shown;
  for (std::size_t i = 0; i < layers_.size(); ++i) {
    if (qt(layers_[i].name).contains(filter_, Qt::CaseInsensitive)) shown.push_back(i);
  }
  return shown;
}

void LayerModel::setDarkGround(bool dark) {
  darkGround_ = dark;
  if (!shown_.empty()) Q_EMIT dataChanged(index(0, colour), index(rowCount() - 1, colour));
}

int LayerModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}
int LayerModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QVariant LayerModel::stateOf(const LayerInfo& layer, int column) const {
  const bool set = column == on ? !layer.off : column == frozen ? layer.frozen : layer.locked;
  return static_cast<int>(set ? Qt::Checked : Qt::Unchecked);
}

QVariant LayerModel::data(const QModelIndex& index, int role) const {
  const LayerInfo& layer = at(index.row());
  const int column = index.column();
  if (column == name) {
    if (role == Qt::DisplayRole) return qt(layer.name);
    if (role == Qt::ToolTipRole) {
      return qt(layer.name) + QLatin1Char('\n') +
             (layer.current ? words(u"È il layer corrente: vi va ciò che si disegna.")
                            : words(u"Doppio clic: diventa il layer corrente."));
    }
    if (role == Qt::FontRole && layer.current) {
      QFont bold;
      bold.setBold(true);
      return bold;
    }
  } else if (column == colour) {
    if (role == Qt::DecorationRole) return swatchOf(layer.colour, darkGround_);
    if (role == Qt::DisplayRole) return QString::number(layer.colour);
    if (role == Qt::ToolTipRole) return words(u"Cambia il colore");
  } else if (role == Qt::CheckStateRole) {
    return stateOf(layer, column);
  } else if (role == Qt::AccessibleTextRole || role == Qt::ToolTipRole) {
    return headerData(column, Qt::Horizontal, Qt::ToolTipRole);
  }
  return {};
}

QVariant LayerModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  struct Head {
    const char16_t *text, *tip;
    const char* icon;
  };
  static constexpr Head kHeads[kColumns] = {
      {u"Layer", u"nome del layer", ""},
      {u"", u"visibile", "visible"},
      {u"", u"congelato: non visibile e non tenuto in conto", "frozen"},
      {u"", u"bloccato", "locked"},
      {u"Colore", u"colore di ciò che lo prende dal layer", ""},
  };
  const Head& head = kHeads[section];
  if (role == Qt::DisplayRole && *head.text) return words(head.text);
  if (role == Qt::ToolTipRole) return words(head.tip);
  if (role == Qt::DecorationRole && *head.icon) return iconNamed(QString::fromLatin1(head.icon));
  if (role == Qt::TextAlignmentRole && section == name)
    return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
  return {};
}

Qt::ItemFlags LayerModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  const bool checked = index.column() == on || index.column() == frozen || index.column() == locked;
  return checked ? flags | Qt::ItemIsUserCheckable : flags;
}

bool LayerModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole) return false;
  const bool set = value.toInt() == Qt::Checked;
  cad::LayerChange change;
  if (index.column() == on) change.off = !set;
  if (index.column() == frozen) change.frozen = set;
  if (index.column() == locked) change.locked = set;
  Q_EMIT wanted(index.row(), change);
  return false;
}

// --- the view ------------------------------------------------------------------------------------

namespace {

// A click beside the name of a chosen row leaves what is chosen: it is meant for all of it.
class LayerView : public QTableView {
 public:
  using QTableView::QTableView;

 protected:
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override {
    const bool chosen = index.isValid() && index.column() != LayerModel::name &&
                        selectionModel()->isRowSelected(index.row());
    const bool mouse = event && (event->type() == QEvent::MouseButtonPress ||
                                 event->type() == QEvent::MouseButtonRelease);
    if (chosen && mouse && !static_cast<const QMouseEvent*>(event)->modifiers())
      return QItemSelectionModel::NoUpdate;
    return QTableView::selectionCommand(index, event);
  }
};

}  // namespace

Layers::Layers(QWidget* parent)
    : QWidget(parent),
      filter_(new FilterLine(words(u"Cerca un layer"), this)),
      view_(new LayerView(this)) {
  view_->setModel(&model_);
  view_->setObjectName(QStringLiteral("layers"));
  view_->setAccessibleName(words(u"I layer"));
  view_->setShowGrid(false);
  view_->setSelectionBehavior(QAbstractItemView::SelectRows);
  view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  view_->setWordWrap(false);
  view_->setTextElideMode(Qt::ElideMiddle);
  view_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  view_->verticalHeader()->hide();
  view_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  view_->horizontalHeader()->setHighlightSections(false);
  auto* const all = new QVBoxLayout(this);
  all->setContentsMargins(4, 4, 4, 4);
  all->setSpacing(4);
  all->addWidget(filter_);
  all->addWidget(view_, 1);
  sizeColumns();
  connect(filter_, &FilterLine::rested, &model_, &LayerModel::setFilter);
  connect(&model_, &LayerModel::wanted, this, [this](int row, const cad::LayerChange& change) {
    Q_EMIT changeWanted(meant(row), change);
  });
  connect(view_, &QTableView::clicked, this, &Layers::clicked);
  connect(view_, &QTableView::doubleClicked, this, [this](const QModelIndex& index) {
    if (index.column() == LayerModel::name) Q_EMIT currentWanted(qt(model_.at(index.row()).name));
  });
}

void Layers::show(const cad::Drawing* drawing) {
  model_.setLayers(drawing ? cad::layersOf(*drawing) : std::vector<LayerInfo>());
}

void Layers::sizeColumns() {
  const QFontMetrics metrics(font());
  QHeaderView* const head = view_->horizontalHeader();
  head->setMinimumSectionSize(metrics.height());
  head->setSectionResizeMode(QHeaderView::Fixed);
  head->setSectionResizeMode(LayerModel::name, QHeaderView::Stretch);
  for (const int column : {LayerModel::on, LayerModel::frozen, LayerModel::locked})
    head->resizeSection(column, metrics.height() * 2);
  head->resizeSection(LayerModel::colour,
                      std::max(metrics.horizontalAdvance(words(u"Colore")) + 16,
                               metrics.horizontalAdvance(QStringLiteral("000")) + 36));
  view_->verticalHeader()->setDefaultSectionSize(metrics.height() + 6);
}

void Layers::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange) sizeColumns();
  QWidget::changeEvent(event);
}

QStringList Layers::meant(int row) const {
  QStringList names;
  const QModelIndexList rows = view_->selectionModel()->selectedRows();
  for (const QModelIndex& index : rows) names.push_back(qt(model_.at(index.row()).name));
  const QString own = qt(model_.at(row).name);
  return names.contains(own) ? names : QStringList{own};
}

void Layers::clicked(const QModelIndex& index) {
  if (index.column() != LayerModel::colour) return;
  const QStringList names = meant(index.row());
  auto* const popup = new PalettePopup(
      model_.at(index.row()).colour, model_.isDarkGround(), this,
      [this, names](int colour) { Q_EMIT changeWanted(names, {.colour = colour}); });
  popup->move(view_->viewport()->mapToGlobal(view_->visualRect(index).bottomLeft()));
  popup->show();
}

}  // namespace desktop
