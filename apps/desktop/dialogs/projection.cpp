#include "apps/desktop/dialogs/projection.h"

#include <QEvent>
#include <QLabel>
#include <QWidget>

#include "apps/desktop/text.h"
#include "cad/ui/names.h"

namespace desktop {

namespace ui = cad::ui;

Projection::~Projection() = default;

void Projection::update() {
  stale = false;
  refreshing_ = true;
  for (QWidget* widget : widgets_) {
    widget->setEnabled(control_.enabled());
    widget->setVisible(control_.visible());
  }
  if (label_) {
    label_->setText(labelText());
    label_->setEnabled(control_.enabled());
    label_->setVisible(control_.visible());
  }
  refresh();
  refreshing_ = false;
}

void Projection::takeFocus() { widget()->setFocus(); }

void Projection::add(QWidget* widget) {
  if (widgets_.empty()) widget->setObjectName(qt(control_.dialog().nameOf(control_)));
  widget->setAccessibleName(qt(control_.dialog().shownNameOf(control_)));
  widgets_.push_back(widget);
}

QString Projection::labelText() const {
  if (!ui::plainName(control_.label()).empty()) return labelOf(control_.label());
  return control_.givenName().empty() ? QString() : words(control_.givenName());
}

void Projection::addLabel(QWidget* parent) {
  label_ = new QLabel(parent);
  label_->setTextFormat(Qt::PlainText);
  label_->setBuddy(widget());
}

void Projection::dropLabel() {
  delete label_;
  label_ = nullptr;
}

void Projection::addRemark(QWidget* parent) {
  remark_ = new QLabel(parent);
  remark_->setTextFormat(Qt::PlainText);
  remark_->setWordWrap(true);
  // Readable on a light and on a dark window.
  QPalette palette = remark_->palette();
  const bool dark = palette.color(QPalette::Window).lightness() < 128;
  palette.setColor(QPalette::WindowText, dark ? QColor(255, 140, 130) : QColor(190, 20, 20));
  remark_->setPalette(palette);
  remark_->hide();
}

void Projection::setRemark(const QString& text) {
  remark_->setText(text);
  remark_->setVisible(!text.isEmpty() && control_.visible());
  widget()->setAccessibleDescription(text);
  QPalette palette;
  if (!text.isEmpty()) palette.setColor(QPalette::Text, remark_->palette().windowText().color());
  widget()->setPalette(palette);
}

QString labelOf(const std::u16string& label) { return qt(label).simplified(); }

namespace {

class WheelGuard : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* const widget = static_cast<QWidget*>(watched);
    if (event->type() != QEvent::Wheel || widget->hasFocus()) return false;
    event->ignore();
    return true;
  }
};

// How wide a field is, in characters.
constexpr std::size_t kNumberWidth = 14, kTextWidth = 24, kPathWidth = 56, kPathCapacity = 500;

class Projector final : public ui::Visitor {
 public:
  Projector(QWidget* parent, Projection::Done done) : parent_(parent), done_(std::move(done)) {}
  std::unique_ptr<Projection> made;

  void visit(ui::Text& c) override {
    made = projectText(c, c.capacity() > kPathCapacity ? kPathWidth : kTextWidth, parent_, done_);
  }
  void visit(ui::Real& c) override { made = projectText(c, kNumberWidth, parent_, done_); }
  void visit(ui::Integer& c) override { made = projectText(c, kNumberWidth, parent_, done_); }
  void visit(ui::Choice& c) override { made = projectChoice(c, parent_, done_); }
  void visit(ui::ListBox& c) override { made = projectListBox(c, parent_, done_); }
  void visit(ui::ReportList& c) override { made = projectReport(c, parent_, done_); }
  void visit(ui::RadioGroup& c) override { made = projectRadio(c, parent_, done_); }
  void visit(ui::Check& c) override { made = projectCheck(c, parent_, done_); }
  void visit(ui::TimePicker& c) override { made = projectTime(c, parent_, done_); }
  void visit(ui::Button& c) override { made = projectButton(c, parent_, done_); }
  void visit(ui::Label& c) override { made = projectLine(c, parent_, done_); }
  void visit(ui::Grid& c) override { made = projectGrid(c, parent_, done_); }
  void visit(ui::Picture& c) override { made = projectPicture(c, parent_, done_); }

 private:
  QWidget* parent_;
  Projection::Done done_;
};

}  // namespace

void ignoreStrayWheel(QWidget* widget) {
  widget->setFocusPolicy(Qt::StrongFocus);
  widget->installEventFilter(new WheelGuard(widget));
}

std::unique_ptr<Projection> project(ui::Control& control, QWidget* parent, Projection::Done done) {
  Projector projector(parent, std::move(done));
  control.accept(projector);
  return std::move(projector.made);
}

}  // namespace desktop
