#include "apps/desktop/docks/browser_model.h"

#include <QFont>
#include <algorithm>

#include "apps/desktop/text.h"

namespace desktop {

using vessora::ListedElement;

namespace {

// What an index carries: nothing for a network; for a group the network, for a row of a group that
// and the group, whatever its row is now, so that the parent can be told.
quintptr carried(std::size_t network) { return (network + 1) << 8; }
quintptr carried(std::size_t network, int group) {
  return carried(network) | static_cast<quintptr>(group + 1);
}
std::size_t networkOf(quintptr id) { return (id >> 8) - 1; }
int groupOf(quintptr id) { return static_cast<int>(id & 0xff) - 1; }
bool isOfGroup(quintptr id) { return (id & 0xff) != 0; }

}  // namespace

QString titleOf(BrowserModel::Group group) {
  switch (static_cast<int>(group)) {
    case 0:
      return words(u"Nodi");
    case 1:
      return words(u"Serbatoi");
    case 2:
      return words(u"Tank");
    case 3:
      return words(u"Condotte");
    case 4:
      return words(u"Pompe");
    case 5:
      return words(u"Valvole");
    case BrowserModel::problems:
      return words(u"Problemi");
    default:
      return words(u"Modifiche rispetto al file");
  }
}

BrowserModel::BrowserModel(const Networks& networks, QObject* parent)
    : QAbstractItemModel(parent), networks_(networks) {}

// --- rows ----------------------------------------------------------------------------------------

void BrowserModel::follow() {
  beginResetModel();
  branches_.clear();
  branches_.resize(networks_.all().size());
  fill();
  endResetModel();
}

void BrowserModel::setFilter(const QString& filter) {
  if (filter == filter_) return;
  beginResetModel();
  filter_ = filter;
  fill();
  endResetModel();
}

void BrowserModel::fill() {
  for (std::size_t network = 0; network < branches_.size(); ++network) {
    branches_[network].groups.clear();
    for (int group = 0; group < kGroups; ++group) {
      Rows rows = rowsOf(network, static_cast<Group>(group));
      if (!rows.shown.empty()) branches_[network].groups.push_back(std::move(rows));
    }
  }
}

BrowserModel::Rows BrowserModel::rowsOf(std::size_t network, Group group) const {
  Rows rows{group, {}, 0};
  const auto take = [&](std::size_t number, const QString& text) {
    ++rows.all;
    if (filter_.isEmpty() || text.contains(filter_, Qt::CaseInsensitive))
      rows.shown.push_back(static_cast<std::uint32_t>(number));
  };
  if (group >= problems) {
    const auto& remarks = remarksOf(network, group);
    for (std::size_t i = 0; i < remarks.size(); ++i) take(i, remarks[i].text);
    return rows;
  }
  const auto& elements = networks_.all()[network].elements;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (static_cast<int>(elements[i].kind) == group) take(i, qt(elements[i].name));
  }
  return rows;
}

// The other groups stay as they are, with what is open and chosen in them.
void BrowserModel::setRemarks(std::size_t network, Group group, std::vector<Remark> remarks) {
  if (network >= branches_.size() || remarks == remarksOf(network, group)) return;
  std::vector<Rows>& groups = branches_[network].groups;
  const QModelIndex parent = index(static_cast<int>(network), 0);
  const auto at = std::find_if(groups.begin(), groups.end(),
                               [&](const Rows& rows) { return rows.group >= group; });
  const int row = static_cast<int>(at - groups.begin());
  if (at != groups.end() && at->group == group) {
    beginRemoveRows(parent, row, row);
    groups.erase(at);
    endRemoveRows();
  }
  branches_[network].remarks[group - problems] = std::move(remarks);
  Rows rows = rowsOf(network, group);
  if (rows.shown.empty()) return;
  beginInsertRows(parent, row, row);
  groups.insert(groups.begin() + row, std::move(rows));
  endInsertRows();
}

const BrowserModel::Rows* BrowserModel::rowsAt(const QModelIndex& index) const {
  const quintptr id = index.internalId();
  if (id == 0) return nullptr;
  const std::size_t network = networkOf(id);
  return &branches_[network].groups[static_cast<std::size_t>(
      isOfGroup(id) ? rowOf(network, groupOf(id)) : index.row())];
}

int BrowserModel::rowOf(std::size_t network, int group) const {
  const auto& groups = branches_[network].groups;
  const auto at = std::find_if(groups.begin(), groups.end(),
                               [group](const Rows& rows) { return rows.group == group; });
  return at == groups.end() ? -1 : static_cast<int>(at - groups.begin());
}

QModelIndex BrowserModel::index(int row, int column, const QModelIndex& parent) const {
  if (!hasIndex(row, column, parent)) return {};
  if (!parent.isValid()) return createIndex(row, column, quintptr{0});
  const quintptr id = parent.internalId();
  if (id == 0) return createIndex(row, column, carried(static_cast<std::size_t>(parent.row())));
  return createIndex(row, column, carried(networkOf(id), rowsAt(parent)->group));
}

QModelIndex BrowserModel::parent(const QModelIndex& index) const {
  const quintptr id = index.isValid() ? index.internalId() : 0;
  if (id == 0) return {};
  if (!isOfGroup(id)) return createIndex(static_cast<int>(networkOf(id)), 0, quintptr{0});
  return createIndex(rowOf(networkOf(id), groupOf(id)), 0, carried(networkOf(id)));
}

int BrowserModel::rowCount(const QModelIndex& parent) const {
  if (!parent.isValid()) return static_cast<int>(branches_.size());
  const quintptr id = parent.internalId();
  if (parent.column() != 0 || isOfGroup(id)) return 0;
  if (id == 0)
    return static_cast<int>(branches_[static_cast<std::size_t>(parent.row())].groups.size());
  return static_cast<int>(rowsAt(parent)->shown.size());
}

int BrowserModel::columnCount(const QModelIndex&) const { return 1; }

// --- what they say -------------------------------------------------------------------------------

QVariant BrowserModel::networkData(const ShownNetwork& network, int role) const {
  if (role == Qt::DisplayRole) return qt(network.info.name);
  if (role == Qt::FontRole) {
    QFont bold;
    bold.setBold(true);
    return bold;
  }
  if (role != Qt::ToolTipRole) return {};
  QString tip = words(u"Rete %1").arg(qt(network.info.name));
  if (network.info.isDefault) tip += QLatin1Char('\n') + words(u"È la rete predefinita.");
  if (network.info.hasResults)
    tip += QLatin1Char('\n') + words(u"Ha risultati.") + QLatin1Char(' ') + qt(network.info.period);
  return tip;
}

QVariant BrowserModel::groupData(const Rows& rows, int role) const {
  if (role != Qt::DisplayRole) return {};
  const QString title = titleOf(rows.group);
  if (rows.shown.size() == rows.all) return QStringLiteral("%1 (%2)").arg(title).arg(rows.all);
  return words(u"%1 (%2 di %3)").arg(title).arg(rows.shown.size()).arg(rows.all);
}

QVariant BrowserModel::elementData(std::size_t network, const Rows& rows, int row, int role) const {
  const std::uint32_t number = rows.shown[static_cast<std::size_t>(row)];
  if (rows.group >= problems) {
    const bool text = role == Qt::DisplayRole || role == Qt::ToolTipRole;
    return text ? remarksOf(network, rows.group)[number].text : QVariant();
  }
  const ListedElement& element = networks_.all()[network].elements[number];
  if (role == Qt::DisplayRole)
    return element.name.empty() ? words(u"(senza nome)") : qt(element.name);
  if (role == Qt::ToolTipRole && !vessora::isNode(element.kind))
    return words(u"%1, da %2 a %3").arg(qt(element.name), qt(element.node1), qt(element.node2));
  return {};
}

QVariant BrowserModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const quintptr id = index.internalId();
  if (id == 0) return networkData(networks_.all()[static_cast<std::size_t>(index.row())], role);
  const Rows& rows = *rowsAt(index);
  if (!isOfGroup(id)) return groupData(rows, role);
  return elementData(networkOf(id), rows, index.row(), role);
}

// --- what they stand for -------------------------------------------------------------------------

QModelIndex BrowserModel::indexOf(ElementPlace place) const {
  if (place.network >= branches_.size()) return {};
  const int kind = static_cast<int>(networks_.at(place).kind);
  const int group = rowOf(place.network, kind);
  if (group < 0) return {};
  const auto& shown = branches_[place.network].groups[static_cast<std::size_t>(group)].shown;
  const auto at = std::lower_bound(shown.begin(), shown.end(), place.element);
  if (at == shown.end() || *at != place.element) return {};
  return createIndex(static_cast<int>(at - shown.begin()), 0, carried(place.network, kind));
}

void BrowserModel::addRecords(std::size_t network, const Rows& rows, std::size_t row,
                              std::vector<std::uint32_t>& records) const {
  const auto add = [&](std::uint32_t number) {
    const ListedElement& element = networks_.all()[network].elements[number];
    records.push_back(element.id.index());
    if (!element.course.isNull()) records.push_back(element.course.index());
  };
  const std::uint32_t number = rows.shown[row];
  if (rows.group < problems) return add(number);
  for (const std::uint32_t element : remarksOf(network, rows.group)[number].elements) add(element);
}

std::vector<std::uint32_t> BrowserModel::recordsOf(const QModelIndex& index) const {
  std::vector<std::uint32_t> records;
  if (!index.isValid() || index.internalId() == 0) return records;
  const std::size_t network = networkOf(index.internalId());
  const Rows& rows = *rowsAt(index);
  if (isOfGroup(index.internalId())) {
    addRecords(network, rows, static_cast<std::size_t>(index.row()), records);
  } else {
    for (std::size_t i = 0; i < rows.shown.size(); ++i) addRecords(network, rows, i, records);
  }
  return records;
}

QString BrowserModel::keyOf(const QModelIndex& index) const {
  if (!index.isValid() || isOfGroup(index.internalId())) return {};
  const bool network = index.internalId() == 0;
  const std::size_t number =
      network ? static_cast<std::size_t>(index.row()) : networkOf(index.internalId());
  const QString name = qt(networks_.all()[number].info.name);
  return network ? name : name + QLatin1Char('/') + QString::number(rowsAt(index)->group);
}

}  // namespace desktop
