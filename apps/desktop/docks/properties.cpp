#include "apps/desktop/docks/properties.h"

#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QStackedLayout>
#include <QTimer>
#include <QVBoxLayout>

#include "apps/desktop/docks/hint.h"
#include "apps/desktop/text.h"

namespace desktop {

// --- the model -----------------------------------------------------------------------------------

PropertyModel::PropertyModel(const Networks& networks, QObject* parent)
    : QAbstractTableModel(parent), networks_(networks) {}

void PropertyModel::setSheet(PropertySheet sheet) {
  const bool same = std::equal(
      sheet.rows.begin(), sheet.rows.end(), sheet_.rows.begin(), sheet_.rows.end(),
      [](const Property& a, const Property& b) { return a.kind == b.kind && a.label == b.label; });
  if (same) {
    // What is being edited stays open.
    sheet_ = std::move(sheet);
    if (!sheet_.rows.empty()) Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, value));
    return;
  }
  beginResetModel();
  sheet_ = std::move(sheet);
  endResetModel();
}

int PropertyModel::rowOf(schema::Field field) const {
  for (int row = 0; row < rowCount(); ++row) {
    if (at(row).rule.field == field && field != schema::Field::none) return row;
  }
  return -1;
}

int PropertyModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(sheet_.rows.size());
}
int PropertyModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QVariant PropertyModel::headingData(const Property& property, int column, int role) const {
  if (role == Qt::DisplayRole && column == label) return property.label;
  if (role == Qt::FontRole) {
    QFont bold;
    bold.setBold(true);
    return bold;
  }
  return {};
}

QVariant PropertyModel::valueData(const Property& property, int role) const {
  switch (role) {
    case Qt::DisplayRole:
      return property.several ? words(u"(diversi)") : property.value;
    case Qt::EditRole:
      return property.value;
    case Qt::TextAlignmentRole:
      return QVariant((property.number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case Qt::ToolTipRole:
      return property.tip.isEmpty() && !property.several ? property.value : property.tip;
    default:
      return {};
  }
}

QVariant PropertyModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Property& property = at(index.row());
  // What can be edited is what is white.
  if (role == Qt::BackgroundRole && !(flags(index) & Qt::ItemIsEditable))
    return QApplication::palette().brush(QPalette::Window);
  if (property.kind == Property::Kind::heading) return headingData(property, index.column(), role);
  if (index.column() == value) return valueData(property, role);
  if (role == Qt::DisplayRole) return property.label;
  if (role == Qt::ToolTipRole)
    return property.tip.isEmpty() ? property.label
                                  : property.label + QLatin1Char('\n') + property.tip;
  return {};
}

Qt::ItemFlags PropertyModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const Property::Kind kind = at(index.row()).kind;
  const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
  if (kind == Property::Kind::heading) return flags;
  const bool edited = index.column() == value && kind != Property::Kind::fixed;
  return flags | Qt::ItemIsSelectable | (edited ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

bool PropertyModel::setData(const QModelIndex& index, const QVariant& given, int role) {
  if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable)) return false;
  const Property& property = at(index.row());
  const QString text = given.toString();
  if (!property.several && text == property.value) return true;
  const EditVerdict verdict = examine(networks_, sheet_, property, text);
  if (!verdict.refused.isEmpty()) {
    Q_EMIT refused(verdict.refused);
    return false;
  }
  Q_EMIT editWanted(verdict.edit);
  return true;
}

// --- editors -------------------------------------------------------------------------------------

QWidget* PropertyDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                        const QModelIndex& index) const {
  const auto* const model = qobject_cast<const PropertyModel*>(index.model());
  const Property& property = model->at(index.row());
  if (property.kind != Property::Kind::choice) {
    auto* const line = new QLineEdit(parent);
    line->setFrame(false);
    if (property.number) line->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    if (property.several) line->setPlaceholderText(words(u"(diversi)"));
    return line;
  }
  auto* const list = new QComboBox(parent);
  list->setFrame(false);
  for (const QString& choice : property.choices)
    list->addItem(choice.isEmpty() ? words(u"(nessuno)") : choice, choice);
  // One click opens it, one chooses.
  connect(list, &QComboBox::activated, this, [this, list] {
    auto* const self = const_cast<PropertyDelegate*>(this);
    Q_EMIT self->commitData(list);
    Q_EMIT self->closeEditor(list);
  });
  QTimer::singleShot(0, list, &QComboBox::showPopup);
  return list;
}

void PropertyDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  const QString value = index.data(Qt::EditRole).toString();
  if (auto* const list = qobject_cast<QComboBox*>(editor)) {
    const auto* const model = qobject_cast<const PropertyModel*>(index.model());
    list->setCurrentIndex(model->at(index.row()).several ? -1 : list->findData(value));
  } else if (auto* const line = qobject_cast<QLineEdit*>(editor); line && !line->isModified()) {
    line->setText(value);
    line->selectAll();
  }
}

void PropertyDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                    const QModelIndex& index) const {
  if (auto* const list = qobject_cast<QComboBox*>(editor)) {
    if (list->currentIndex() >= 0) model->setData(index, list->currentData());
  } else if (auto* const line = qobject_cast<QLineEdit*>(editor); line && line->isModified()) {
    model->setData(index, line->text());
  }
}

// --- the dock ------------------------------------------------------------------------------------

Properties::Properties(const Networks& networks, QWidget* parent)
    : QWidget(parent),
      networks_(networks),
      model_(networks),
      stack_(new QStackedLayout),
      title_(new QLabel(this)),
      view_(new QTableView(this)),
      fault_(new QLabel(this)) {
  view_->setModel(&model_);
  view_->setObjectName(QStringLiteral("properties"));
  view_->setAccessibleName(words(u"Proprietà"));
  view_->setItemDelegate(new PropertyDelegate(view_));
  view_->setSelectionMode(QAbstractItemView::SingleSelection);
  view_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                         QAbstractItemView::AnyKeyPressed);
  view_->setWordWrap(false);
  view_->setShowGrid(true);
  view_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  view_->horizontalHeader()->hide();
  view_->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  view_->horizontalHeader()->setSectionResizeMode(PropertyModel::value, QHeaderView::Stretch);
  view_->verticalHeader()->hide();
  view_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  QFont bold = title_->font();
  bold.setBold(true);
  title_->setFont(bold);
  title_->setMinimumWidth(1);
  fault_->setObjectName(QStringLiteral("fault"));
  fault_->setWordWrap(true);
  fault_->setFrameShape(QFrame::StyledPanel);
  fault_->setMargin(4);
  fault_->hide();
  auto* const shown = new QWidget(this);
  auto* const all = new QVBoxLayout(shown);
  all->setContentsMargins(4, 4, 4, 4);
  all->setSpacing(4);
  all->addWidget(title_);
  all->addWidget(view_, 1);
  all->addWidget(fault_);
  stack_->addWidget(shown);
  stack_->addWidget(hintOf(words(u"Non è scelto niente.\n\nScegliere qualcosa nel disegno o "
                                 u"nell'elenco della rete: qui si vede e si modifica."),
                           this));
  stack_->setCurrentIndex(1);
  setLayout(stack_);
  connect(view_, &QTableView::clicked, view_, qOverload<const QModelIndex&>(&QTableView::edit));
  connect(&model_, &QAbstractItemModel::modelReset, this, &Properties::span);
  connect(&model_, &PropertyModel::refused, this, [this](const QString& why) {
    fault_->setText(words(u"Non modificato: ") + why);
    fault_->show();
  });
  connect(&model_, &PropertyModel::editWanted, this, [this](const PropertyEdit& edit) {
    fault_->hide();
    Q_EMIT editWanted(model_.sheet().elements, edit);
  });
}

QString Properties::fault() const { return fault_->isHidden() ? QString() : fault_->text(); }

void Properties::show(const cad::Drawing* drawing, const std::vector<std::uint32_t>& records) {
  fault_->hide();
  PropertySheet sheet;
  if (drawing) sheet = sheetOf(*drawing, networks_, records);
  stack_->setCurrentIndex(sheet.title.isEmpty() ? 1 : 0);
  title_->setText(sheet.title);
  title_->setToolTip(sheet.title);
  model_.setSheet(std::move(sheet));
  sizeColumns();
}

void Properties::span() {
  view_->clearSpans();
  for (int row = 0; row < model_.rowCount(); ++row) {
    if (model_.at(row).kind == Property::Kind::heading)
      view_->setSpan(row, 0, 1, PropertyModel::kColumns);
  }
}

// The labels whole, as far as they leave room for the values.
void Properties::sizeColumns() {
  const QFontMetrics metrics(font());
  int widest = 60;
  for (int row = 0; row < model_.rowCount(); ++row) {
    if (model_.at(row).kind != Property::Kind::heading)
      widest = std::max(widest, metrics.horizontalAdvance(model_.at(row).label));
  }
  view_->horizontalHeader()->resizeSection(
      PropertyModel::label, std::min(widest + 14, std::max(100, view_->width() * 2 / 3)));
  view_->verticalHeader()->setMinimumSectionSize(metrics.height());
  view_->verticalHeader()->setDefaultSectionSize(metrics.height() + 6);
}

void Properties::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange) sizeColumns();
  QWidget::changeEvent(event);
}

}  // namespace desktop
