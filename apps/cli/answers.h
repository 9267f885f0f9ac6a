// The front end of jobs that run by themselves: answers the dialogs they expect and takes down what
// the commands say.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "cad/ui/dialog.h"
#include "cad/ui/frontend.h"

namespace cli {

class AnswerFrontend : public cad::ui::Frontend {
 public:
  // How a dialog is answered, by its declared title; it must end the dialog. A dialog that nobody
  // expects is cancelled and noted as a problem.
  std::map<std::u16string, std::function<void(cad::ui::Dialog&)>> dialogs;
  // What a file question is answered with.
  std::u16string filePath;

  // Message boxes in order, and printed text.
  std::vector<std::u16string> messages;
  std::u16string printed;
  std::string problem;  // first thing that was not expected, fit for the user

  void print(std::u16string_view text) override { printed += text; }

 protected:
  void showDialog(cad::ui::Dialog& dialog) override;
  cad::ui::Pressed showMessage(const cad::ui::Message& message) override;
  std::optional<std::u16string> showFileQuestion(const cad::ui::FileQuestion& question) override;
  cad::ui::Answer showPrompt(const cad::ui::Prompt& prompt) override;
  void showInvalid(std::u16string_view reason) override;

 private:
  void note(std::u16string_view what);
};

// Does a gesture on a control of a name; false with a note when it cannot be done.
bool enter(AnswerFrontend& ui, cad::ui::Dialog& dialog, std::u16string_view control,
           std::u16string_view text);
bool press(AnswerFrontend& ui, cad::ui::Dialog& dialog, std::u16string_view control);

}  // namespace cli
