#include "apps/desktop/canvas/canvas.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>

#include "apps/desktop/text.h"
#include "cad/drawing/drawing.h"

namespace desktop {

using cad::ui::Answer;
using cad::ui::Prompt;
using cad::view::Pixel;
using cad::view::SceneThing;

namespace {

constexpr double kReach = 10;    // logical pixels around the cursor that snap
constexpr double kAperture = 6;  // and that pick
constexpr double kWheel = 1.2;   // a notch
constexpr std::size_t kMostViews = 50;

}  // namespace

Canvas::Canvas(PromptBroker& prompts, QWidget* parent) : QWidget(parent), prompts_(prompts) {
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMinimumSize(240, 160);
  setCursor(Qt::BlankCursor);
  const auto asked = [this] {
    snap_.reset();
    if (cursorIn_) follow(cursor_);
    update();
  };
  connect(&prompts_, &PromptBroker::asked, this, asked);
  connect(&prompts_, &PromptBroker::answered, this, asked);
}

// --- the drawing ---------------------------------------------------------------------------------

void Canvas::setDrawing(const cad::Drawing* drawing) {
  drawing_ = drawing;
  scene_.clear();
  selection_.clear();
  views_.clear();
  recordColours_.clear();
  colours_.clear();
  hovered_ = SceneThing::kNone;
  fitted_ = false;
  refresh();
  Q_EMIT selectionChanged();
}

void Canvas::refresh() {
  if (drawing_ && scene_.update(*drawing_)) {
    stale_ = true;
    hovered_ = SceneThing::kNone;
    snap_.reset();
    setColours(recordColours_);
    const std::size_t before = selection_.size();
    std::erase_if(selection_, [&](std::uint32_t record) {
      return scene_.thingOf(record) == SceneThing::kNone;
    });
    if (selection_.size() != before) Q_EMIT selectionChanged();
  }
  if (!fitted_ && scene_.bounds()) zoomExtents();
  update();
}

void Canvas::setColours(const std::vector<std::pair<std::uint32_t, QRgb>>& colours) {
  if (&recordColours_ != &colours) recordColours_ = colours;
  colours_.assign(recordColours_.empty() ? 0 : scene_.things().size(), 0);
  for (const auto& [record, colour] : recordColours_) {
    const std::uint32_t thing = scene_.thingOf(record);
    if (thing != SceneThing::kNone) colours_[thing] = colour;
  }
  stale_ = true;
  update();
}

void Canvas::setOverlay(Overlay overlay, Tips tips) {
  overlay_ = std::move(overlay);
  tips_ = std::move(tips);
  update();
}

void Canvas::select(std::vector<std::uint32_t> records) {
  std::sort(records.begin(), records.end());
  records.erase(std::unique(records.begin(), records.end()), records.end());
  if (records == selection_) return;
  selection_ = std::move(records);
  update();
  Q_EMIT selectionChanged();
}

void Canvas::selectAll() {
  std::vector<std::uint32_t> records;
  for (const SceneThing& thing : scene_.things()) {
    const bool seen = thing.items.begin < thing.items.end || thing.symbol != SceneThing::kNone;
    if (thing.record && seen) records.push_back(thing.record);
  }
  select(std::move(records));
}

// --- the view ------------------------------------------------------------------------------------

Pixel Canvas::pixelOf(const QPointF& logical) const {
  return {logical.x() * devicePixelRatioF(), logical.y() * devicePixelRatioF()};
}
QPointF Canvas::logicalOf(const Pixel& pixel) const {
  return {pixel.x / devicePixelRatioF(), pixel.y / devicePixelRatioF()};
}

void Canvas::viewChanged() {
  stale_ = true;
  if (cursorIn_) follow(cursor_);
  update();
}

void Canvas::rememberView() {
  if (views_.size() >= kMostViews) views_.erase(views_.begin());
  views_.push_back(camera_);
}

void Canvas::zoomExtents() {
  const auto all = scene_.bounds();
  if (fitted_) rememberView();
  fitted_ = all.has_value();
  if (all) {
    const double low = std::min(scene_.low(), scene_.high());
    camera_.fit({all->x1, all->y1, low}, {all->x2, all->y2, scene_.high()});
  }
  viewChanged();
}

void Canvas::zoomTo(const cad::view::Window& window) {
  rememberView();
  fitted_ = true;
  camera_.fit({window.x1, window.y1, camera_.target().z},
              {window.x2, window.y2, camera_.target().z}, 0.02);
  viewChanged();
}

void Canvas::zoomToThings(const std::vector<std::uint32_t>& records) {
  cad::view::Window all{1e300, 1e300, -1e300, -1e300};
  for (const std::uint32_t record : records) {
    const std::uint32_t thing = scene_.thingOf(record);
    if (thing == SceneThing::kNone) continue;
    const cad::view::Window& box = scene_.things()[thing].box;
    all = {std::min(all.x1, box.x1), std::min(all.y1, box.y1), std::max(all.x2, box.x2),
           std::max(all.y2, box.y2)};
  }
  if (all.x1 > all.x2) return;
  // Not nearer than that neighbours are seen.
  const double air = std::max({all.x2 - all.x1, all.y2 - all.y1, camera_.unit() * 60}) * 1.5;
  zoomTo({all.x1 - air, all.y1 - air, all.x2 + air, all.y2 + air});
}

void Canvas::zoomBy(double factor) {
  camera_.zoom({camera_.width() / 2, camera_.height() / 2}, factor);
  viewChanged();
}

void Canvas::previousView() {
  if (views_.empty()) return;
  const double width = camera_.width(), height = camera_.height();
  camera_ = views_.back();
  views_.pop_back();
  camera_.resize(width, height);
  viewChanged();
}

void Canvas::setPlan() {
  rememberView();
  camera_.plan();
  zoomExtents();
}

void Canvas::setOblique() {
  rememberView();
  camera_.orbit(-0.6, 0.95);
  zoomExtents();
}

void Canvas::setDark(bool dark) {
  look_.dark = dark;
  Q_EMIT groundChanged();
  viewChanged();
}

void Canvas::setLabels(bool labels) {
  look_.labels = labels;
  viewChanged();
}

// --- the cursor ----------------------------------------------------------------------------------

bool Canvas::wantsPlace() const {
  return prompts_.prompt() && prompts_.prompt()->kind == Prompt::Kind::point;
}
bool Canvas::wantsObjects() const {
  const Prompt* const prompt = prompts_.prompt();
  return prompt &&
         (prompt->kind == Prompt::Kind::entity || prompt->kind == Prompt::Kind::selection);
}

AcGePoint3d Canvas::pointedAt() {
  if (snap_) return snap_->point;
  AcGePoint3d p = camera_.worldOf(pixelOf(cursor_));
  const Prompt* const prompt = prompts_.prompt();
  if (ortho_ && wantsPlace() && prompt->base) {
    const bool along = std::fabs(p.x - prompt->base->x) >= std::fabs(p.y - prompt->base->y);
    (along ? p.y : p.x) = along ? prompt->base->y : prompt->base->x;
  }
  return p;
}

void Canvas::follow(const QPointF& logical) {
  cursor_ = logical;
  const double dots = devicePixelRatioF();
  snap_.reset();
  if (snapping_ && (wantsPlace() || drag_ == Drag::grip)) {
    cad::view::SnapRules rules;
    rules.radius = kReach * dots;
    rules.without = drag_ == Drag::grip ? grip_ : 0;
    // While a node is dragged the nearest place on a line is no aim.
    if (drag_ == Drag::grip) rules.kinds = 0b01111;
    snap_ = cad::view::snapAt(scene_, camera_, pixelOf(logical), rules);
  }
  std::uint32_t hovered = SceneThing::kNone;
  if (drag_ == Drag::none && !wantsPlace()) {
    const auto under = cad::view::thingsAt(scene_, camera_, pixelOf(logical), kAperture * dots);
    if (!under.empty()) hovered = under.front();
  }
  hovered_ = hovered;
  const AcGePoint3d p = pointedAt();
  Q_EMIT cursorAt(p.x, p.y, p.z);
}

void Canvas::wheelEvent(QWheelEvent* event) {
  const double notches = event->angleDelta().y() / 120.0;
  if (notches != 0) camera_.zoom(pixelOf(event->position()), std::pow(kWheel, notches));
  event->accept();
  viewChanged();
}

void Canvas::mousePressEvent(QMouseEvent* event) {
  setFocus(Qt::MouseFocusReason);
  pressed_ = last_ = event->position();
  follow(pressed_);
  if (event->button() == Qt::MiddleButton) {
    rememberView();
    drag_ = event->modifiers() & Qt::ShiftModifier ? Drag::orbit : Drag::pan;
    setCursor(Qt::ClosedHandCursor);
  } else if (event->button() == Qt::RightButton) {
    // As draughtsmen have it: the right button is Enter while something is asked.
    if (prompts_.prompt()) return prompts_.enter();
    Q_EMIT menuWanted(event->globalPosition().toPoint());
  }
}

void Canvas::mouseMoveEvent(QMouseEvent* event) {
  const QPointF at = event->position();
  const QPointF way = at - last_;
  last_ = at;
  cursorIn_ = true;
  const double dots = devicePixelRatioF();
  if (drag_ == Drag::pan || drag_ == Drag::orbit) {
    if (drag_ == Drag::pan) camera_.pan(way.x() * dots, way.y() * dots);
    if (drag_ == Drag::orbit) {
      camera_.orbit(camera_.turn() - way.x() * 0.01, camera_.tilt() - way.y() * 0.01);
    }
    stale_ = true;
  } else if (drag_ == Drag::none && event->buttons() & Qt::LeftButton && !wantsPlace() &&
             (at - pressed_).manhattanLength() > QApplication::startDragDistance()) {
    drag_ = Drag::window;
    const auto under = cad::view::thingsAt(scene_, camera_, pixelOf(pressed_), kAperture * dots);
    const bool prompted = prompts_.prompt() != nullptr;
    if (!prompted && !under.empty()) {
      const SceneThing& thing = scene_.things()[under.front()];
      if (thing.symbol != SceneThing::kNone &&
          std::binary_search(selection_.begin(), selection_.end(), thing.record)) {
        drag_ = Drag::grip;
        grip_ = thing.record;
      }
    }
  }
  follow(at);
  update();
}

void Canvas::mouseReleaseEvent(QMouseEvent* event) {
  const Drag was = std::exchange(drag_, Drag::none);
  const QPointF at = event->position();
  if (event->button() == Qt::MiddleButton) {
    setCursor(Qt::BlankCursor);
  } else if (event->button() == Qt::LeftButton) {
    if (was == Drag::window) {
      endWindow(at, event->modifiers());
    } else if (was == Drag::grip) {
      const AcGePoint3d p = pointedAt();
      Q_EMIT gripMoved(std::exchange(grip_, 0), p.x, p.y);
    } else {
      click(at, event->modifiers());
    }
  }
  follow(at);
  update();
}

void Canvas::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::MiddleButton) return zoomExtents();
  if (event->button() != Qt::LeftButton) return;
  pressed_ = event->position();
  if (!prompts_.prompt() && hovered_ != SceneThing::kNone) {
    Q_EMIT activated(scene_.things()[hovered_].record);
  }
}

void Canvas::click(const QPointF& logical, Qt::KeyboardModifiers keys) {
  follow(logical);
  if (wantsPlace()) {
    const AcGePoint3d p = pointedAt();
    return prompts_.answer({Answer::Status::ok, {}, cad::ui::Place3d{p.x, p.y, p.z}, {}});
  }
  auto under =
      cad::view::thingsAt(scene_, camera_, pixelOf(logical), kAperture * devicePixelRatioF());
  if (under.size() > 1) under.resize(1);
  if (wantsObjects()) {
    if (under.empty() && prompts_.prompt()->kind == Prompt::Kind::selection) return;
    return answerObjects(under, camera_.worldOf(pixelOf(logical)));
  }
  if (!prompts_.prompt()) choose(under, keys);
}

void Canvas::endWindow(const QPointF& logical, Qt::KeyboardModifiers keys) {
  // From right to left it takes what it touches.
  const bool crossing = logical.x() < pressed_.x();
  const auto things =
      cad::view::thingsIn(scene_, camera_, pixelOf(pressed_), pixelOf(logical), crossing);
  const Prompt* const prompt = prompts_.prompt();
  if (prompt && prompt->kind == Prompt::Kind::selection) {
    if (!things.empty()) answerObjects(things, camera_.worldOf(pixelOf(logical)));
  } else if (!prompt) {
    choose(things, keys);
  }
}

void Canvas::choose(std::vector<std::uint32_t> things, Qt::KeyboardModifiers keys) {
  std::vector<std::uint32_t> records;
  for (const std::uint32_t thing : things) records.push_back(scene_.things()[thing].record);
  if (!(keys & (Qt::ShiftModifier | Qt::ControlModifier))) return select(std::move(records));
  // Shift takes away what is chosen already, and adds the rest.
  std::vector<std::uint32_t> all = selection_;
  for (const std::uint32_t record : records) {
    const auto known = std::find(all.begin(), all.end(), record);
    if (known == all.end()) {
      all.push_back(record);
    } else if (keys & Qt::ShiftModifier) {
      all.erase(known);
    }
  }
  select(std::move(all));
}

void Canvas::answerObjects(const std::vector<std::uint32_t>& things, const AcGePoint3d& place) {
  Answer answer;
  answer.place = cad::ui::Place3d{place.x, place.y, place.z};
  for (const std::uint32_t thing : things) {
    answer.objects.push_back(drawing_->record(scene_.things()[thing].record).handle);
  }
  prompts_.answer(std::move(answer));
}

void Canvas::leaveEvent(QEvent* event) {
  cursorIn_ = false;
  snap_.reset();
  hovered_ = SceneThing::kNone;
  update();
  QWidget::leaveEvent(event);
}

void Canvas::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && !prompts_.prompt() && !selection_.empty()) select({});
  Q_EMIT typed(event);
}

// Tab is a key of the command line too.
bool Canvas::event(QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    auto* const key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Tab) {
      Q_EMIT typed(key);
      return true;
    }
  }
  return QWidget::event(event);
}

void Canvas::resizeEvent(QResizeEvent* event) {
  const bool first = !event->oldSize().isValid();
  camera_.resize(width() * devicePixelRatioF(), height() * devicePixelRatioF());
  if (first && fitted_) {
    fitted_ = false;
    zoomExtents();
  }
  viewChanged();
}

}  // namespace desktop
