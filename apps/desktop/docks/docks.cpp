#include "apps/desktop/docks/docks.h"

#include <QCoreApplication>
#include <QDockWidget>
#include <QKeyEvent>

#include "apps/desktop/canvas/canvas.h"
#include "apps/desktop/text.h"
#include "cad/editor/session.h"

namespace desktop {

namespace {

// The part of everything that is shown around an element that was looked for.
constexpr double kPart = 1.0 / 8;
constexpr int kRest = 500;  // ms without a change before large networks are read again

cad::Drawing* drawing() {
  cad::Session& session = cad::Session::instance();
  return session.database() ? &session.database()->drawing() : nullptr;
}

}  // namespace

Docks::Docks(Canvas& canvas, CommandRunner& runner, QMainWindow& window)
    : QObject(&window),
      canvas_(canvas),
      runner_(runner),
      layers_(new Layers),
      browser_(new Browser(networks_)),
      properties_(new Properties(networks_)) {
  QDockWidget* const network = add(window, "browser", words(u"Rete"), browser_);
  QDockWidget* const layer = add(window, "layers", words(u"I layer"), layers_);
  QDockWidget* const property = add(window, "properties", words(u"Proprietà"), properties_);
  window.setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
  window.splitDockWidget(network, property, Qt::Vertical);
  window.tabifyDockWidget(network, layer);
  network->raise();
  const int width = window.fontMetrics().averageCharWidth() * 46, height = window.height();
  window.resizeDocks({network, layer, property}, {width, width, width}, Qt::Horizontal);
  window.resizeDocks({network, property}, {height * 2 / 5, height * 3 / 5}, Qt::Vertical);
  rest_.setSingleShot(true);
  rest_.setInterval(kRest);
  connect(&rest_, &QTimer::timeout, this, [this] {
    // Not while somebody works on what would change again.
    if (runner_.busy()) return rest_.start();
    list();
  });
  browser_->setIdle([this] { return !runner_.busy(); });
  for (QWidget* const view :
       std::initializer_list<QWidget*>{&layers_->view(), &browser_->view(), &properties_->view()}) {
    view->installEventFilter(this);
  }
  connect(&canvas_, &Canvas::selectionChanged, this, &Docks::selectionChanged);
  connect(browser_, &Browser::chosen, this,
          [this](const std::vector<std::uint32_t>& records, bool shown) {
            fromBrowser_ = true;
            canvas_.select(records);
            fromBrowser_ = false;
            if (shown) showThings(records);
          });
  connect(layers_, &Layers::changeWanted, this, &Docks::changeLayers);
  connect(layers_, &Layers::currentWanted, this, &Docks::makeCurrent);
  connect(properties_, &Properties::editWanted, this, &Docks::edit);
}

QDockWidget* Docks::add(QMainWindow& window, const char* name, const QString& title,
                        QWidget* widget) {
  auto* const dock = new QDockWidget(title, &window);
  dock->setObjectName(QString::fromLatin1(name));
  dock->setWidget(widget);
  window.addDockWidget(Qt::RightDockWidgetArea, dock);
  return dock;
}

// Esc leaves the list, and what is asked or chosen with it. The key that erases what is chosen in
// the drawing does so from the tree alone: in the others it is a slip of who edits a value.
bool Docks::eventFilter(QObject* watched, QEvent* event) {
  const bool press = event->type() == QEvent::KeyPress;
  if (!press && event->type() != QEvent::ShortcutOverride) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (press && key == Qt::Key_Escape) {
    canvas_.setFocus();
    QCoreApplication::sendEvent(&canvas_, event);
    return true;
  }
  if (key != Qt::Key_Delete || watched == &browser_->view()) return false;
  event->accept();
  const QModelIndex current = properties_->view().currentIndex();
  if (press && watched == &properties_->view() && current.isValid())
    properties_->view().edit(current);
  return true;
}

void Docks::follow() {
  cad::Drawing* const now = drawing();
  layers_->setDarkGround(canvas_.isDark());
  const std::uint32_t number = now ? now->number() : 0;
  const std::uint64_t revision = now ? now->revision() : 0;
  if (number == number_ && revision == revision_) return;
  const bool other = number != number_;
  number_ = number;
  revision_ = revision;
  layers_->show(now);
  if (other || !networks_.areLarge()) return list();
  properties_->show(now, canvas_.selection());
  rest_.start();
}

void Docks::list() {
  rest_.stop();
  if (!networks_.follow(drawing())) return;
  browser_->follow();
  selectionChanged();
}

void Docks::selectionChanged() {
  if (!fromBrowser_) browser_->choose(canvas_.selection());
  properties_->show(drawing(), canvas_.selection());
}

// A thing that can be seen well enough stays where it is.
void Docks::showThings(const std::vector<std::uint32_t>& records) {
  const cad::view::Scene& scene = canvas_.scene();
  const auto all = scene.bounds();
  if (!all) return;
  cad::view::Window box{1e300, 1e300, -1e300, -1e300};
  for (const std::uint32_t record : records) {
    const std::uint32_t thing = scene.thingOf(record);
    if (thing == cad::view::SceneThing::kNone) continue;
    const cad::view::Window& own = scene.things()[thing].box;
    box = {std::min(box.x1, own.x1), std::min(box.y1, own.y1), std::max(box.x2, own.x2),
           std::max(box.y2, own.y2)};
  }
  if (box.x1 > box.x2) return;
  const cad::view::Window seen = canvas_.camera().shown();
  const double width = seen.x2 - seen.x1, height = seen.y2 - seen.y1;
  const double part = std::max(all->x2 - all->x1, all->y2 - all->y1) * kPart;
  const double wanted = std::max({part, (box.x2 - box.x1) * 1.5, (box.y2 - box.y1) * 1.5});
  const bool inside =
      box.x1 >= seen.x1 && box.x2 <= seen.x2 && box.y1 >= seen.y1 && box.y2 <= seen.y2;
  if (inside && std::min(width, height) <= wanted * 2) return;
  const double half = std::max(std::min(wanted, std::min(width, height)),
                               std::max(box.x2 - box.x1, box.y2 - box.y1) * 1.2) /
                      2;
  const double x = (box.x1 + box.x2) / 2, y = (box.y1 + box.y2) / 2;
  canvas_.zoomTo({x - half, y - half, x + half, y + half});
}

// --- changes -------------------------------------------------------------------------------------

void Docks::change(const char16_t* name, std::function<bool(cad::Drawing&)> work) {
  runner_.startWork([name, work = std::move(work)] {
    cad::Drawing* const now = drawing();
    if (!now) return;
    now->beginCommand(name);
    if (work(*now)) {
      now->endCommand();
    } else {
      now->abandonCommand();
    }
  });
}

void Docks::changeLayers(const QStringList& names, const cad::LayerChange& change) {
  this->change(u"LAYER", [this, names, change](cad::Drawing& now) {
    for (const QString& name : names) {
      if (cad::changeLayer(now, wide(name), change) == Acad::eOk) continue;
      Q_EMIT said(words(u"Il layer %1 non si può modificare.").arg(name));
      return false;
    }
    return true;
  });
}

void Docks::makeCurrent(const QString& name) {
  change(u"LAYER",
         [name](cad::Drawing& now) { return now.header().setText("$CLAYER", wide(name)); });
}

void Docks::edit(const std::vector<ElementPlace>& elements, const PropertyEdit& edit) {
  std::vector<EditedElement> edited;
  for (const ElementPlace place : elements) {
    const vessora::ListedElement& element = networks_.at(place);
    edited.push_back({networks_.all()[place.network].info.name, element.name, element.id});
  }
  change(u"HNMODEPA", [this, edited, edit](cad::Drawing&) {
    QStringList lines;
    const bool done = apply(edited, edit, lines);
    for (const QString& line : lines) Q_EMIT said(line);
    return done;
  });
}

}  // namespace desktop
