#include "cad/ui/frontend.h"

#include "cad/ui/dialog.h"
#include "cad/ui/journal.h"
#include "cad/ui/names.h"
#include "platform/format.h"
#include "platform/words.h"

namespace cad::ui {

const std::vector<Pressed>& answersOf(Buttons buttons) {
  static const std::vector<Pressed> ok{Pressed::ok}, okCancel{Pressed::ok, Pressed::cancel},
      yesNo{Pressed::yes, Pressed::no}, yesNoCancel{Pressed::yes, Pressed::no, Pressed::cancel};
  switch (buttons) {
    case Buttons::ok:
      return ok;
    case Buttons::okCancel:
      return okCancel;
    case Buttons::yesNo:
      return yesNo;
    case Buttons::yesNoCancel:
      break;
  }
  return yesNoCancel;
}

static std::u16string_view italianWordOf(Pressed button) {
  switch (button) {
    case Pressed::ok:
      return u"OK";
    case Pressed::cancel:
      return u"Annulla";
    case Pressed::yes:
      return u"Sì";
    case Pressed::no:
      break;
  }
  return u"No";
}

std::u16string wordOf(Pressed button) { return platform::words(italianWordOf(button)); }

bool isWordOf(Pressed button, std::u16string_view word) {
  return sameName(word, italianWordOf(button)) || sameName(word, wordOf(button)) ||
         (button == Pressed::yes && sameName(word, u"Si"));
}

Pressed defaultAnswer(Buttons buttons) { return answersOf(buttons).front(); }

Pressed escapeAnswer(Buttons buttons) { return answersOf(buttons).back(); }

std::vector<FileFilter> filtersOf(std::u16string_view filter) {
  std::vector<FileFilter> all;
  while (!filter.empty()) {
    std::size_t bar = filter.find(u'|');
    if (bar == filter.npos) break;
    std::size_t end = std::min(filter.find(u'|', bar + 1), filter.size());
    all.push_back({std::u16string(filter.substr(0, bar)),
                   std::u16string(filter.substr(bar + 1, end - bar - 1))});
    filter.remove_prefix(std::min(end + 1, filter.size()));
  }
  return all;
}

Frontend::Frontend() = default;
Frontend::~Frontend() = default;

void Frontend::runDialog(Dialog& dialog) {
  if (journal_ != nullptr) journal_->line(u"[" + plainName(dialog.declaredTitle()) + u"]");
  showDialog(dialog);
  leaveWhenEnded();
}

Pressed Frontend::messageBox(const Message& message) {
  Pressed pressed = showMessage(message);
  leaveWhenEnded();
  if (journal_ != nullptr) {
    std::u16string line = u"! " + oneLine(message.text);
    if (message.buttons != Buttons::ok) (line += u" -> ") += wordOf(pressed);
    journal_->line(line);
  }
  return pressed;
}

std::optional<std::u16string> Frontend::askFile(const FileQuestion& question) {
  auto path = showFileQuestion(question);
  leaveWhenEnded();
  if (journal_ != nullptr) journal_->line(u"@ " + (path ? quoted(*path) : u"<esc>"));
  return path;
}

// The text by which a script gives the same answer, as far as one text can.
static std::u16string wordsOf(const Answer& answer) {
  if (!answer.objects.empty()) return platform::format(u"#%llX", answer.objects.front());
  if (!answer.place) return {};
  const Place3d& p = *answer.place;
  return platform::format(u"%.17g,%.17g,%.17g", p.x, p.y, p.z);
}

Answer Frontend::ask(const Prompt& prompt) {
  Answer answer = showPrompt(prompt);
  leaveWhenEnded();
  if (answer.status == Answer::Status::ok && answer.text.empty()) answer.text = wordsOf(answer);
  if (journal_ == nullptr) return answer;
  switch (answer.status) {
    case Answer::Status::ok:
      journal_->line(asAnswer(answer.text), true);
      break;
    case Answer::Status::none:
      journal_->line(u"<invio>", true);
      break;
    case Answer::Status::cancel:
      journal_->line(u"<esc>", true);
      break;
    case Answer::Status::end:
      break;
  }
  return answer;
}

void Frontend::invalid(std::u16string_view reason) {
  if (journal_ != nullptr) journal_->retract();
  showInvalid(reason);
}

void Frontend::help(std::u16string_view topic) {
  print(platform::format(platform::words(u"\nArgomento della guida: %s\n"), topic));
}

void Frontend::setClipboard(std::u16string_view text) { clipboard_ = text; }

std::u16string Frontend::clipboard() { return clipboard_; }

}  // namespace cad::ui
