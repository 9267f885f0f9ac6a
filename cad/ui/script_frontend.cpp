#include "cad/ui/script_frontend.h"

#include "cad/ui/dialog.h"
#include "cad/ui/gesture_line.h"
#include "cad/ui/names.h"
#include "platform/format.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad::ui {

using platform::format;
using platform::words;
using std::u16string;
using std::u16string_view;

// --- kinds of lines ------------------------------------------------------------------------------

static bool isTitle(u16string_view line) { return line.starts_with(u'[') && line.ends_with(u']'); }
static bool isMessage(u16string_view line) { return line.starts_with(u'!'); }
static bool isFile(u16string_view line) { return line.starts_with(u'@'); }
static bool isPrinted(u16string_view line) { return line.starts_with(u':'); }
static bool isPlain(u16string_view line) {
  return !isTitle(line) && !isMessage(line) && !isFile(line) && !isPrinted(line);
}

// What a line waits for, to be said when something else came.
static u16string awaited(u16string_view line) {
  if (isTitle(line)) return format(words(u"lo script attende il dialogo %s"), line);
  if (isMessage(line)) return format(words(u"lo script attende il messaggio: %s"), line);
  if (isFile(line)) return format(words(u"lo script attende la scelta di un file: %s"), line);
  return format(words(u"lo script risponde: %s"), line);
}

// What was awaited, and what stands there.
static u16string misfit(u16string_view line, u16string_view standing) {
  return format(words(u"%s, ma %s"), awaited(line), standing);
}

static u16string said(u16string_view text) { return u'"' + oneLine(trimmed(text)) + u'"'; }

std::string languageOfScript(std::string_view script) {
  const u16string text = platform::decodeBytes(script);
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = std::min(text.find(u'\n', at), text.size());
    u16string_view line = trimmed(u16string_view(text).substr(at, end - at));
    at = end + 1;
    if (line.empty()) continue;
    if (!line.starts_with(u'#')) break;
    line = trimmed(line.substr(1));
    for (u16string_view word : {u"lingua:", u"language:"})
      if (sameName(line.substr(0, word.size()), word))
        return platform::narrow(trimmed(line.substr(word.size())));
  }
  return {};
}

ScriptFrontend::ScriptFrontend(std::string_view script, std::string name, Output output)
    : name_(std::move(name)), output_(std::move(output)) {
  u16string text = platform::decodeBytes(script);
  int number = 0;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = std::min(text.find(u'\n', at), text.size());
    u16string_view line = trimmed(u16string_view(text).substr(at, end - at));
    ++number;
    at = end + 1;
    if (line.empty() || line.starts_with(u'#')) continue;
    lines_.push_back({number, u16string(line)});
    if (isPrinted(line)) ++checks_;
  }
}

// --- failing and unwinding -----------------------------------------------------------------------

void ScriptFrontend::fail(int line, u16string_view reason) {
  if (failed()) return;
  error_ = name_ + ":" + std::to_string(line) + ": " + platform::narrow(reason);
}

const ScriptFrontend::Line* ScriptFrontend::take(bool (*wanted)(u16string_view),
                                                 u16string_view standing) {
  checkPrinted(standing);
  if (failed()) return nullptr;
  const Line* line = peek();
  if (line == nullptr) {
    fail(lines_.empty() ? 1 : lines_.back().number,
         format(words(u"lo script è finito, ma %s"), standing));
    return nullptr;
  }
  if (!wanted(line->text)) {
    fail(line->number, misfit(line->text, standing));
    return nullptr;
  }
  ++next_;
  return line;
}

void ScriptFrontend::note(u16string_view text) {
  if (checks_ > 0) printed_ += text;
}

void ScriptFrontend::checkPrinted(u16string_view standing) {
  for (const Line* line = peek(); line != nullptr && isPrinted(line->text) && !failed();
       line = peek()) {
    auto text = unquoted(u16string_view(line->text).substr(1));
    std::size_t at = text ? printed_.find(*text) : u16string::npos;
    if (at == u16string::npos) {
      fail(line->number, format(words(u"non è stato scritto %s; è stato scritto %s e %s"),
                                said(text.value_or(line->text)), said(printed_), standing));
      return;
    }
    printed_.erase(0, at + text->size());
    ++next_;
    --checks_;
  }
}

bool ScriptFrontend::hasAnswer() const {
  for (std::size_t i = next_; i < lines_.size(); ++i)
    if (!isPrinted(lines_[i].text)) return !failed();
  return false;
}

platform::Result<void> ScriptFrontend::finish() {
  checkPrinted(words(u"il comando è finito"));
  if (const Line* line = peek(); line != nullptr)
    fail(line->number, misfit(line->text, words(u"il comando è finito")));
  if (failed()) return platform::Error{error_};
  return {};
}

// --- what is asked -------------------------------------------------------------------------------

void ScriptFrontend::print(u16string_view text) {
  note(text);
  if (output_) output_(text);
}

void ScriptFrontend::help(u16string_view topic) { note(format(words(u"\nguida: %s\n"), topic)); }

Gesture ScriptFrontend::perform(Dialog& dialog, u16string_view line) {
  return performLine(dialog, line);
}

void ScriptFrontend::showDialog(Dialog& dialog) {
  u16string standing = format(words(u"è aperto il dialogo [%s]"), plainName(dialog.title()));
  auto isThis = [&](u16string_view line) {
    u16string_view title = line.substr(1, line.size() - 2);
    return sameName(title, dialog.title()) || sameName(title, dialog.declaredTitle());
  };
  if (!failed())
    if (const Line* line = take(isTitle, standing); line != nullptr && !isThis(line->text))
      fail(line->number, misfit(line->text, standing));
  while (!dialog.ended() && !failed()) {
    checkPrinted(standing);
    const Line* line = peek();
    if (line != nullptr && isTitle(line->text) && isThis(line->text)) {
      ++next_;  // back from a nested dialog or message: says again where we are
      continue;
    }
    if (line == nullptr)
      standing = format(words(u"%s, che ha %s"), standing, enumerated(dialog.names()));
    line = take(isPlain, standing);
    if (line == nullptr) break;
    if (auto done = perform(dialog, line->text); !done)
      fail(line->number, u"[" + plainName(dialog.title()) + u"] " + line->text + u": " +
                             platform::widen(done.error()));
  }
  if (!dialog.ended()) dialog.end(Outcome::cancel);
}

namespace {
struct Expected {
  std::optional<u16string> title;
  u16string text;
  bool part = false;  // "!~": the text is a part of the message
  std::optional<Pressed> button;
};
}  // namespace

// "! text -> button", "!~ part", "![title] text". An arrow is one only before a button of this box.
static Expected readMessage(u16string_view line, Buttons buttons) {
  Expected e;
  line.remove_prefix(1);
  if (line.starts_with(u'~')) {
    e.part = true;
    line.remove_prefix(1);
  }
  if (std::size_t end = line.find(u']'); line.starts_with(u'[') && end != line.npos) {
    e.title = line.substr(1, end - 1);
    line.remove_prefix(end + 1);
  }
  if (std::size_t arrow = line.rfind(u"->"); arrow != line.npos)
    for (Pressed answer : answersOf(buttons))
      if (isWordOf(answer, line.substr(arrow + 2))) {
        e.button = answer;
        line = line.substr(0, arrow);
        break;
      }
  e.text = trimmed(line);
  return e;
}

Pressed ScriptFrontend::showMessage(const Message& message) {
  if (failed()) return defaultAnswer(message.buttons);
  u16string standing = format(words(u"è comparso il messaggio %s"), said(message.text));
  const Line* line = take(isMessage, standing);
  if (line == nullptr) return defaultAnswer(message.buttons);
  Expected e = readMessage(line->text, message.buttons);
  u16string text = oneLine(message.text);
  u16string_view plain = trimmed(text);
  bool fits = e.part ? plain.find(e.text) != plain.npos : plain == e.text || text == e.text;
  if (!fits) {
    fail(line->number, misfit(line->text, standing));
  } else if (e.title && !sameName(*e.title, message.title)) {
    fail(line->number, misfit(line->text, format(words(u"il titolo è %s"), said(message.title))));
  } else if (!e.button && message.buttons != Buttons::ok) {
    std::vector<u16string> buttons;
    for (Pressed answer : answersOf(message.buttons)) buttons.emplace_back(wordOf(answer));
    fail(line->number,
         format(words(u"al messaggio %s serve una risposta (\" -> \" e il pulsante): %s"),
                said(message.text), enumerated(buttons)));
  }
  if (failed()) return defaultAnswer(message.buttons);
  return e.button.value_or(defaultAnswer(message.buttons));
}

std::optional<u16string> ScriptFrontend::showFileQuestion(const FileQuestion& question) {
  if (failed()) return std::nullopt;
  u16string standing = question.mode == FileQuestion::Mode::save
                           ? words(u"è chiesto in quale file salvare")
                           : words(u"è chiesto quale file aprire");
  if (!question.filter.empty()) standing += u" (" + question.filter + u")";
  const Line* line = take(isFile, standing);
  if (line == nullptr) return std::nullopt;
  u16string_view rest = trimmed(u16string_view(line->text).substr(1));
  if (rest == u"<esc>") return std::nullopt;
  auto path = isEnterSign(rest) ? question.name : unquoted(rest);
  if (path && !path->empty()) return path;
  fail(line->number, format(words(u"manca il percorso del file, e %s"), standing));
  return std::nullopt;
}

Answer ScriptFrontend::showPrompt(const Prompt& prompt) {
  note(prompt.text);
  if (failed()) return {Answer::Status::cancel, {}};
  const Line* line = take(isPlain, format(words(u"è chiesto %s"), said(prompt.text)));
  if (line == nullptr) return {Answer::Status::cancel, {}};
  lastAnswer_ = line->number;
  if (isEnterSign(line->text)) return {Answer::Status::none, {}};
  if (line->text == u"<esc>") return {Answer::Status::cancel, {}};
  auto text = unquoted(line->text);
  if (text) return {Answer::Status::ok, *text};
  fail(line->number, words(u"manca la virgoletta finale"));
  return {Answer::Status::cancel, {}};
}

void ScriptFrontend::showInvalid(u16string_view reason) {
  fail(lastAnswer_, format(words(u"la risposta non è valida: %s"), reason));
}

}  // namespace cad::ui
