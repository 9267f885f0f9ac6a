#include "apps/desktop/dialogs/run_dialog.h"

#include "apps/desktop/dialogs/dialog_window.h"

namespace desktop {

void runDialog(cad::ui::Dialog& dialog, QWidget* parent) {
  DialogWindow window(dialog, parent);
  if (!dialog.ended()) window.exec();
}

}  // namespace desktop
