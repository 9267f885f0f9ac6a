// A modal dialog: a titled list of controls with a life cycle.
//
//   class PipeDialog : public Dialog {
//    public:
//     PipeDialog() : Dialog(u"Ramo") {}
//     Real diameter{this, u"Diametro [mm]", {.initial = 200, .min = 0.0001}};
//     Choice material{this, u"Materiale", {.items = {u"PEAD", u"PVC"}}, &PipeDialog::chosen};
//     Button ok{this, u"OK", {.role = Role::ok}};
//     Button cancel{this, u"Annulla", {.role = Role::cancel}};
//    private:
//     void chosen();
//   };
//   PipeDialog d;  d.diameter = 110;
//   if (d.run(ui) == Outcome::ok) use(d.diameter.value());
//
// An opening: the controls go back to their declared face, values are shown, onInit runs, the front
// end takes over until end() is called. A dialog may be run again; it opens with its last values.
#pragma once

#include <memory>
#include <vector>

#include "cad/ui/control.h"
#include "cad/ui/fields.h"
#include "cad/ui/frontend.h"
#include "cad/ui/lists.h"
#include "cad/ui/tables.h"

namespace cad::ui {

// The listener of a front end with windows. Calls may come many times in a row while code fills a
// list: note what is stale and redraw later.
class CAD_UI_API DialogView {
 public:
  virtual ~DialogView();
  // Text, value, list, colour, enabled or visible state of the control.
  virtual void controlChanged(Control& control) = 0;
  virtual void titleChanged() {}
  // Code wants the focus here; null means the dialog itself.
  virtual void focusMoved(Control* control) = 0;
  // The dialog has ended: leave its event loop.
  virtual void dialogEnded() = 0;
};

class CAD_UI_API Dialog {
 public:
  explicit Dialog(std::u16string_view title, std::u16string_view helpTopic = {});
  Dialog(const Dialog&) = delete;
  Dialog& operator=(const Dialog&) = delete;
  virtual ~Dialog();

  const std::u16string& title() const { return title_; }
  const std::u16string& declaredTitle() const { return declaredTitle_; }
  void setTitle(std::u16string_view title);
  const std::u16string& helpTopic() const { return helpTopic_; }

  // In declaration order.
  const std::vector<Control*>& controls() const { return controls_; }
  const std::vector<Group*>& groups() const { return groups_; }

  // --- life
  // Opens the dialog and returns how it ended. Refused (cancel) while it is open already.
  Outcome run(Frontend& frontend);
  bool open() const { return frontend_ != nullptr; }
  bool ended() const { return ended_; }
  Outcome outcome() const { return outcome_; }
  void end(Outcome outcome);
  // The front end of the opening; only while the dialog is open.
  Frontend& frontend() const { return *frontend_; }

  // Each opening, when the values are shown already: fill lists, set states, translate texts.
  virtual void onInit() {}
  // OK: takes over the fields and ends; stays open when a field is bad.
  virtual void onOk();
  virtual void onCancel() { end(Outcome::cancel); }
  // The help button: hands the topic to the front end.
  virtual void onHelp();

  // --- gestures on the dialog as a whole
  // Enter: the default button, or else the OK button, or else onOk.
  Gesture accept();
  // Esc or the window's cross: onCancel, whether or not there is a button for it.
  void dismiss();

  // --- field exchange
  // Moves what is typed into the values, in declaration order, disabled and hidden controls too.
  // Stops at the first bad field: complains in a message box, puts the focus there and returns
  // false. Fields before it are transferred, those from it on are not.
  bool updateData();
  // Shows all values again, dropping what was typed.
  void showData();

  // --- texts
  // Mutable access to every shown text: title, group titles, labels, declared list items and radio
  // items, column titles.
  void forEachText(const TextVisitor& visit);
  // A text of the kit's own (complaints) on its way to the user. Override to translate.
  virtual std::u16string translate(std::u16string_view text);
  // A message box over this dialog, with its title.
  Pressed say(std::u16string_view text, Icon icon = Icon::none, Buttons buttons = Buttons::ok);

  // --- focus and view
  Control* focus() const { return focus_; }
  void setFocus(Control* control);
  // At most one view; null detaches. Not owned.
  void setView(DialogView* view) { view_ = view; }

  // --- names
  // The shortest name by which find() gives this control back.
  std::u16string nameOf(const Control& control) const;
  // The same in the user's language: by the label as it is shown.
  std::u16string shownNameOf(const Control& control) const;
  // The control of a name: given name or label (declared or shown), with group titles and '/' in
  // front where it is doubled, "(2)" behind where that does not help. The error lists what there
  // is.
  platform::Result<Control*> find(std::u16string_view name) const;
  // Those of all controls, as shownNameOf().
  std::vector<std::u16string> names() const;

 private:
  friend class Control;
  friend class Group;
  class Opening;
  void add(Control& control) { controls_.push_back(&control); }
  void add(Group& group) { groups_.push_back(&group); }
  void remove(Control& control);
  void remove(Group& group);
  void changed(Control& control);
  void journal(const Control& control, std::u16string_view rest);
  void prepare();

  std::u16string title_, declaredTitle_, helpTopic_;
  std::vector<Control*> controls_;
  std::vector<Group*> groups_;
  Frontend* frontend_ = nullptr;
  DialogView* view_ = nullptr;
  Control* focus_ = nullptr;
  bool ended_ = false;
  Outcome outcome_ = Outcome::cancel;
};

}  // namespace cad::ui
