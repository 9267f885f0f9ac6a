// A dialog of the kit as a window.
#pragma once

#include <QDialog>
#include <memory>
#include <unordered_map>
#include <vector>

#include "apps/desktop/dialogs/layout.h"
#include "apps/desktop/dialogs/projection.h"

class QTimer;

namespace desktop {

class BodyArea;

class DialogWindow : public QDialog, private cad::ui::DialogView {
 public:
  // Becomes the dialog's view. The dialog is open and outlives the window.
  DialogWindow(cad::ui::Dialog& dialog, QWidget* parent);
  ~DialogWindow() override;

  const cad::ui::Dialog& dialog() const { return dialog_; }
  // Null for a control of another dialog.
  Projection* projectionOf(const cad::ui::Control& control) const;
  const std::vector<GroupBox>& boxes() const { return layout_.boxes; }

  // Shows at once what has changed since the last time; without it that happens when all events at
  // hand have been dealt with.
  void redraw();

  // Esc and the window's cross: the dialog decides whether it ends.
  void reject() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void controlChanged(cad::ui::Control& control) override;
  void titleChanged() override;
  void focusMoved(cad::ui::Control* control) override;
  void dialogEnded() override;

  void build();
  void placeFoot(QLayout* window);
  void tell(QWidget* where, const cad::ui::Gesture& gesture);
  void showTitles();
  void hideEmptyBoxes();
  void grow();
  void focusFirst();
  void takeFocus();
  cad::ui::Button* helpButton() const;

  cad::ui::Dialog& dialog_;
  QTimer* later_;
  QWidget* content_;  // all widgets of the dialog
  BodyArea* area_ = nullptr;
  std::vector<std::unique_ptr<Projection>> projections_;  // in declaration order
  std::unordered_map<const cad::ui::Control*, Projection*> byControl_;
  LayoutResult layout_;
  bool titlesStale_ = true;
  bool focusStale_ = false;
};

}  // namespace desktop
