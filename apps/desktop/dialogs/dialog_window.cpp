#include "apps/desktop/dialogs/dialog_window.h"

#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QTimer>
#include <QToolTip>
#include <QVBoxLayout>
#include <algorithm>

#include "apps/desktop/text.h"
#include "cad/ui/names.h"

namespace desktop {

namespace ui = cad::ui;

// The body of a dialog, as large as it wants to be while the screen has room for it.
class BodyArea : public QScrollArea {
 public:
  BodyArea(QWidget* parent, QSize limit) : QScrollArea(parent), limit_(limit) {
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
  }
  QSize sizeHint() const override { return wanted(widget()->sizeHint().width()); }
  // Lines of text break, and the narrower the body the more room they need below each other.
  QSize wanted(int width) const {
    QSize wanted = widget()->sizeHint();
    if (widget()->layout()->hasHeightForWidth())
      wanted.setHeight(std::max(wanted.height(), widget()->layout()->heightForWidth(width)));
    if (wanted.height() > limit_.height())
      wanted.rwidth() += style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    return wanted.boundedTo(limit_);
  }
  QSize minimumSizeHint() const override {
    constexpr int low = 160;
    const QSize wanted = sizeHint();
    return {wanted.width(), std::min(wanted.height(), low)};
  }

 private:
  QSize limit_;
};

DialogWindow::DialogWindow(ui::Dialog& dialog, QWidget* parent)
    : QDialog(parent), dialog_(dialog), later_(new QTimer(this)), content_(new QWidget(this)) {
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  later_->setSingleShot(true);
  QObject::connect(later_, &QTimer::timeout, this, &DialogWindow::redraw);
  build();
  redraw();
  resize(layout()->sizeHint());  // a window left alone stays within two thirds of the screen
  dialog_.setView(this);
}

// Widgets go first: they still speak to their projections while they end.
DialogWindow::~DialogWindow() {
  dialog_.setView(nullptr);
  delete content_;
}

Projection* DialogWindow::projectionOf(const ui::Control& control) const {
  const auto at = byControl_.find(&control);
  return at == byControl_.end() ? nullptr : at->second;
}

// --- making it -----------------------------------------------------------------------------------

void DialogWindow::build() {
  constexpr double share = 0.9;  // of the screen
  const QSize limit = screen()->availableGeometry().size() * share;
  auto* const window = new QVBoxLayout(this);
  window->setContentsMargins(0, 0, 0, 0);
  window->addWidget(content_);
  auto* const column = new QVBoxLayout(content_);
  auto* const body = new QWidget(content_);
  for (ui::Control* control : dialog_.controls()) {
    projections_.push_back(
        project(*control, body, [this](Projection& projection, const ui::Gesture& gesture) {
          controlChanged(projection.control());
          tell(projection.widget(), gesture);
        }));
    byControl_[control] = projections_.back().get();
  }
  // The texts tell how wide and high everything is; a layout may part them once more.
  for (const auto& projection : projections_) {
    projection->update();
    projection->stale = true;
  }
  constexpr int foot = 64;  // buttons and margins
  const QSize room(limit.width() - 40, limit.height() - foot);
  layout_ = layOut(projections_, body, room.height());
  body->layout()->setContentsMargins(0, 0, 0, 0);
  area_ = new BodyArea(content_, room);
  area_->setWidget(body);
  column->addWidget(area_, 1);
  placeFoot(column);
  // Tab goes as the controls have been declared.
  QWidget* before = nullptr;
  for (const auto& projection : projections_)
    for (QWidget* widget : projection->widgets()) {
      if (before) QWidget::setTabOrder(before, widget);
      before = widget;
    }
}

void DialogWindow::placeFoot(QLayout* window) {
  auto* const row = new QHBoxLayout;
  static_cast<QBoxLayout*>(window)->addSpacing(4);
  static_cast<QBoxLayout*>(window)->addLayout(row);
  row->addStretch(1);
  QPushButton *declared = nullptr, *ok = nullptr;
  for (const auto& projection : projections_) {
    const auto* const button = dynamic_cast<const ui::Button*>(&projection->control());
    if (!button) continue;
    auto* const widget = static_cast<QPushButton*>(projection->widget());
    if (button->isDefault() && !declared) declared = widget;
    if (button->role() == ui::Role::ok && !ok) ok = widget;
    if (button->role() == ui::Role::help)
      widget->setFixedWidth(widget->fontMetrics().horizontalAdvance(u'?') + 28);
  }
  for (Projection* projection : layout_.foot) row->addWidget(projection->widget());
  if (QPushButton* const pressed = declared ? declared : ok) pressed->setDefault(true);
}

// --- the dialog's changes ------------------------------------------------------------------------

void DialogWindow::controlChanged(ui::Control& control) {
  if (Projection* const projection = projectionOf(control)) projection->stale = true;
  if (!later_->isActive()) later_->start(0);
}

void DialogWindow::titleChanged() {
  titlesStale_ = true;
  if (!later_->isActive()) later_->start(0);
}

void DialogWindow::focusMoved(ui::Control*) {
  focusStale_ = true;
  if (!later_->isActive()) later_->start(0);
}

void DialogWindow::dialogEnded() { done(0); }

void DialogWindow::redraw() {
  later_->stop();
  if (std::exchange(titlesStale_, false)) showTitles();
  for (const auto& projection : projections_)
    if (projection->stale) projection->update();
  hideEmptyBoxes();
  grow();
  if (std::exchange(focusStale_, false)) takeFocus();
}

void DialogWindow::showTitles() {
  setWindowTitle(qt(ui::plainName(dialog_.title())));
  for (const GroupBox& box : layout_.boxes)
    box.box->setTitle(box.titled ? labelOf(box.group->title()) : QString());
}

void DialogWindow::hideEmptyBoxes() {
  // Inner boxes come before outer ones.
  for (const GroupBox& box : layout_.boxes) {
    const QList<QWidget*> inner = box.box->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    box.box->setVisible(std::any_of(inner.begin(), inner.end(),
                                    [](const QWidget* widget) { return !widget->isHidden(); }));
  }
}

// What has come to need more room gets it, as far as the screen goes.
void DialogWindow::grow() {
  // Inner boxes come before outer ones here too: sizes go outwards.
  for (const GroupBox& box : layout_.boxes) {
    box.box->layout()->activate();
    box.box->updateGeometry();
  }
  area_->widget()->layout()->activate();
  area_->updateGeometry();
  if (!isVisible()) return;
  const QSize lacking = area_->wanted(area_->viewport()->width()) - area_->size();
  const int more = std::max(lacking.height(), 0), wider = std::max(lacking.width(), 0);
  if (more + wider > 0) resize(width() + wider, height() + more);
}

// --- the user ------------------------------------------------------------------------------------

// Why a gesture was refused, where it was made.
void DialogWindow::tell(QWidget* where, const ui::Gesture& gesture) {
  if (!gesture)
    QToolTip::showText(where->mapToGlobal(QPoint(0, where->height())), qt(gesture.error()), where);
}

void DialogWindow::reject() { dialog_.dismiss(); }

void DialogWindow::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (event->key() == Qt::Key_Escape) return reject();
  if (event->key() == Qt::Key_F1) {
    if (ui::Button* const help = helpButton()) tell(this, help->press());
  } else if (enter) {
    auto* const button = qobject_cast<QPushButton*>(focusWidget());
    if (button) return button->click();
    tell(focusWidget() ? focusWidget() : this, dialog_.accept());
  } else {
    QDialog::keyPressEvent(event);
  }
}

ui::Button* DialogWindow::helpButton() const {
  for (const auto& projection : projections_) {
    auto* const button = dynamic_cast<ui::Button*>(&projection->control());
    if (button && button->role() == ui::Role::help) return button;
  }
  return nullptr;
}

void DialogWindow::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (event->spontaneous()) return;
  later_->start(0);
  if (dialog_.focus()) {
    takeFocus();
  } else {
    focusFirst();
  }
}

// The first control of the dialog that one can work with.
void DialogWindow::focusFirst() {
  for (const auto& projection : projections_) {
    const QWidget* const widget = projection->widget();
    if (widget->focusPolicy() & Qt::TabFocus && widget->isEnabled() && widget->isVisible())
      return projection->takeFocus();
  }
}

void DialogWindow::takeFocus() {
  ui::Control* const control = dialog_.focus();
  if (Projection* const projection = control ? projectionOf(*control) : nullptr) {
    projection->takeFocus();
    area_->ensureWidgetVisible(projection->widget());
  } else {
    setFocus();
  }
}

}  // namespace desktop
