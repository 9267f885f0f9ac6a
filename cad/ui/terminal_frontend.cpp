#include "cad/ui/terminal_frontend.h"

#include <algorithm>

#include "cad/ui/gesture_line.h"
#include "cad/ui/names.h"
#include "cad/ui/terminal_card.h"
#include "cad/ui/terminal_help.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad::ui {

using platform::format;
using std::u16string;
using std::u16string_view;

TerminalFrontend::TerminalFrontend(Reader reader, Output output)
    : reader_(std::move(reader)), output_(std::move(output)) {}

int TerminalFrontend::width() const {
  constexpr int narrowest = 40, widest = 160, usual = 80;  // beyond that the eye loses the line
  return windowWidth_ ? std::clamp(windowWidth_(), narrowest, widest) : usual;
}

// --- lines in and out
// ------------------------------------------------------------------------------

void TerminalFrontend::write(u16string_view text) {
  if (text.empty()) return;
  atLineStart_ = text.back() == u'\n';
  // What is shown may come from a drawing, and the terminal obeys what it is shown.
  output_(platform::narrow(platform::printable(text)));
}

void TerminalFrontend::freshLine() {
  if (!atLineStart_) write(u"\n");
}

void TerminalFrontend::print(u16string_view text) { write(text); }

std::optional<u16string> TerminalFrontend::read(u16string_view prompt,
                                                const std::vector<u16string>& completions) {
  if (!ended_) {
    std::vector<std::string> words;
    for (const auto& word : completions) words.push_back(platform::narrow(word));
    auto line = reader_(platform::narrow(platform::printable(prompt)), words);
    atLineStart_ = true;  // the line's end was typed
    if (line) {
      endsInRow_ = 0;
      return platform::widen(*line);
    }
    constexpr int patience = 4;
    ended_ = !person_ || ++endsInRow_ >= patience;
  }
  return std::nullopt;
}

// Esc as a line: the word, or the key's own character.
static bool isEscape(u16string_view line) {
  line = trimmed(line);
  return line == u"<esc>" || line == u"\x1B";
}

// --- messages, files, prompts
// ------------------------------------------------------------------------

// Breaks at blanks so that no line is longer than `width`; keeps the text's own line ends.
static std::vector<u16string> wrapped(u16string_view text, std::size_t width) {
  std::vector<u16string> lines;
  for (std::size_t at = 0; at <= text.size();) {
    std::size_t end = std::min(text.find(u'\n', at), text.size());
    u16string_view line = text.substr(at, end - at);
    while (line.size() > width) {
      std::size_t cut = line.rfind(u' ', width);
      if (cut == line.npos || cut == 0) cut = width;
      lines.emplace_back(line.substr(0, cut));
      line = trimmed(line.substr(cut));
    }
    lines.emplace_back(line);
    at = end + 1;
  }
  return lines;
}

void TerminalFrontend::writeWrapped(u16string_view text) {
  while (text.ends_with(u'\n')) text.remove_suffix(1);
  for (const auto& line : wrapped(text, static_cast<std::size_t>(width()))) write(line + u'\n');
}

Pressed TerminalFrontend::showMessage(const Message& message) {
  freshLine();
  u16string mark = message.icon == Icon::stop       ? u"(X) "
                   : message.icon == Icon::warning  ? u"(!) "
                   : message.icon == Icon::question ? u"(?) "
                                                    : u"";
  auto lines = wrapped(mark + message.text, static_cast<std::size_t>(width() - 4));
  std::size_t inner = message.title.size() + 2;
  for (const auto& line : lines) inner = std::max(inner, line.size());
  auto bar = [](std::size_t n) { return u16string(n, u'─'); };
  u16string box = u"┌─ " + message.title + u" " + bar(inner - message.title.size() - 1) + u"┐\n";
  if (message.title.empty()) box = u"┌" + bar(inner + 2) + u"┐\n";
  for (const auto& line : lines)
    box += u"│ " + line + u16string(inner - line.size(), u' ') + u" │\n";
  write(box + u"└" + bar(inner + 2) + u"┘\n");

  std::vector<u16string> words;
  u16string prompt;
  for (Pressed answer : answersOf(message.buttons)) {
    words.emplace_back(wordOf(answer));
    prompt += (prompt.empty() ? u"[" : u"/") + words.back();
  }
  prompt += u"] ";
  for (;;) {
    auto line = read(prompt, words);
    if (!line || isEscape(*line)) return escapeAnswer(message.buttons);
    u16string_view said = trimmed(*line);
    if (said.empty() || message.buttons == Buttons::ok) return defaultAnswer(message.buttons);
    // A beginning is enough; "s" and "si" mean "sì".
    if (platform::isItalian() && platform::equalNoCase(said, u"si")) said = u"s";
    for (Pressed answer : answersOf(message.buttons))
      if (platform::equalNoCase(wordOf(answer).substr(0, said.size()), said)) return answer;
  }
}

std::optional<u16string> TerminalFrontend::showFileQuestion(const FileQuestion& question) {
  for (;;) {
    auto path = readPath(question);
    if (!path || question.mode == FileQuestion::Mode::open ||
        !platform::fileExists(platform::nativePath(*path))) {
      return path;
    }
    const Message replace{u"",
                          format(platform::words(u"Il file %s esiste già. Sostituirlo?"), *path),
                          Icon::question, Buttons::yesNo};
    if (showMessage(replace) == Pressed::yes) return path;
  }
}

std::optional<u16string> TerminalFrontend::readPath(const FileQuestion& question) {
  freshLine();
  u16string prompt = !question.title.empty() ? question.title
                     : question.mode == FileQuestion::Mode::save
                         ? platform::words(u"Salva nel file")
                         : platform::words(u"File da aprire");
  auto filters = filtersOf(question.filter);
  if (!filters.empty()) prompt += u" (" + filters.front().pattern + u")";
  bool proposed = !question.name.empty() && question.name.find(u'*') == u16string::npos;
  if (proposed) prompt += u" <" + question.name + u">";
  asksFile_ = true;
  auto line = read(prompt + u": ", {});
  asksFile_ = false;
  if (!line || isEscape(*line)) return std::nullopt;
  u16string_view path = trimmed(*line);
  if (!path.empty()) return u16string(path);
  if (proposed) return question.name;
  return std::nullopt;
}

Answer TerminalFrontend::showPrompt(const Prompt& prompt) {
  // What stands before the last line end is output; the rest stands in front of the cursor.
  u16string_view text = prompt.text;
  std::size_t end = text.rfind(u'\n');
  if (end != text.npos) {
    freshLine();
    u16string_view before = text.substr(0, end);
    while (before.starts_with(u'\n')) before.remove_prefix(1);
    if (!before.empty()) write(u16string(before) + u'\n');
    text = text.substr(end + 1);
  }
  auto line = read(text, prompt.keywords);
  if (!line) return {Answer::Status::end, {}};
  if (isEscape(*line)) return {Answer::Status::cancel, {}};
  u16string_view said = prompt.allowBlanks ? u16string_view(*line) : trimmed(*line);
  if (said.empty() || isEnterSign(said)) return {Answer::Status::none, {}};
  return {Answer::Status::ok, u16string(said)};
}

void TerminalFrontend::showInvalid(u16string_view reason) {
  freshLine();
  write(u"  " + u16string(reason) + u'\n');
}

// --- dialogs
// -----------------------------------------------------------------------------------------

namespace {

// Notes what has changed since the last look.
class Watcher final : public DialogView {
 public:
  explicit Watcher(Dialog& dialog) : dialog_(dialog) { dialog_.setView(this); }
  ~Watcher() override { dialog_.setView(nullptr); }
  void controlChanged(Control& control) override {
    if (std::find(changed.begin(), changed.end(), &control) == changed.end())
      changed.push_back(&control);
  }
  void titleChanged() override { all = true; }
  void focusMoved(Control* control) override {
    if (control != nullptr) controlChanged(*control);
  }
  void dialogEnded() override {}

  std::vector<Control*> changed;
  bool all = false;

 private:
  Dialog& dialog_;
};

}  // namespace

void TerminalFrontend::showDialog(Dialog& dialog) {
  TerminalCard card(dialog, width());
  Watcher watcher(dialog);
  freshLine();
  write(card.draw());
  if (shown_++ == 0) writeWrapped(firstHelp());
  while (!dialog.ended()) {
    watcher.changed.clear();
    watcher.all = false;
    auto line = read(plainName(dialog.title()) + u"> ", dialog.names());
    if (!line) {
      dialog.end(Outcome::cancel);
      break;
    }
    u16string_view said = trimmed(*line);
    if (said == u"?") {
      write(card.draw());
      writeWrapped(helpOf(card, dialog));
      continue;
    }
    if (said.empty()) said = u"<invio>";
    if (isEscape(said)) said = u"<esc>";
    card.setWidth(width());
    int shownBefore = shown_;
    perform(dialog, card, u16string(said));
    if (dialog.ended()) break;
    constexpr std::size_t few = 6;
    if (watcher.all || watcher.changed.size() > few || shown_ != shownBefore) {
      write(card.draw());
      continue;
    }
    for (Control* control : dialog.controls())
      if (std::find(watcher.changed.begin(), watcher.changed.end(), control) !=
              watcher.changed.end() &&
          dynamic_cast<Button*>(control) == nullptr)
        write(card.draw(*control));
  }
}

// "4 ?" and "Quota ?" ask what a control is; a check of an empty control, which scripts write so,
// is of no use to somebody who sees it.
bool TerminalFrontend::answersHelp(Dialog& dialog, const TerminalCard& card, u16string_view line) {
  if (!line.ends_with(u'?')) return false;
  line = trimmed(line.substr(0, line.size() - 1));
  const auto number = platform::parseInteger(line);
  Control* control = number ? card.numbered(static_cast<int>(*number)) : nullptr;
  if (control == nullptr && !line.empty()) {
    const auto named = dialog.find(line);
    if (named) control = *named;
  }
  if (control == nullptr) return false;
  freshLine();
  writeWrapped(helpOf(card, *control));
  return true;
}

// Numbers become names; then the line is a gesture line. Complaints go to the user.
void TerminalFrontend::perform(Dialog& dialog, TerminalCard& card, u16string line) {
  if (answersHelp(dialog, card, line)) return;
  std::size_t digits = 0;
  while (digits < line.size() && line[digits] >= u'0' && line[digits] <= u'9') ++digits;
  if (digits > 0 && digits < 4) {
    u16string_view rest = trimmed(u16string_view(line).substr(digits));
    bool apart = digits == line.size() ||
                 u16string_view(u" [=+-").find(line[digits]) != u16string_view::npos;
    Control* control = apart ? card.numbered(platform::wtoi(line.substr(0, digits))) : nullptr;
    if (control != nullptr) {
      if (rest == u"+" || rest == u"-") {
        card.turn(*control, rest == u"+" ? 1 : -1);
        write(card.draw(*control));
        return;
      }
      if (rest.empty() && dynamic_cast<Button*>(control) == nullptr &&
          dynamic_cast<Check*>(control) == nullptr)
        return explain(dialog, *control);
      bool asIs = rest.empty() || rest.front() == u'[';
      if (rest.starts_with(u'=')) rest = trimmed(rest.substr(1));
      line = dialog.nameOf(*control) + (asIs ? u"" : u" = ") + u16string(rest);
    }
  } else if (auto named = dialog.find(line); named && dynamic_cast<Button*>(*named) == nullptr &&
                                             dynamic_cast<Check*>(*named) == nullptr) {
    return explain(dialog, **named);
  }
  // Pages of help may be missing where a terminal is; what the dialog takes can always be told.
  const auto pressed = dialog.find(line);
  const auto* button = pressed ? dynamic_cast<Button*>(*pressed) : nullptr;
  if (button != nullptr && button->role() == Role::help) {
    writeWrapped(helpOf(card, dialog));
  }
  const bool wantsOut = !pressed && (platform::equalNoCase(line, u"annulla") ||
                                     platform::equalNoCase(line, wordOf(Pressed::cancel)));
  if (auto done = performLine(dialog, wantsOut ? u"<esc>" : u16string_view(line)); !done)
    showInvalid(platform::widen(done.error()));
}

// A control named without a value: what can be put there.
void TerminalFrontend::explain(Dialog& dialog, Control& control) {
  freshLine();
  if (auto* list = dynamic_cast<Choice*>(&control)) {
    u16string out;
    for (int i = 0; i < list->count(); ++i)
      out += format(u"  #%-3d %s", i + 1, list->item(i)) + u'\n';
    write(out.empty() ? platform::words(u"  L'elenco è vuoto.\n") : out);
    return;
  }
  TerminalCard card(dialog, width());
  write(card.draw(control));
}

}  // namespace cad::ui
