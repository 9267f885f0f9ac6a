#include "apps/desktop/dialogs/run_dialog.h"

namespace desktop {

void runDialog(cad::ui::Dialog& dialog, QWidget*) { dialog.dismiss(); }

cad::ui::Pressed runMessage(const cad::ui::Message& message, QWidget*) {
  return cad::ui::escapeAnswer(message.buttons);
}

std::optional<std::u16string> runFileQuestion(const cad::ui::FileQuestion&, QWidget*) {
  return std::nullopt;
}

}  // namespace desktop
