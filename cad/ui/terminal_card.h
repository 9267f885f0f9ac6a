// The picture of a dialog in a terminal.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "cad/ui/dialog.h"

namespace cad::ui {

// Draws dialogs as text: titles and groups as rules, one numbered line a control, lists and grids
// in pages. Widths count code points. It reads the dialog and never changes it.
class CAD_UI_API TerminalCard {
 public:
  explicit TerminalCard(Dialog& dialog, int width = 80);

  void setWidth(int width) { width_ = width; }
  // Everything, ending in the line of buttons.
  std::u16string draw();
  // The lines of one control, as draw() shows them.
  std::u16string draw(Control& control);
  // The controls that take gestures have the numbers 1, 2, ... in declaration order.
  Control* numbered(int number) const;
  int numberOf(const Control& control) const;  // 0 for none
  // Turns the pages of a list or grid; stops at the first and at the last.
  void turn(Control& control, int pages);

  static constexpr int rowsPerPage = 12;

 private:
  Dialog& dialog_;
  int width_;
  std::vector<Control*> numbers_;
  std::map<const Control*, int> page_;
};

}  // namespace cad::ui
