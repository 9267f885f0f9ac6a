// The front end that a script answers: the batch language of the product and the way tests drive
// it.
//
// Each line of the script answers what stands there next, in order; see docs/scripts.md for the
// syntax. The first thing that does not fit - an unexpected dialog, message or prompt, a wrong or
// disabled control, an answer that cannot be used, lines left over - is the script's one error,
// with file, line, what was expected and what stood there instead. From then on everything unwinds:
// dialogs and prompts are cancelled, message boxes get their default answer, nothing more is taken
// from the script.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cad/ui/control.h"
#include "cad/ui/frontend.h"
#include "platform/result.h"

namespace cad::ui {

// The language that a script says it is written in, by a comment "# lingua: it" (or "# language:
// en") in front of its first line; empty when it says none.
CAD_UI_API std::string languageOfScript(std::string_view script);

class CAD_UI_API ScriptFrontend : public Frontend {
 public:
  using Output = std::function<void(std::u16string_view)>;

  // `script` is the text (UTF-8, or Windows-1252 bytes), `name` stands in errors; what commands
  // print goes to `output`, if there is one.
  ScriptFrontend(std::string_view script, std::string name, Output output = {});

  bool failed() const { return !error_.empty(); }
  // "name:line: ...", or empty.
  const std::string& error() const { return error_; }
  // Called when all commands have run: the script's error, or a complaint about lines left over.
  platform::Result<void> finish();
  // Whether a line is left that is not a check of printed text.
  bool hasAnswer() const;

  // A script that has failed answers no more: dialogs are cancelled, boxes get their default.
  bool ended() const override { return failed(); }
  void print(std::u16string_view text) override;
  // A help request is an event that scripts may check as printed text; no window opens.
  void help(std::u16string_view topic) override;

 protected:
  // A line of the script that answers the dialog.
  virtual Gesture perform(Dialog& dialog, std::u16string_view line);
  void showDialog(Dialog& dialog) override;
  Pressed showMessage(const Message& message) override;
  std::optional<std::u16string> showFileQuestion(const FileQuestion& question) override;
  Answer showPrompt(const Prompt& prompt) override;
  void showInvalid(std::u16string_view reason) override;

 private:
  struct Line {
    int number;
    std::u16string text;
  };
  const Line* peek() const { return next_ < lines_.size() ? &lines_[next_] : nullptr; }
  // Takes the line that answers, when it is of the wanted kind; else fails with what stands there.
  const Line* take(bool (*wanted)(std::u16string_view), std::u16string_view standing);
  void checkPrinted(std::u16string_view standing);
  void note(std::u16string_view text);
  void fail(int line, std::u16string_view reason);

  std::vector<Line> lines_;
  std::size_t next_ = 0;
  std::size_t checks_ = 0;  // lines left that look at printed text
  std::string name_, error_;
  Output output_;
  std::u16string printed_;  // since the last check
  int lastAnswer_ = 0;      // line of the last prompt's answer
};

}  // namespace cad::ui
