// Carries out gestures on a dialog with a mouse and keys, on the widgets of its window.
#pragma once

#include "apps/desktop/dialogs/dialog_window.h"
#include "cad/ui/gesture_line.h"

class QAbstractItemView;

namespace desktop {

// What no user could do - a disabled control, an item that is not there - goes to the control,
// which says why not.
class WidgetHand : public cad::ui::Hand {
 public:
  explicit WidgetHand(DialogWindow& window) : window_(window) {}

  cad::ui::Gesture accept(cad::ui::Dialog& dialog) override;
  void dismiss(cad::ui::Dialog& dialog) override;
  cad::ui::Gesture enter(cad::ui::Control& c, std::u16string_view text) override;
  cad::ui::Gesture choose(cad::ui::Control& c, int item) override;
  cad::ui::Gesture press(cad::ui::Control& c) override;
  cad::ui::Gesture doubleClick(cad::ui::Control& c, int row) override;
  cad::ui::Gesture enterCell(cad::ui::Grid& g, cad::ui::Grid::Cell at,
                             std::u16string_view text) override;
  cad::ui::Gesture selectCells(cad::ui::Grid& g, cad::ui::Grid::Cell from,
                               cad::ui::Grid::Cell to) override;
  cad::ui::Gesture chooseMenu(cad::ui::Grid& g, cad::ui::Grid::Cell at, int entry) override;

 private:
  bool usable(const cad::ui::Control& c) const;
  QWidget* widgetOf(const cad::ui::Control& c) const;
  bool setTime(cad::ui::TimePicker& c, std::u16string_view text);

  DialogWindow& window_;
};

// Types over what stands in a field.
void typeOver(QWidget* field, const QString& text);
// All events at hand, and the views as they then are.
void settle(DialogWindow& window);

}  // namespace desktop
