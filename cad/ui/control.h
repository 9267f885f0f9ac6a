// The base of all controls of a dialog.
//
// A control is a typed member of its dialog and holds the truth: text, value, list, enabled state.
// It registers itself in declaration order, which is the order of layout, of the Tab key and of the
// field exchange. Widgets, terminal cards and scripts are projections of it.
//
// Two ways in, never mixed:
//   gestures     enter, choose, press, doubleClick: what a user does. Refused on a disabled or
//   hidden
//                control; an accepted one is journalled and fires the control's handler.
//   assignments  every other function: what code does. They refresh the view and fire nothing.
//
// A field has a shown state (what stands on the screen) and a value (what was last transferred by
// Dialog::updateData or assigned by code). Every opening of a dialog begins with the declared face
// of its controls - label, enabled, visible, list items - and shows the values; what differs from
// that is set in Dialog::onInit.
#pragma once

#include <concepts>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cad/ui/export.h"
#include "platform/result.h"

namespace cad::ui {

class Dialog;
class Visitor;

// Done, or why not: an Italian sentence that a front end can show as it is.
using Gesture = platform::Result<void>;
using TextVisitor = std::function<void(std::u16string&)>;

// What a gesture sets off: a member function of the dialog without arguments, or any callable.
class Handler {
 public:
  Handler() = default;
  template <class D>
  requires std::derived_from<D, Dialog> Handler(
      void (D::*method)())  // NOLINT: a method is a handler
      : call_([method](Dialog& dialog) { (static_cast<D&>(dialog).*method)(); }) {}
  template <class F>
  requires std::invocable<F&> Handler(F call)
      : call_([call](Dialog&) mutable { call(); }) {}  // NOLINT

  explicit operator bool() const { return static_cast<bool>(call_); }
  void operator()(Dialog& dialog) const { call_(dialog); }

 private:
  std::function<void(Dialog&)> call_;
};

// A titled box around controls; boxes nest. Declared before the controls that stand in it.
class CAD_UI_API Group {
 public:
  Group(Dialog* dialog, std::u16string_view title);
  Group(Group* outer, std::u16string_view title);
  Group(const Group&) = delete;
  Group& operator=(const Group&) = delete;
  ~Group();

  Dialog& dialog() const { return *dialog_; }
  const Group* outer() const { return outer_; }
  const std::u16string& title() const { return title_; }
  const std::u16string& declaredTitle() const { return declaredTitle_; }

 private:
  friend class Dialog;
  Dialog* dialog_;
  const Group* outer_ = nullptr;
  std::u16string title_, declaredTitle_;
};

// Where a control stands: directly in a dialog (`this`) or in a group (`&group`).
struct CAD_UI_API Place {
  Place(Dialog* d) : dialog(d) {}                      // NOLINT
  Place(Group* g) : dialog(&g->dialog()), group(g) {}  // NOLINT
  Dialog* dialog;
  const Group* group = nullptr;
};

// What every kind of control can be told at its declaration.
struct Face {
  std::u16string
      name{};  // for scripts and the terminal, when the label is empty or says too little
  bool enabled = true;
  bool visible = true;
};

class CAD_UI_API Control {
 public:
  Control(Place place, std::u16string_view label, Face face);
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  virtual ~Control();

  Dialog& dialog() const { return *dialog_; }
  const Group* group() const { return group_; }
  // The label as shown, perhaps translated, and as declared. A '&' before a letter marks its key.
  const std::u16string& label() const { return label_; }
  const std::u16string& declaredLabel() const { return declaredLabel_; }
  const std::u16string& givenName() const { return face_.name; }
  bool enabled() const { return enabled_; }
  bool visible() const { return visible_; }
  void setLabel(std::u16string_view label);
  void setEnabled(bool enabled);
  void setVisible(bool visible);

  // The kind, as one call of the visitor.
  virtual void accept(Visitor& visitor) = 0;
  // What stands on the screen, as text.
  virtual std::u16string shown() const = 0;

  // Whether the user has put something into it since the dialog opened, the same again included.
  bool hasGesture() const { return gesture_; }

  // --- gestures; items and rows count from 0, kinds that know no such gesture refuse it
  Gesture enter(std::u16string_view text);
  Gesture choose(int item);
  Gesture press();
  Gesture doubleClick(int row);

 protected:
  friend class Dialog;
  virtual Gesture onEnter(std::u16string_view text);
  virtual Gesture onChoose(int item);
  virtual Gesture onPress();
  virtual Gesture onDoubleClick(int row);
  // Refuses a gesture on a control that is disabled or hidden.
  Gesture ready() const;
  // An accepted gesture whose effect stands already: journal line (name + `rest`), view, handler.
  void done(std::u16string_view rest, const Handler& handler);
  // Tells the view that something to see has changed.
  void refresh();

  // --- field exchange; Dialog calls these in declaration order
  virtual std::optional<std::u16string> store() {
    return std::nullopt;
  }                                                   // shown -> value, or complaint
  virtual void load() {}                              // value -> shown
  virtual void resetFace();                           // as declared
  virtual void visitTexts(const TextVisitor& visit);  // label, items, columns

 private:
  Dialog* dialog_;
  const Group* group_;
  Face face_;
  std::u16string label_, declaredLabel_;
  bool enabled_, visible_;
  bool gesture_ = false;
};

// The closed list of kinds. A new one fails to compile in each front end until it is handled.
class Text;
class Real;
class Integer;
class Choice;
class ListBox;
class ReportList;
class RadioGroup;
class Check;
class TimePicker;
class Button;
class Label;
class Grid;
class Picture;

class CAD_UI_API Visitor {
 public:
  virtual ~Visitor();
  virtual void visit(Text& c) = 0;
  virtual void visit(Real& c) = 0;
  virtual void visit(Integer& c) = 0;
  virtual void visit(Choice& c) = 0;
  virtual void visit(ListBox& c) = 0;
  virtual void visit(ReportList& c) = 0;
  virtual void visit(RadioGroup& c) = 0;
  virtual void visit(Check& c) = 0;
  virtual void visit(TimePicker& c) = 0;
  virtual void visit(Button& c) = 0;
  virtual void visit(Label& c) = 0;
  virtual void visit(Grid& c) = 0;
  virtual void visit(Picture& c) = 0;
};

}  // namespace cad::ui
