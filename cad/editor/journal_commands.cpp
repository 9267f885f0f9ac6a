// A journal of the work, as a script that repeats it.
#include "cad/editor/host_commands.h"
#include "platform/format.h"
#include "platform/text.h"

namespace cad::host {

void commandJournal() {
  if (!session().journalPath().empty()) {
    const std::string path = session().journalPath();
    const auto ended = session().endJournal();
    if (!ended) return reportError(ended.error());
    return acutPrintf(platform::words(u"\nDiario chiuso: %s"), platform::widen(path));
  }
  ui::FileQuestion question;
  question.mode = ui::FileQuestion::Mode::save;
  question.title = platform::words(u"File del diario");
  question.name = platform::words(u"diario.script");
  const auto path = session().frontend().askFile(question);
  if (!path || path->empty()) return;
  const auto begun = session().beginJournal(platform::nativePath(*path));
  if (!begun) return reportError(begun.error());
  acutPrintf(platform::words(u"\nDiario in %s; DIARIO ancora lo chiude."), *path);
}

}  // namespace cad::host
