// One line of text as one gesture on a dialog: what scripts and the terminal share.
//
//   Etichetta = valore        types, takes an item, ticks ("sì", "no"), sets a time ("8:30")
//   Etichetta = #2            takes the second item
//   Etichetta                 presses a button, flips a check box, takes a radio button by its text
//   Lista[3]                  selects row 3;  Lista[=N12] the row whose first cell is N12
//   Lista[3] **               double click
//   Griglia[3,Quota] = 12.5   edits a cell; a column by title or by number (#2)
//   Griglia[1,#1..4,#2]       selects cells
//   Griglia[3] > Elimina Riga takes an entry of the popup menu; row 0 is the header
//   Etichetta ? testo         checks what is shown (see docs/scripts.md for the forms)
//   <invio>  <esc>            the default button; leaves the dialog
#pragma once

#include <string_view>

#include "cad/ui/dialog.h"

namespace cad::ui {

// Who carries out what a line says: the control itself, or whoever moves its widgets in its place.
class CAD_UI_API Hand {
 public:
  virtual ~Hand();
  virtual Gesture accept(Dialog& dialog) { return dialog.accept(); }
  virtual void dismiss(Dialog& dialog) { dialog.dismiss(); }
  virtual Gesture enter(Control& c, std::u16string_view text) { return c.enter(text); }
  virtual Gesture choose(Control& c, int item) { return c.choose(item); }
  virtual Gesture press(Control& c) { return c.press(); }
  virtual Gesture doubleClick(Control& c, int row) { return c.doubleClick(row); }
  virtual Gesture enterCell(Grid& g, Grid::Cell at, std::u16string_view text) {
    return g.enterCell(at.row, at.column, text);
  }
  virtual Gesture selectCells(Grid& g, Grid::Cell from, Grid::Cell to) {
    return g.selectCells(from, to);
  }
  virtual Gesture chooseMenu(Grid& g, Grid::Cell at, int entry) { return g.chooseMenu(at, entry); }
};

// Performs the line. The error is one Italian sentence: no such control (naming those that exist),
// a control that is disabled, an item that is not there, a check that does not hold.
CAD_UI_API Gesture performLine(Dialog& dialog, std::u16string_view line, Hand& hand);
CAD_UI_API Gesture performLine(Dialog& dialog, std::u16string_view line);

}  // namespace cad::ui
