// The controls of one value: typed texts, check boxes, times, buttons, lines, pictures.
#include <QCheckBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimeEdit>
#include <QTimer>
#include <algorithm>

#include "apps/desktop/dialogs/picture.h"
#include "apps/desktop/dialogs/projection.h"
#include "apps/desktop/text.h"

namespace desktop {

namespace ui = cad::ui;

namespace {

class FieldProjection : public Projection {
 public:
  FieldProjection(ui::Field& field, std::size_t width, QWidget* parent, Done report)
      : Projection(field, Shape::field, std::move(report)),
        field_(field),
        edit_(new QLineEdit(parent)) {
    add(edit_);
    addLabel(parent);
    addRemark(parent);
    edit_->setMaxLength(static_cast<int>(field.capacity()));
    edit_->setMinimumWidth(edit_->fontMetrics().averageCharWidth() * static_cast<int>(width));
    QObject::connect(edit_, &QLineEdit::textEdited, edit_,
                     [this](const QString& text) { done(field_.enter(wide(text))); });
  }
  void takeFocus() override {
    edit_->setFocus();
    edit_->selectAll();
  }

 protected:
  void refresh() override {
    if (const QString text = qt(field_.shown()); edit_->text() != text) edit_->setText(text);
    // What the dialog itself put there is no business of whoever has typed nothing yet.
    const bool judged = field_.enabled() && field_.hasGesture();
    setRemark(qt(judged ? field_.complaint().value_or(u"") : u""));
  }

 private:
  ui::Field& field_;
  QLineEdit* edit_;
};

class CheckProjection : public Projection {
 public:
  CheckProjection(ui::Check& check, QWidget* parent, Done report)
      : Projection(check, Shape::check, std::move(report)),
        check_(check),
        box_(new QCheckBox(parent)) {
    add(box_);
    QObject::connect(box_, &QCheckBox::clicked, box_, [this] { done(check_.press()); });
  }

 protected:
  void refresh() override {
    box_->setText(labelOf(check_.label()));
    box_->setChecked(check_.checked());
  }

 private:
  ui::Check& check_;
  QCheckBox* box_;
};

// Its arrows go round within hour and minute, as the control's do.
class TimeEdit : public QTimeEdit {
 public:
  TimeEdit(QWidget* parent, std::function<void(ui::TimePicker::Part, int)> spin)
      : QTimeEdit(parent), spin_(std::move(spin)) {
    setDisplayFormat(QStringLiteral("HH:mm"));
    setWrapping(true);
    lineEdit()->installEventFilter(this);
  }
  void stepBy(int steps) override {
    spin_(
        currentSection() == HourSection ? ui::TimePicker::Part::hour : ui::TimePicker::Part::minute,
        steps);
  }

  // A click selects hour or minute, so that digits take their place; typed in between, they would
  // be refused.
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::MouseButtonRelease && !lineEdit()->hasSelectedText())
      QTimer::singleShot(0, this, [this] { setSelectedSection(currentSection()); });
    return QTimeEdit::eventFilter(watched, event);
  }

 private:
  std::function<void(ui::TimePicker::Part, int)> spin_;
};

class TimeProjection : public Projection {
 public:
  TimeProjection(ui::TimePicker& picker, QWidget* parent, Done report)
      : Projection(picker, Shape::field, std::move(report)),
        picker_(picker),
        edit_(new TimeEdit(parent, [this](ui::TimePicker::Part part, int steps) {
          const ui::Gesture spun = picker_.spin(part, steps);
          update();
          done(spun);
          edit_->setSelectedSection(edit_->currentSection());
        })) {
    add(edit_);
    addLabel(parent);
    ignoreStrayWheel(edit_);
    QObject::connect(edit_, &QTimeEdit::timeChanged, edit_, [this](QTime time) {
      if (!refreshing()) done(picker_.enter(wide(time.toString(QStringLiteral("HH:mm")))));
    });
  }

 protected:
  void refresh() override {
    const QTime time(picker_.time().hour, picker_.time().minute);
    if (edit_->time() == time) return;
    const QDateTimeEdit::Section section = edit_->currentSection();
    edit_->setTime(time);
    edit_->setCurrentSection(section);
  }

 private:
  ui::TimePicker& picker_;
  QTimeEdit* edit_;
};

class ButtonProjection : public Projection {
 public:
  ButtonProjection(ui::Button& button, QWidget* parent, Done report)
      : Projection(button, Shape::button, std::move(report)),
        button_(button),
        push_(new QPushButton(parent)) {
    add(push_);
    push_->setAutoDefault(false);
    QObject::connect(push_, &QPushButton::clicked, push_, [this] { done(button_.press()); });
  }

 protected:
  void refresh() override { push_->setText(labelOf(button_.label())); }

 private:
  ui::Button& button_;
  QPushButton* push_;
};

class LineProjection : public Projection {
 public:
  LineProjection(ui::Label& line, QWidget* parent, Done report)
      : Projection(line, Shape::line, std::move(report)), line_(line), text_(new QLabel(parent)) {
    add(text_);
    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  }

 protected:
  void refresh() override {
    const QString text = qt(line_.shown());
    text_->setText(text);
    // Long texts break; short ones need not.
    constexpr int least = 120, most = 380;
    text_->setMinimumWidth(
        std::clamp(text_->fontMetrics().horizontalAdvance(text) + 4, least, most));
  }

 private:
  ui::Label& line_;
  QLabel* text_;
};

class PictureProjection : public Projection {
 public:
  PictureProjection(ui::Picture& picture, QWidget* parent, Done report)
      : Projection(picture, Shape::picture, std::move(report)),
        picture_(picture),
        view_(new PictureView(parent)) {
    add(view_);
  }

 protected:
  void refresh() override { view_->setPicture(qt(picture_.picture())); }

 private:
  ui::Picture& picture_;
  PictureView* view_;
};

}  // namespace

std::unique_ptr<Projection> projectText(ui::Field& c, std::size_t width, QWidget* parent,
                                        Projection::Done done) {
  return std::make_unique<FieldProjection>(c, width, parent, std::move(done));
}
std::unique_ptr<Projection> projectCheck(ui::Check& c, QWidget* parent, Projection::Done done) {
  return std::make_unique<CheckProjection>(c, parent, std::move(done));
}
std::unique_ptr<Projection> projectTime(ui::TimePicker& c, QWidget* parent, Projection::Done done) {
  return std::make_unique<TimeProjection>(c, parent, std::move(done));
}
std::unique_ptr<Projection> projectButton(ui::Button& c, QWidget* parent, Projection::Done done) {
  return std::make_unique<ButtonProjection>(c, parent, std::move(done));
}
std::unique_ptr<Projection> projectLine(ui::Label& c, QWidget* parent, Projection::Done done) {
  return std::make_unique<LineProjection>(c, parent, std::move(done));
}
std::unique_ptr<Projection> projectPicture(ui::Picture& c, QWidget* parent, Projection::Done done) {
  return std::make_unique<PictureProjection>(c, parent, std::move(done));
}

}  // namespace desktop
