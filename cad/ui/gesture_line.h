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

// Performs the line. The error is one Italian sentence: no such control (naming those that exist),
// a control that is disabled, an item that is not there, a check that does not hold.
CAD_UI_API Gesture performLine(Dialog& dialog, std::u16string_view line);

}  // namespace cad::ui
