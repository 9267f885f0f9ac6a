// The front end of a terminal: dialogs as cards of text, questions as lines.
//
// It owns no terminal. Lines come from a reader, which a program may put line editing and
// completion behind, and output goes to a sink; both speak UTF-8.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cad/ui/frontend.h"

namespace cad::ui {

class Control;
class TerminalCard;

class CAD_UI_API TerminalFrontend : public Frontend {
 public:
  // The next line without its end, or nothing at the end of input. `prompt` stands in front of it;
  // `completions` are the words that could begin it.
  using Reader = std::function<std::optional<std::string>(
      const std::string& prompt, const std::vector<std::string>& completions)>;
  using Output = std::function<void(std::string_view)>;

  TerminalFrontend(Reader reader, Output output);
  // Tells how many columns the window has now; without it, cards are 80 wide.
  void setWindowWidth(std::function<int()> width) { windowWidth_ = std::move(width); }

  void print(std::u16string_view text) override;
  bool ended() const override { return ended_; }
  // A person sits at the terminal: where he ends his input he refuses one question, and is asked
  // again what follows from it; only when he does so again and again is the input at its end.
  void setPerson(bool person) { person_ = person; }
  // The question that stands is for the name of a file.
  bool asksFile() const { return asksFile_; }

 protected:
  void showDialog(Dialog& dialog) override;
  Pressed showMessage(const Message& message) override;
  std::optional<std::u16string> showFileQuestion(const FileQuestion& question) override;
  Answer showPrompt(const Prompt& prompt) override;
  void showInvalid(std::u16string_view reason) override;

 private:
  std::optional<std::u16string> read(std::u16string_view prompt,
                                     const std::vector<std::u16string>& completions);
  std::optional<std::u16string> readPath(const FileQuestion& question);
  void write(std::u16string_view text);
  void writeWrapped(std::u16string_view text);
  void freshLine();
  int width() const;
  void perform(Dialog& dialog, TerminalCard& card, std::u16string line);
  void explain(Dialog& dialog, Control& control);
  bool answersHelp(Dialog& dialog, const TerminalCard& card, std::u16string_view line);

  Reader reader_;
  Output output_;
  std::function<int()> windowWidth_;
  bool ended_ = false;
  bool person_ = false;
  bool asksFile_ = false;
  int endsInRow_ = 0;
  bool atLineStart_ = true;
  int shown_ = 0;  // dialogs so far: tells whether one opened over another
};

}  // namespace cad::ui
