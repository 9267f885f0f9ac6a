// What the host itself does to a drawing: take back, bring back, erase.
#include "cad/api/owners.h"
#include "cad/editor/host_commands.h"
#include "cad/editor/pick.h"

namespace cad::host {

void commandUndo() {
  if (!haveDrawing()) return;
  const std::u16string name = drawing().undo();
  say(name.empty() ? u"\nNulla da annullare." : u"\nAnnullato: " + name);
}

void commandRedo() {
  if (!haveDrawing()) return;
  const std::u16string name = drawing().redo();
  say(name.empty() ? u"\nNulla da ripristinare." : u"\nRipristinato: " + name);
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
  acutPrintf(u"\n%d oggetti cancellati.", erased);
  if (locked) acutPrintf(u"\n%d oggetti su layer bloccati: non cancellati.", locked);
}

}  // namespace cad::host
