// What a program asks of its user, and the door to whoever answers: a window system, a terminal, a
// script. Everything is modal and synchronous, on one thread.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cad/ui/export.h"

namespace cad::ui {

class Dialog;
class Journal;

enum class Outcome { ok, cancel };
enum class Icon { none, information, warning, stop, question };
enum class Buttons { ok, okCancel, yesNo, yesNoCancel };
enum class Pressed { ok, cancel, yes, no };

struct Message {
  std::u16string title{}, text{};
  Icon icon = Icon::none;
  Buttons buttons = Buttons::ok;
};

// The buttons of a box in order, the words on them, whether a word is a button's (in the user's
// language or in Italian), the one that Enter presses, and the one that Esc presses (ok for a box
// with OK alone, no where there is no cancel button).
CAD_UI_API const std::vector<Pressed>& answersOf(Buttons buttons);
CAD_UI_API std::u16string wordOf(Pressed button);
CAD_UI_API bool isWordOf(Pressed button, std::u16string_view word);
CAD_UI_API Pressed defaultAnswer(Buttons buttons);
CAD_UI_API Pressed escapeAnswer(Buttons buttons);

struct FileQuestion {
  enum class Mode { open, save } mode = Mode::open;
  std::u16string title{};   // empty: the front end's own words
  std::u16string name{};    // proposed file name
  std::u16string filter{};  // "INP Files (*.inp)|*.inp|": pairs of words and patterns
};
struct FileFilter {
  std::u16string words, pattern;
};
CAD_UI_API std::vector<FileFilter> filtersOf(std::u16string_view filter);

// A place in the drawing, in its world coordinates.
struct Place3d {
  double x = 0, y = 0, z = 0;
};

// A question on the command line.
struct Prompt {
  enum class Kind { command, string, integer, real, point, keyword, entity, selection };
  Kind kind = Kind::string;
  std::u16string text{};                   // as the command gave it, leading "\n" included
  std::vector<std::u16string> keywords{};  // for completion; the asker judges the answer
  bool allowBlanks = false;                // a blank is text and does not end the answer
  std::optional<Place3d> base{};           // where the line begins whose end is asked for
};
struct Answer {
  enum class Status { ok, none, cancel, end };  // text, Enter alone, Esc, no more input
  Status status = Status::ok;
  std::u16string text{};
  // What a front end with a screen knows better than a text says it: the place that was pointed at,
  // and the handles of the objects that were picked there. They go before the text, which then may
  // be empty.
  std::optional<Place3d> place{};
  std::vector<std::uint64_t> objects{};
};

class CAD_UI_API Frontend {
 public:
  Frontend();
  Frontend(const Frontend&) = delete;
  Frontend& operator=(const Frontend&) = delete;
  virtual ~Frontend();

  // Runs the dialog until it has ended. Dialog::run calls it. Nests.
  void runDialog(Dialog& dialog);
  Pressed messageBox(const Message& message);
  // The chosen path, or nothing when the user refused.
  std::optional<std::u16string> askFile(const FileQuestion& question);
  Answer ask(const Prompt& prompt);
  // The asker could not use the last answer; the reason is in words. The asker asks again.
  void invalid(std::u16string_view reason);
  // No answer will come any more: whatever is asked, the same refusal comes back.
  virtual bool ended() const { return false; }
  // Called where a question has been put that nobody can answer any more. A handler that throws
  // leaves whoever asked; commands may ask on and on in spite of every refusal. Null for none.
  void setUnanswered(std::function<void()> handler) { unanswered_ = std::move(handler); }
  // Output of commands; line ends are in the text.
  virtual void print(std::u16string_view text) = 0;
  virtual void help(std::u16string_view topic);
  // Text for other programs; by default it stays within this front end.
  virtual void setClipboard(std::u16string_view text);
  virtual std::u16string clipboard();

  // Takes down what is asked and answered. Not owned; null for none.
  void setJournal(Journal* journal) { journal_ = journal; }
  Journal* journal() const { return journal_; }

 protected:
  virtual void showDialog(Dialog& dialog) = 0;
  virtual Pressed showMessage(const Message& message) = 0;
  virtual std::optional<std::u16string> showFileQuestion(const FileQuestion& question) = 0;
  virtual Answer showPrompt(const Prompt& prompt) = 0;
  virtual void showInvalid(std::u16string_view reason) = 0;

 private:
  void leaveWhenEnded() const {
    if (unanswered_ && ended()) unanswered_();
  }

  Journal* journal_ = nullptr;
  std::function<void()> unanswered_;
  std::u16string clipboard_;
};

}  // namespace cad::ui
