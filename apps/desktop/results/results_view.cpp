#include "apps/desktop/results/results_view.h"

#include <QBoxLayout>
#include <QDockWidget>
#include <QMainWindow>
#include <QPainter>
#include <algorithm>

#include "apps/desktop/canvas/canvas.h"
#include "apps/desktop/text.h"
#include "cad/editor/session.h"

namespace desktop {

ResultsView::ResultsView(Canvas& canvas, QBoxLayout& column, QMainWindow& window)
    : canvas_(canvas),
      clock_(new Clock(&window)),
      series_(new Series(&window)),
      dock_(new QDockWidget(words(u"Andamento"), &window)) {
  column.addWidget(clock_);
  clock_->hide();
  dock_->setObjectName(QStringLiteral("series"));
  dock_->setWidget(series_);
  window.addDockWidget(Qt::RightDockWidgetArea, dock_);
  dock_->hide();
  connect(clock_, &Clock::periodChanged, this, &ResultsView::showPeriod);
  connect(clock_, &Clock::wishesChanged, this, [this] {
    showPeriod();
    const ResultWishes& wishes = clock_->wishes();
    series_->setQuantity(isOfNodes(series_->quantity()) ? wishes.node : wishes.link);
  });
  connect(clock_, &Clock::closed, this, &ResultsView::close);
  connect(&canvas_, &Canvas::selectionChanged, this, &ResultsView::showSelection);
  connect(&canvas_, &Canvas::groundChanged, this, &ResultsView::showPeriod);
  connect(&series_->plot(), &SeriesPlot::periodPicked, clock_, &Clock::setPeriod);
}

ResultsView::~ResultsView() { canvas_.setOverlay(nullptr, nullptr); }

QString ResultsView::open(const QString& path, std::u16string_view network) {
  vessora::Jobs* const jobs = vessora::Jobs::find();
  AcDbDatabase* const database = cad::Session::instance().database();
  if (!jobs || !database) return words(u"Non c'è un disegno aperto.");
  platform::Result<ResultSet> read = ResultSet::open(*jobs, utf8(path), network);
  if (!read) return qt(read.error());
  series_->setResults(nullptr);
  set_ = std::move(*read);
  colours_.emplace(*jobs);
  drawing_ = database->drawing().number();
  numberElements();
  clock_->setResults(*set_);
  series_->setResults(&*set_);
  series_->setQuantity(clock_->wishes().node);
  canvas_.setOverlay(
      [this](QPainter& painter) {
        overlay_.paint(painter, canvas_, {*set_, clock_->wishes(), *colours_, clock_->period()});
      },
      [this](std::uint32_t record) { return tipOf(record); });
  clock_->show();
  dock_->show();
  showPeriod();
  showSelection();
  return {};
}

void ResultsView::close() {
  if (!set_) return;
  clock_->play(false);
  clock_->hide();
  dock_->hide();
  canvas_.setOverlay(nullptr, nullptr);
  canvas_.setColours({});
  series_->setResults(nullptr);
  numbers_.clear();
  set_.reset();
  colours_.reset();
}

void ResultsView::follow(std::uint32_t drawing) {
  if (!set_) return;
  if (drawing != drawing_) return close();
  overlay_.forget();
  canvas_.update();
}

void ResultsView::numberElements() {
  numbers_.clear();
  const auto number = [this](const std::vector<ResultElement>& elements, bool ofNodes) {
    for (std::size_t i = 0; i < elements.size(); ++i) {
      if (elements[i].symbol) numbers_[elements[i].symbol] = {ofNodes, i};
      if (elements[i].course) numbers_[elements[i].course] = {ofNodes, i};
    }
  };
  number(set_->nodes(), true);
  number(set_->links(), false);
}

void ResultsView::showPeriod() {
  if (!set_) return;
  canvas_.setColours(
      colours_->colours(*set_, clock_->wishes(), clock_->period(), canvas_.isDark()));
  overlay_.forget();
  series_->setPresent(clock_->period());
}

void ResultsView::showSelection() {
  if (!set_) return;
  std::vector<std::size_t> nodes, links;
  for (const std::uint32_t record : canvas_.selection()) {
    const auto found = numbers_.find(record);
    if (found == numbers_.end()) continue;
    (found->second.isNode ? nodes : links).push_back(found->second.at);
  }
  // A valve's block and its course are one element.
  for (std::vector<std::size_t>* const list : {&nodes, &links}) {
    std::sort(list->begin(), list->end());
    list->erase(std::unique(list->begin(), list->end()), list->end());
  }
  series_->setElements(std::move(nodes), std::move(links), clock_->wishes().node,
                       clock_->wishes().link);
}

QString ResultsView::tipOf(std::uint32_t record) const {
  const auto found = numbers_.find(record);
  if (!set_ || found == numbers_.end()) return {};
  const auto& [isNode, at] = found->second;
  QString text = qt((isNode ? set_->nodes() : set_->links())[at].name);
  for (std::size_t i = 0; i < kQuantities; ++i) {
    const auto q = static_cast<Quantity>(i);
    if (isOfNodes(q) != isNode) continue;
    const QString value = shownValue(set_->value(q, clock_->period(), at));
    if (value.isEmpty()) continue;
    text += QStringLiteral("\n%1  %2 %3").arg(nameOf(q), value, qt(set_->unit(q)));
  }
  return text;
}

}  // namespace desktop
