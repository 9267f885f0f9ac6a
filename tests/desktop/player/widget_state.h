// What the widgets of a dialog show, held against what its controls show.
#pragma once

#include <QStringList>

#include "apps/desktop/dialogs/dialog_window.h"

namespace desktop {

// A line for each widget that says otherwise than its control: text, items, rows, titles, state.
QStringList differences(const DialogWindow& window);

}  // namespace desktop
