// The session's journal: what is asked and answered, written line by line into a file.
#include <fstream>

#include "cad/editor/session.h"
#include "cad/ui/journal.h"
#include "platform/files.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad {

// Each line is in the file when the next one begins: a journal is of most use when the work ended
// badly.
struct Session::JournalFile {
  explicit JournalFile(const std::string& where)
      : path(where), out(where, std::ios::binary | std::ios::trunc) {}
  std::string path;
  std::ofstream out;
  ui::Journal journal{[this](std::u16string_view line) {
    out << platform::narrow(line) << '\n';
    out.flush();
  }};
};

Session::Session() = default;
Session::~Session() = default;

platform::Result<void> Session::beginJournal(const std::string& path) {
  auto file = std::make_unique<JournalFile>(platform::absolutePath(path));
  // What is compared when it is played again is what is shown now.
  file->out << (platform::isItalian() ? "# lingua: it\n"
                                      : "# language: " + platform::language() + "\n");
  file->out.flush();
  if (!file->out) return platform::Error{path + platform::words(": il diario non si può scrivere")};
  journal_ = std::move(file);
  frontend().setJournal(&journal_->journal);
  return {};
}

platform::Result<void> Session::endJournal() {
  if (!journal_) return {};
  frontend().setJournal(nullptr);
  journal_->journal.retract();  // the command that ends it
  journal_->journal.flush();
  const bool whole = static_cast<bool>(journal_->out);
  const std::string path = journal_->path;
  journal_.reset();
  if (whole) return {};
  return platform::Error{path + platform::words(": il diario non si può scrivere")};
}

std::string Session::journalPath() const { return journal_ ? journal_->path : std::string(); }

void Session::setFrontend(ui::Frontend* frontend) {
  if (journal_) {
    frontend_->setJournal(nullptr);
    journal_.reset();
  }
  frontend_ = frontend;
}

}  // namespace cad
