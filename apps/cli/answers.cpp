#include "apps/cli/answers.h"

#include "platform/text.h"

namespace cli {

using namespace cad::ui;

void AnswerFrontend::note(std::u16string_view what) {
  if (problem.empty()) problem = platform::narrow(what);
}

void AnswerFrontend::showDialog(Dialog& dialog) {
  const auto it = dialogs.find(dialog.declaredTitle());
  if (it == dialogs.end()) {
    note(u"unexpected dialog \"" + dialog.title() + u"\"");
    dialog.dismiss();
    return;
  }
  it->second(dialog);
  if (!dialog.ended()) dialog.dismiss();
}

Pressed AnswerFrontend::showMessage(const Message& message) {
  messages.push_back(message.text);
  return defaultAnswer(message.buttons);
}

std::optional<std::u16string> AnswerFrontend::showFileQuestion(const FileQuestion&) {
  if (filePath.empty()) return std::nullopt;
  return filePath;
}

Answer AnswerFrontend::showPrompt(const Prompt& prompt) {
  note(u"unexpected question \"" + prompt.text + u"\"");
  return {Answer::Status::cancel, u""};
}

void AnswerFrontend::showInvalid(std::u16string_view reason) { note(reason); }

bool enter(AnswerFrontend& ui, Dialog& dialog, std::u16string_view control,
           std::u16string_view text) {
  auto found = dialog.find(control);
  const Gesture done = found ? (*found)->enter(text) : Gesture(platform::Error{found.error()});
  if (!done && ui.problem.empty()) ui.problem = done.error();
  return static_cast<bool>(done);
}

bool press(AnswerFrontend& ui, Dialog& dialog, std::u16string_view control) {
  auto found = dialog.find(control);
  const Gesture done = found ? (*found)->press() : Gesture(platform::Error{found.error()});
  if (!done && ui.problem.empty()) ui.problem = done.error();
  return static_cast<bool>(done);
}

}  // namespace cli
