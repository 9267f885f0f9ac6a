#include "apps/desktop/qt_frontend.h"

#include <QApplication>
#include <QClipboard>
#include <utility>

#include "apps/desktop/dialogs/run_dialog.h"
#include "apps/desktop/text.h"

namespace desktop {

void QtFrontend::print(std::u16string_view text) { Q_EMIT printed(qt(text)); }

void QtFrontend::setClipboard(std::u16string_view text) {
  QApplication::clipboard()->setText(qt(text));
}

std::u16string QtFrontend::clipboard() { return wide(QApplication::clipboard()->text()); }

// A dialog that opens over another one belongs to that one.
QWidget* QtFrontend::owner() const {
  QWidget* const modal = QApplication::activeModalWidget();
  return modal ? modal : window_;
}

void QtFrontend::showDialog(cad::ui::Dialog& dialog) {
  if (ended()) return dialog.dismiss();
  desktop::runDialog(dialog, owner());
}

cad::ui::Pressed QtFrontend::showMessage(const cad::ui::Message& message) {
  if (ended()) return cad::ui::escapeAnswer(message.buttons);
  return runMessage(message, owner());
}

std::optional<std::u16string> QtFrontend::showFileQuestion(const cad::ui::FileQuestion& question) {
  if (ended()) return std::nullopt;
  if (!nextFile_.empty()) return std::exchange(nextFile_, {});
  return runFileQuestion(question, owner());
}

cad::ui::Answer QtFrontend::showPrompt(const cad::ui::Prompt& prompt) {
  return prompts_.wait(prompt);
}

void QtFrontend::showInvalid(std::u16string_view reason) { Q_EMIT refused(qt(reason)); }

}  // namespace desktop
