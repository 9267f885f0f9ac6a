// One control of a dialog as widgets. What they show comes from the control; what the user does
// with them goes to the control as a gesture, and to nothing else.
#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "cad/ui/dialog.h"

class QLabel;
class QWidget;

namespace desktop {

class Projection {
 public:
  // How a control takes its place among others.
  enum class Shape { field, check, button, line, picture, radio, list };
  // Told of each gesture, done or refused; what the control shows then may be another.
  using Done = std::function<void(Projection&, const cad::ui::Gesture&)>;

  Projection(cad::ui::Control& control, Shape shape, Done done)
      : control_(control), shape_(shape), done_(std::move(done)) {}
  Projection(const Projection&) = delete;
  Projection& operator=(const Projection&) = delete;
  virtual ~Projection();

  cad::ui::Control& control() const { return control_; }
  Shape shape() const { return shape_; }
  // What takes the focus and the events; the first of several. Owned by its parent.
  QWidget* widget() const { return widgets_.front(); }
  const std::vector<QWidget*>& widgets() const { return widgets_; }
  // The control's own label beside it, and the line below it that says what is wrong with what has
  // been typed; null where there is none.
  QLabel* label() const { return label_; }
  QLabel* remark() const { return remark_; }
  // The place says what the label would.
  void dropLabel();

  // Shows what the control shows.
  void update();
  // The view has to be updated.
  bool stale = true;

  // Puts the focus here, as a user would find it: texts selected, on the chosen button of several.
  virtual void takeFocus();

 protected:
  // Called by update(); widgets that change meanwhile are no gestures.
  virtual void refresh() = 0;
  bool refreshing() const { return refreshing_; }
  void done(const cad::ui::Gesture& gesture) { done_(*this, gesture); }

  void add(QWidget* widget);
  // A label beside the widget: the control's, or its name where it has none.
  void addLabel(QWidget* parent);
  void addRemark(QWidget* parent);
  void setRemark(const QString& text);

 private:
  QString labelText() const;

  cad::ui::Control& control_;
  Shape shape_;
  Done done_;
  std::vector<QWidget*> widgets_;
  QLabel* label_ = nullptr;
  QLabel* remark_ = nullptr;
  bool refreshing_ = false;
};

// The widgets of a control, children of `parent`.
std::unique_ptr<Projection> project(cad::ui::Control& control, QWidget* parent,
                                    Projection::Done done);

std::unique_ptr<Projection> projectText(cad::ui::Field&, std::size_t width, QWidget*,
                                        Projection::Done);
std::unique_ptr<Projection> projectCheck(cad::ui::Check&, QWidget*, Projection::Done);
std::unique_ptr<Projection> projectTime(cad::ui::TimePicker&, QWidget*, Projection::Done);
std::unique_ptr<Projection> projectButton(cad::ui::Button&, QWidget*, Projection::Done);
std::unique_ptr<Projection> projectLine(cad::ui::Label&, QWidget*, Projection::Done);
std::unique_ptr<Projection> projectPicture(cad::ui::Picture&, QWidget*, Projection::Done);
std::unique_ptr<Projection> projectChoice(cad::ui::Choice&, QWidget*, Projection::Done);
std::unique_ptr<Projection> projectListBox(cad::ui::ListBox&, QWidget*, Projection::Done);
std::unique_ptr<Projection> projectRadio(cad::ui::RadioGroup&, QWidget*, Projection::Done);
std::unique_ptr<Projection> projectReport(cad::ui::ReportList&, QWidget*, Projection::Done);
std::unique_ptr<Projection> projectGrid(cad::ui::Grid&, QWidget*, Projection::Done);

// A label as Qt has it: the key's mark stays, blanks do not pile up.
QString labelOf(const std::u16string& label);
// A wheel that turns the page must not turn the value below it: only with the focus.
void ignoreStrayWheel(QWidget* widget);

}  // namespace desktop
