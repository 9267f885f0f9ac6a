// The host's own commands: one table.
#include "cad/editor/commands.h"

#include "cad/editor/host_commands.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad {
namespace {

using namespace host;

enum Mark { kOwn = 0, kNone = Command::outsideUndo };  // which undo mark a command keeps

struct HostCommand {
  std::u16string_view globalName, localName;
  Mark mark;
  void (*function)();
  std::u16string_view help;
};

constexpr HostCommand kCommands[] = {
    {u"NEW", u"NUOVO", kNone, commandNew, u"un disegno nuovo"},
    {u"OPEN", u"APRI", kNone, commandOpen, u"apre un disegno DXF"},
    {u"SAVE", u"SALVA", kNone, commandSave, u"salva il disegno"},
    {u"SAVEAS", u"SALVACON", kNone, commandSaveAs, u"salva con un altro nome"},
    {u"UNDO", u"ANNULLA", kNone, commandUndo, u"annulla l'ultimo comando"},
    {u"U", u"U", kNone, commandUndo, u"come ANNULLA"},
    {u"REDO", u"RIPRISTINA", kNone, commandRedo, u"ripristina il comando annullato"},
    {u"ERASE", u"CANCELLA", kOwn, commandErase, u"cancella oggetti"},
    {u"MOVE", u"SPOSTA", kOwn, commandMove, u"sposta oggetti"},
    {u"COPY", u"COPIA", kOwn, commandCopy, u"copia oggetti"},
    {u"SCALE", u"SCALA", kOwn, commandScale, u"ingrandisce o riduce oggetti"},
    {u"ROTATE", u"RUOTA", kOwn, commandRotate, u"ruota oggetti"},
    {u"DIST", u"MISURA", kOwn, commandDistance, u"misura una distanza"},
    {u"LIST", u"LISTA", kOwn, commandList, u"dati degli oggetti scelti"},
    {u"LISTDATA", u"LISTADATI", kOwn, commandListData, u"come LISTA, con i codici dei dati"},
    {u"LAYER", u"LAYER", kOwn, commandLayer, u"congela, spegne, colora i layer"},
    {u"ZOOM", u"ZOOM", kOwn, commandZoom, u"inquadra una finestra o tutto"},
    {u"REGENALL", u"RIGENTUTTO", kOwn, commandRegenAll, u"ridisegna"},
    {u"LOADMODULE", u"CARICAMODULO", kNone, commandLoadModule, u"carica un modulo"},
    {u"UNLOADMODULE", u"SCARICAMODULO", kNone, commandUnloadModule, u"scarica un modulo"},
    {u"SETVAR", u"SETVAR", kOwn, commandSetVar, u"mostra o cambia una variabile"},
    {u"JOURNAL", u"DIARIO", kNone, commandJournal, u"scrive in un file ciò che si fa, da ripetere"},
    {u"HELP", u"GUIDA", kNone, commandHelp, u"questo elenco"},
    {u"?", u"?", kNone, commandHelp, u"come GUIDA"},
    {u"QUIT", u"ESCI", kNone, commandQuit, u"chiude il programma"},
};

}  // namespace

int host::askKeyword(int bits, std::u16string_view keywords, std::u16string_view text,
                     std::u16string& chosen) {
  const std::u16string both = platform::words(keywords) + u" _ " + std::u16string(keywords);
  acedInitGet(bits, both.c_str());
  return acedGetKword(platform::words(text), chosen);
}

void addHostCommands(Session& session) {
  for (const HostCommand& c : kCommands) {
    session.addCommand({u"HOST", std::u16string(c.globalName), std::u16string(c.localName), c.mark,
                        c.function, std::u16string(c.help)});
  }
}

}  // namespace cad

// A command given as data: its name and the answers it would ask for.
int acedCmd(const resbuf* chain) {
  if (!chain || acutKindOf(chain->restype) != RbKind::text) return RTERROR;
  std::u16string name = platform::upper(chain->resval.rstring);
  while (!name.empty() && (name[0] == u'_' || name[0] == u'.')) name.erase(0, 1);
  if (name == u"ZOOM") return cad::host::zoomWindow(chain->rbnext);
  if (name == u"REGENALL" || name == u"REGEN") return RTNORM;
  return cad::Session::instance().run(name) == cad::RunResult::unknown ? RTERROR : RTNORM;
}
