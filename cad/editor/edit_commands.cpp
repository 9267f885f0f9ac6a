// What the host itself does to a drawing: take back, bring back, erase.
#include "cad/api/owners.h"
#include "cad/editor/host_commands.h"
#include "cad/editor/pick.h"
#include "platform/words.h"

namespace cad::host {

namespace {

// The history knows commands by their global names.
std::u16string shownNameOf(const std::u16string& globalName) {
  const auto at = session().commands().find(globalName);
  return at == session().commands().end() ? globalName : host::shownNameOf(at->second);
}

}  // namespace

void commandUndo() {
  if (!haveDrawing()) return;
  const std::u16string name = drawing().undo();
  say(name.empty() ? platform::words(u"\nNulla da annullare.")
                   : platform::format(platform::words(u"\nAnnullato: %s"), shownNameOf(name)));
}

void commandRedo() {
  if (!haveDrawing()) return;
  const std::u16string name = drawing().redo();
  say(name.empty() ? platform::words(u"\nNulla da ripristinare.")
                   : platform::format(platform::words(u"\nRipristinato: %s"), shownNameOf(name)));
}

void commandErase() {
  if (!haveDrawing()) return;
  int erased = 0, locked = 0;
  for (const AcDbObjectId id : SelectionSet(nullptr, nullptr)) {
    if (onLockedLayer(drawing(), id.index())) {
      ++locked;
      continue;
    }
    const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
    if (entity && entity->erase() == Acad::eOk) ++erased;
  }
  acutPrintf(platform::words(u"\n%d oggetto cancellato.", u"\n%d oggetti cancellati.", erased),
             erased);
  if (locked) {
    acutPrintf(platform::words(u"\n%d oggetto su layer bloccati: non cancellato.",
                               u"\n%d oggetti su layer bloccati: non cancellati.", locked),
               locked);
  }
}

}  // namespace cad::host
