#include "apps/desktop/docks/browser.h"

#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QStackedLayout>
#include <QVBoxLayout>
#include <algorithm>
#include <map>
#include <unordered_set>

#include "apps/desktop/docks/filter_line.h"
#include "apps/desktop/docks/hint.h"
#include "apps/desktop/text.h"
#include "apps/program/words.h"

namespace desktop {

using vessora::ListedElement;

namespace {

constexpr int kRest = 400;                     // ms without a change before a longer look
constexpr std::size_t kMostCompared = 30'000;  // elements of networks that are compared unasked
constexpr std::size_t kMostChosen = 2'000;     // rows that are chosen with the drawing's things

using Numbers = std::vector<std::uint32_t>;

// Names that several nodes, or several links, have: no solver takes them.
void addNamesakes(const std::vector<ListedElement>& elements, bool nodes,
                  std::vector<Remark>& remarks) {
  std::map<std::u16string_view, Numbers> named;
  for (std::uint32_t i = 0; i < elements.size(); ++i) {
    if (vessora::isNode(elements[i].kind) == nodes) named[elements[i].name].push_back(i);
  }
  for (auto& [name, numbers] : named) {
    if (name.empty()) {
      remarks.push_back({words(u"Elementi senza nome: %1").arg(numbers.size()), numbers});
    } else if (numbers.size() > 1) {
      remarks.push_back({words(u"%1: nome di %2 elementi").arg(qt(name)).arg(numbers.size()),
                         std::move(numbers)});
    }
  }
}

void addLooseEnds(const std::vector<ListedElement>& elements, std::vector<Remark>& remarks) {
  std::unordered_set<std::u16string_view> nodes;
  for (const ListedElement& e : elements) {
    if (vessora::isNode(e.kind)) nodes.insert(e.name);
  }
  for (std::uint32_t i = 0; i < elements.size(); ++i) {
    const ListedElement& e = elements[i];
    if (vessora::isNode(e.kind)) continue;
    for (const std::u16string& end : {e.node1, e.node2}) {
      if (end.empty()) {
        remarks.push_back({words(u"%1: un estremo è senza nodo").arg(qt(e.name)), {i}});
      } else if (!nodes.contains(end)) {
        remarks.push_back({words(u"%1: il nodo %2 non c'è").arg(qt(e.name), qt(end)), {i}});
      }
    }
  }
}

std::vector<Remark> changesOf(const ShownNetwork& network, const vessora::DiffResult& diff) {
  std::map<std::u16string_view, Numbers> nodes, links;
  for (std::uint32_t i = 0; i < network.elements.size(); ++i) {
    const ListedElement& e = network.elements[i];
    (vessora::isNode(e.kind) ? nodes : links)[e.name].push_back(i);
  }
  std::vector<Remark> remarks;
  for (const vessora::DiffItem& item : diff.items) {
    const bool renamed = item.what == vessora::DiffItem::What::renamed;
    const std::u16string_view name = renamed ? item.now : item.name;
    const bool node = item.kind == "junction" || item.kind == "reservoir" || item.kind == "tank" ||
                      item.kind == "node";
    const bool link =
        item.kind == "pipe" || item.kind == "pump" || item.kind == "valve" || item.kind == "link";
    Remark& remark = remarks.emplace_back();
    remark.text = qt(program::describe(item));
    const auto& of = node ? nodes : links;
    if (!node && !link) continue;
    if (const auto at = of.find(name); at != of.end()) remark.elements = at->second;
  }
  return remarks;
}

}  // namespace

Browser::Browser(const Networks& networks, QWidget* parent)
    : QWidget(parent),
      networks_(networks),
      model_(networks),
      filter_(new FilterLine(words(u"Cerca un elemento"), this)),
      view_(new QTreeView(this)),
      stack_(new QStackedLayout) {
  view_->setModel(&model_);
  view_->setObjectName(QStringLiteral("networks"));
  view_->setAccessibleName(words(u"Elementi delle reti"));
  view_->setUniformRowHeights(true);
  view_->setHeaderHidden(true);
  view_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  view_->setTextElideMode(Qt::ElideRight);
  view_->setExpandsOnDoubleClick(false);
  auto* const shown = new QWidget(this);
  auto* const all = new QVBoxLayout(shown);
  all->setContentsMargins(4, 4, 4, 4);
  all->setSpacing(4);
  all->addWidget(filter_);
  all->addWidget(view_, 1);
  stack_->addWidget(shown);
  stack_->addWidget(hintOf(words(u"Il disegno non ha reti.\n\nImportare un file INP (File, Importa "
                                 u"INP) o aggiungere una rete (Rete, Aggiungi)."),
                           this));
  setLayout(stack_);
  rest_.setSingleShot(true);
  rest_.setInterval(kRest);
  connect(&rest_, &QTimer::timeout, this, &Browser::look);
  connect(filter_, &FilterLine::rested, this, [this](const QString& text) {
    following_ = true;
    model_.setFilter(text);
    openAgain();
    following_ = false;
  });
  connect(filter_, &QLineEdit::returnPressed, this, [this] {
    // The first that is found.
    for (QModelIndex i = view_->indexBelow(model_.index(0, 0)); i.isValid();
         i = view_->indexBelow(i)) {
      if (!model_.keyOf(i).isEmpty()) continue;
      view_->setCurrentIndex(i);
      return;
    }
  });
  connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &Browser::report);
  connect(view_, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
    if (model_.keyOf(index).isEmpty()) return;
    view_->setExpanded(index, !view_->isExpanded(index));
  });
  connect(view_, &QTreeView::expanded, this, [this](const QModelIndex& i) { keepOpen(i, true); });
  connect(view_, &QTreeView::collapsed, this, [this](const QModelIndex& i) { keepOpen(i, false); });
  follow();
}

void Browser::follow() {
  const int at = view_->verticalScrollBar()->value();
  following_ = true;
  model_.follow();
  openAgain();
  view_->verticalScrollBar()->setValue(at);
  following_ = false;
  stack_->setCurrentIndex(networks_.all().empty() ? 1 : 0);
  rest_.start();
}

// --- what is open --------------------------------------------------------------------------------

void Browser::keepOpen(const QModelIndex& index, bool open) {
  const QString key = model_.keyOf(index);
  if (following_ || key.isEmpty() || !model_.filter().isEmpty()) return;
  // A network is open until somebody closes it, a group is closed until somebody opens it.
  if (open == index.parent().isValid()) {
    open_.insert(key);
  } else {
    open_.remove(key);
  }
}

void Browser::openAgain() {
  const bool filtered = !model_.filter().isEmpty();
  for (int n = 0; n < model_.rowCount(); ++n) {
    const QModelIndex network = model_.index(n, 0);
    view_->setExpanded(network, filtered || !open_.contains(model_.keyOf(network)));
    for (int g = 0; g < model_.rowCount(network); ++g) {
      const QModelIndex group = model_.index(g, 0, network);
      view_->setExpanded(group, filtered || open_.contains(model_.keyOf(group)));
    }
  }
}

// --- what is chosen ------------------------------------------------------------------------------

void Browser::report() {
  if (following_) return;
  std::vector<std::uint32_t> records;
  for (const QModelIndex& index : view_->selectionModel()->selectedRows()) {
    const auto own = model_.recordsOf(index);
    records.insert(records.end(), own.begin(), own.end());
  }
  Q_EMIT chosen(records, !records.empty());
}

void Browser::choose(const std::vector<std::uint32_t>& records) {
  QItemSelection rows;
  QModelIndex first;
  for (const std::uint32_t record : records) {
    const ElementPlace* const place = networks_.placeOf(record);
    if (!place || static_cast<std::size_t>(rows.size()) >= kMostChosen) continue;
    const QModelIndex index = model_.indexOf(*place);
    if (!index.isValid()) continue;
    if (!first.isValid()) first = index;
    rows.select(index, index);
  }
  following_ = true;
  view_->selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect);
  if (rows.size() == 1 || (first.isValid() && records.size() <= 2)) {
    view_->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
    view_->scrollTo(first);
  }
  following_ = false;
}

// --- the longer look -----------------------------------------------------------------------------

std::vector<Remark> Browser::problemsOf(const ShownNetwork& network) const {
  std::vector<Remark> problems;
  addNamesakes(network.elements, true, problems);
  addNamesakes(network.elements, false, problems);
  addLooseEnds(network.elements, problems);
  return problems;
}

void Browser::look() {
  if (idle_ && !idle_()) return rest_.start();
  vessora::Jobs* const jobs = vessora::Jobs::find();
  if (!jobs) return;
  following_ = true;
  for (std::size_t n = 0; n < networks_.all().size(); ++n) {
    const ShownNetwork& network = networks_.all()[n];
    const std::u16string& name = network.info.name;
    std::vector<Remark> problems = problemsOf(network), changes;
    if (network.elements.size() <= kMostCompared) {
      if (network.info.hasResults && jobs->resultsAreStale(name)) {
        problems.insert(problems.begin(),
                        {words(u"I risultati sono di prima delle ultime modifiche"), {}});
      }
      if (jobs->hasKeptText(name)) changes = changesOf(network, jobs->diffNetwork(name, {}));
    } else {
      changes.push_back({words(u"Rete grande: le differenze non si cercano da sole"), {}});
    }
    model_.setRemarks(n, BrowserModel::problems, std::move(problems));
    model_.setRemarks(n, BrowserModel::changes, std::move(changes));
  }
  openAgain();
  following_ = false;
}

}  // namespace desktop
