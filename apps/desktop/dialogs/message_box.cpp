#include <QMessageBox>
#include <QPushButton>

#include "apps/desktop/dialogs/run_dialog.h"
#include "apps/desktop/text.h"

namespace desktop {

using cad::ui::Pressed;

static QMessageBox::Icon iconOf(cad::ui::Icon icon) {
  switch (icon) {
    case cad::ui::Icon::information:
      return QMessageBox::Information;
    case cad::ui::Icon::warning:
      return QMessageBox::Warning;
    case cad::ui::Icon::stop:
      return QMessageBox::Critical;
    case cad::ui::Icon::question:
      return QMessageBox::Question;
    case cad::ui::Icon::none:
      break;
  }
  return QMessageBox::NoIcon;
}

// Buttons stand in the order of the message, hence none of the roles by which styles sort them.
Pressed runMessage(const cad::ui::Message& message, QWidget* parent) {
  QMessageBox box(parent);
  box.setWindowTitle(qt(message.title));
  box.setTextFormat(Qt::PlainText);
  box.setText(qt(message.text));
  box.setIcon(iconOf(message.icon));
  std::vector<std::pair<QPushButton*, Pressed>> buttons;
  for (Pressed answer : cad::ui::answersOf(message.buttons)) {
    QPushButton* const button = box.addButton(qt(cad::ui::wordOf(answer)), QMessageBox::AcceptRole);
    buttons.emplace_back(button, answer);
    if (answer == cad::ui::defaultAnswer(message.buttons)) box.setDefaultButton(button);
    if (answer == cad::ui::escapeAnswer(message.buttons)) box.setEscapeButton(button);
  }
  box.exec();
  for (const auto& [button, answer] : buttons)
    if (box.clickedButton() == button) return answer;
  return cad::ui::escapeAnswer(message.buttons);
}

}  // namespace desktop
