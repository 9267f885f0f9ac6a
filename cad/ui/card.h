// A dialog as a sheet of text: everything it says and takes, in order. Translators work from it,
// and tests hold it against the dialog.
#pragma once

#include <string>

#include "cad/ui/dialog.h"

namespace cad::ui {

// Title, groups, labels, kinds, bounds, capacities, items, present values, states; one control a
// line, UTF-8. Does not open the dialog.
CAD_UI_API std::string dialogCard(Dialog& dialog);

}  // namespace cad::ui
