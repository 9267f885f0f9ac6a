// The host's own commands.
#include <algorithm>

#include "cad/api/editor.h"
#include "cad/api/table.h"
#include "cad/drawing/block_geometry.h"
#include "cad/drawing/drawing.h"
#include "cad/editor/session.h"
#include "cad/shape/extents.h"
#include "platform/files.h"
#include "platform/text.h"

namespace cad {
namespace {

constexpr int kOutsideUndo = 1;  // the command keeps no undo mark of its own

Session& session() { return Session::instance(); }

void say(std::u16string_view text) { acedPrintText(text); }

bool haveDrawing() {
  if (session().database()) return true;
  say(u"\nNessun disegno aperto.");
  return false;
}

void reportError(const std::string& error) {
  ui::Message m;
  m.title = u"Disegno";
  m.text = platform::widen(error);
  m.icon = ui::Icon::stop;
  session().frontend().messageBox(m);
}

bool mayDiscard() {
  const AcDbDatabase* db = session().database();
  if (!db || !db->drawing().isChanged() || session().drawingPath().empty()) return true;
  ui::Message m;
  m.title = u"Disegno";
  m.text = u"Il disegno è stato modificato. Salvare le modifiche?";
  m.icon = ui::Icon::question;
  m.buttons = ui::Buttons::yesNoCancel;
  const ui::Pressed pressed = session().frontend().messageBox(m);
  if (pressed == ui::Pressed::cancel) return false;
  if (pressed == ui::Pressed::no) return true;
  const auto saved = session().saveDrawing("");
  if (!saved) reportError(saved.error());
  return static_cast<bool>(saved);
}

void commandNew() {
  if (mayDiscard()) session().newDrawing();
}

std::u16string askPath(std::u16string_view prompt, ui::FileQuestion::Mode mode) {
  ui::FileQuestion q;
  q.mode = mode;
  q.title = prompt;
  q.filter = u"Disegni DXF (*.dxf)|*.dxf|Tutti i file (*.*)|*.*|";
  return session().frontend().askFile(q).value_or(u"");
}

void commandOpen() {
  if (!mayDiscard()) return;
  const std::u16string path = askPath(u"Apri disegno", ui::FileQuestion::Mode::open);
  if (path.empty()) return;
  std::vector<std::string> warnings;
  const auto opened = session().openDrawing(platform::nativePath(path), warnings);
  if (!opened) return reportError(opened.error());
  for (const std::string& w : warnings) say(u"\nAttenzione: " + platform::widen(w));
}

void saveTo(const std::string& path) {
  const auto saved = session().saveDrawing(path);
  if (!saved) return reportError(saved.error());
  say(u"\nDisegno salvato: " + platform::widen(session().drawingPath()));
}

void commandSaveAs() {
  if (!haveDrawing()) return;
  const std::u16string path = askPath(u"Salva disegno con nome", ui::FileQuestion::Mode::save);
  if (!path.empty()) saveTo(platform::nativePath(path));
}

void commandSave() {
  if (!haveDrawing()) return;
  if (session().drawingPath().empty()) return commandSaveAs();
  saveTo("");
}

void commandUndo() {
  if (!haveDrawing()) return;
  const std::u16string name = session().database()->drawing().undo();
  say(name.empty() ? u"\nNulla da annullare." : u"\nAnnullato: " + name);
}

void commandRedo() {
  if (!haveDrawing()) return;
  const std::u16string name = session().database()->drawing().redo();
  say(name.empty() ? u"\nNulla da ripristinare." : u"\nRipristinato: " + name);
}

template <class Act>
void forPicked(Act&& act) {
  if (!haveDrawing()) return;
  ads_name set;
  if (acedSSGet(nullptr, nullptr, nullptr, nullptr, set) != RTNORM) return;
  std::int32_t count = 0;
  acedSSLength(set, &count);
  for (std::int32_t i = 0; i < count; ++i) {
    ads_name name;
    AcDbObjectId id;
    acedSSName(set, i, name);
    if (acdbGetObjectId(id, name) == RTNORM) act(id);
  }
  acedSSFree(set);
}

void commandErase() {
  int erased = 0;
  forPicked([&](AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenObject(entity, id, AcDb::kForWrite) != Acad::eOk) return;
    if (entity->erase() == Acad::eOk) ++erased;
    entity->close();
  });
  acutPrintf(u"\n%d oggetti cancellati.", erased);
}

void listChain(const resbuf* chain) {
  for (const resbuf* n = chain; n; n = n->rbnext) {
    const int code = n->restype;
    switch (acutKindOf(code)) {
      case RbKind::text:
        acutPrintf(u"\n    %4d  %s", code, n->resval.rstring);
        break;
      case RbKind::real:
        acutPrintf(u"\n    %4d  %.15g", code, n->resval.rreal);
        break;
      case RbKind::int16:
        acutPrintf(u"\n    %4d  %d", code, static_cast<int>(n->resval.rint));
        break;
      case RbKind::int32:
        acutPrintf(u"\n    %4d  %d", code, n->resval.rlong);
        break;
      case RbKind::point:
        acutPrintf(u"\n    %4d  %.15g,%.15g,%.15g", code, n->resval.rpoint[0], n->resval.rpoint[1],
                   n->resval.rpoint[2]);
        break;
      case RbKind::none:
        break;
    }
  }
}

void listTable(const AcDbTable& table) {
  const AcGePoint3d p = table.position();
  acutPrintf(u"\n  tabella in %.3f,%.3f,%.3f  larga %.3f alta %.3f  testo %.3f", p.x, p.y, p.z,
             table.width(), table.height(), table.textHeight(0, 0));
  for (int row = 0; row < table.numRows(); ++row) {
    std::u16string line;
    for (int column = 0; column < table.numColumns(); ++column) {
      if (column > 0) line += u" | ";
      line += table.textString(row, column);
    }
    acutPrintf(u"\n  %s", line);
  }
}

void listEntity(AcDbObjectId id) {
  AcDbEntity* entity = nullptr;
  if (acdbOpenObject(entity, id) != Acad::eOk) return;
  acutPrintf(u"\n%s  handle %s  layer \"%s\"  colore %s", entity->dxfName(),
             platform::format(u"%x", static_cast<std::int64_t>(entity->handle())), entity->layer(),
             entity->colorIndex() == 256 ? std::u16string(u"dal layer")
                                         : platform::format(u"%d", entity->colorIndex()));
  if (entity->isKindOf(AcDbBlockReference::desc())) {
    auto* block = static_cast<AcDbBlockReference*>(entity);
    const AcGePoint3d p = block->position();
    acutPrintf(u"\n  blocco \"%s\" in %.3f,%.3f,%.3f", block->blockName(), p.x, p.y, p.z);
    AcDbObjectIterator* it = block->attributeIterator();
    for (; !it->done(); it->step()) {
      AcDbAttribute* a = nullptr;
      if (block->openAttribute(a, it->objectId()) != Acad::eOk) continue;
      acutPrintf(u"\n  %s = %s", a->tag(), a->textString());
      a->close();
    }
    delete it;
  } else if (entity->isKindOf(AcDb3dPolyline::desc())) {
    for (const AcGePoint3d& p :
         vertexPositions(session().database()->drawing(), entity->objectId().index())) {
      acutPrintf(u"\n  vertice %.3f,%.3f,%.3f", p.x, p.y, p.z);
    }
  } else if (entity->isKindOf(AcDbPolyline::desc())) {
    for (const AcDbPolyline::Vertex& v : static_cast<AcDbPolyline*>(entity)->vertices()) {
      acutPrintf(u"\n  vertice %.3f,%.3f", v.point.x, v.point.y);
    }
  } else if (entity->isKindOf(AcDbLine::desc())) {
    const auto* line = static_cast<AcDbLine*>(entity);
    const AcGePoint3d a = line->startPoint(), b = line->endPoint();
    acutPrintf(u"\n  da %.3f,%.3f,%.3f a %.3f,%.3f,%.3f  linea %s", a.x, a.y, a.z, b.x, b.y, b.z,
               line->linetype());
  } else if (entity->isKindOf(AcDbText::desc())) {
    const auto* text = static_cast<AcDbText*>(entity);
    const AcGePoint3d p = text->position();
    acutPrintf(u"\n  \"%s\" in %.3f,%.3f,%.3f  altezza %.3f", text->textString(), p.x, p.y, p.z,
               text->height());
  } else if (entity->isKindOf(AcDbTable::desc())) {
    listTable(*static_cast<AcDbTable*>(entity));
  }
  resbuf* data = entity->xData();
  listChain(data);
  acutRelRb(data);
  entity->close();
}

void commandList() { forPicked(listEntity); }

// Layers by name: freeze, thaw, switch, colour, make, set current.
void commandLayer() {
  if (!haveDrawing()) return;
  acedInitGet(1, u"Congela Scongela Disattiva Attiva Colore Nuovo Imposta Elenco");
  std::u16string option, name;
  if (acedGetKword(u"\nOpzione [Congela/Scongela/Disattiva/Attiva/Colore/Nuovo/Imposta/Elenco]: ",
                   option) != RTNORM) {
    return;
  }
  Drawing& d = session().database()->drawing();
  if (option == u"Elenco") {
    const std::uint32_t table = d.structure().tableRecord(Type::layer);
    for (std::uint32_t e = d.structure().firstTableEntry(table); e;
         e = d.structure().nextTableEntry(table, e)) {
      AcDbLayerTableRecord* l = nullptr;
      if (acdbOpenObject(l, d.idOf(e)) != Acad::eOk) continue;
      acutPrintf(u"\n%s  colore %d%s%s", l->getName(), l->colorIndex(),
                 l->isFrozen() ? u"  congelato" : u"", l->isOff() ? u"  spento" : u"");
      l->close();
    }
    return;
  }
  if (acedGetString(true, u"\nNome del layer: ", name) != RTNORM || name.empty()) return;
  const AcDbObjectId id = d.idOf(d.structure().layerNamed(name, option == u"Nuovo"));
  AcDbLayerTableRecord* layer = nullptr;
  if (acdbOpenObject(layer, id, AcDb::kForWrite) != Acad::eOk) {
    acutPrintf(u"\nIl layer \"%s\" non esiste.", name);
    return;
  }
  if (option == u"Congela") layer->setIsFrozen(true);
  if (option == u"Scongela") layer->setIsFrozen(false);
  if (option == u"Disattiva") layer->setIsOff(true);
  if (option == u"Attiva") layer->setIsOff(false);
  if (option == u"Colore") {
    double color = 0;
    if (acedGetReal(u"\nColore (1-255): ", color) == RTNORM &&
        layer->setColorIndex(static_cast<int>(color)) != Acad::eOk) {
      say(u"\nIl colore è un numero da 1 a 255.");
    }
  }
  layer->close();
  if (option == u"Imposta") d.header().setText("$CLAYER", name);
}

void zoomExtents() {
  AcDbExtents box;
  const Drawing& d = session().database()->drawing();
  for (const std::uint32_t e : d.index().allInSpace()) {
    if (!d.record(e).is(Record::paper)) box.addExt(extentsOf(d, e));
  }
  session().view.set = !box.isEmpty();
  session().view.low = box.minPoint();
  session().view.high = box.maxPoint();
}

void commandZoom() {
  if (!haveDrawing()) return;
  acedInitGet(0, u"Estensioni Finestra");
  std::u16string option;
  const int answer = acedGetKword(u"\nZoom [Estensioni/Finestra] <Estensioni>: ", option);
  if (answer == RTCAN) return;
  if (option != u"Finestra") return zoomExtents();
  AcGePoint3d a, b;
  if (acedGetPoint(nullptr, u"\nPrimo angolo: ", a) != RTNORM) return;
  if (acedGetPoint(&a, u"\nAngolo opposto: ", b) != RTNORM) return;
  session().view = {true,
                    {std::min(a.x, b.x), std::min(a.y, b.y), 0},
                    {std::max(a.x, b.x), std::max(a.y, b.y), 0}};
}

void commandRegenAll() {}

void commandQuit() {
  if (mayDiscard()) session().requestQuit();
}

void commandHelp() {
  say(u"\nComandi:");
  std::u16string last;
  for (const auto& [key, c] : session().commands()) {
    if (platform::upper(c.globalName) != key && c.group == u"HOST") continue;
    acutPrintf(u"\n  %-12s %s", platform::upper(c.localName), c.help);
  }
}

}  // namespace

void Session::registerHostCommands() {
  const auto add = [&](std::u16string_view global, std::u16string_view local, int flags,
                       void (*function)(), std::u16string_view help) {
    addCommand({u"HOST", std::u16string(global), std::u16string(local), flags, function,
                std::u16string(help)});
  };
  add(u"NEW", u"NUOVO", kOutsideUndo, commandNew, u"un disegno nuovo");
  add(u"OPEN", u"APRI", kOutsideUndo, commandOpen, u"apre un disegno DXF");
  add(u"SAVE", u"SALVA", kOutsideUndo, commandSave, u"salva il disegno");
  add(u"SAVEAS", u"SALVACON", kOutsideUndo, commandSaveAs, u"salva con un altro nome");
  add(u"UNDO", u"ANNULLA", kOutsideUndo, commandUndo, u"annulla l'ultimo comando");
  add(u"U", u"U", kOutsideUndo, commandUndo, u"come ANNULLA");
  add(u"REDO", u"RIPRISTINA", kOutsideUndo, commandRedo, u"ripristina il comando annullato");
  add(u"ERASE", u"CANCELLA", 0, commandErase, u"cancella oggetti");
  add(u"LIST", u"LISTA", 0, commandList, u"dati degli oggetti scelti");
  add(u"LAYER", u"LAYER", 0, commandLayer, u"congela, spegne, colora i layer");
  add(u"ZOOM", u"ZOOM", 0, commandZoom, u"inquadra una finestra o tutto");
  add(u"REGENALL", u"RIGENTUTTO", 0, commandRegenAll, u"ridisegna");
  add(u"HELP", u"GUIDA", kOutsideUndo, commandHelp, u"questo elenco");
  add(u"?", u"?", kOutsideUndo, commandHelp, u"come GUIDA");
  add(u"QUIT", u"ESCI", kOutsideUndo, commandQuit, u"chiude il programma");
}

}  // namespace cad

// A command given as data: its name and the answers it would ask for.
int acedCmd(const resbuf* chain) {
  if (!chain || acutKindOf(chain->restype) != RbKind::text) return RTERROR;
  cad::Session& s = cad::Session::instance();
  std::u16string name = platform::upper(chain->resval.rstring);
  while (!name.empty() && (name[0] == u'_' || name[0] == u'.')) name.erase(0, 1);
  if (name == u"ZOOM") {
    const resbuf* option = chain->rbnext;
    const resbuf* a = option ? option->rbnext : nullptr;
    const resbuf* b = a ? a->rbnext : nullptr;
    if (!b || acutKindOf(a->restype) != RbKind::point || acutKindOf(b->restype) != RbKind::point) {
      return RTERROR;
    }
    const double* p = a->resval.rpoint;
    const double* q = b->resval.rpoint;
    s.view = {true,
              {std::min(p[0], q[0]), std::min(p[1], q[1]), 0},
              {std::max(p[0], q[0]), std::max(p[1], q[1]), 0}};
    return RTNORM;
  }
  if (name == u"REGENALL" || name == u"REGEN") return RTNORM;
  return s.run(name) == cad::RunResult::unknown ? RTERROR : RTNORM;
}
