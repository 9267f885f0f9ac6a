// The kit's dialogs, message boxes and file questions as windows of Qt.
//
// Each call shows its window over `parent` and comes back when it has ended; the application's
// events go on meanwhile. Calls nest, as dialogs open others.
#pragma once

#include <optional>
#include <string>

#include "cad/ui/dialog.h"

class QWidget;

namespace desktop {

// Shows the dialog until it has ended. A window that is closed dismisses its dialog.
void runDialog(cad::ui::Dialog& dialog, QWidget* parent);

cad::ui::Pressed runMessage(const cad::ui::Message& message, QWidget* parent);

// The chosen path, or nothing when the user refused. Writing over an existing file has been asked.
std::optional<std::u16string> runFileQuestion(const cad::ui::FileQuestion& question,
                                              QWidget* parent);

}  // namespace desktop
