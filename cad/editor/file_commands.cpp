// Drawings that come and go, and the modules.
#include "cad/editor/host_commands.h"
#include "platform/text.h"

namespace cad::host {
namespace {

ui::Pressed askYesNoCancel(std::u16string_view text) {
  ui::Message m;
  m.title = u"Disegno";
  m.text = text;
  m.icon = ui::Icon::question;
  m.buttons = ui::Buttons::yesNoCancel;
  return session().frontend().messageBox(m);
}

std::u16string askPath(std::u16string_view prompt, std::u16string_view filter,
                       ui::FileQuestion::Mode mode) {
  ui::FileQuestion q;
  q.mode = mode;
  q.title = prompt;
  q.filter = filter;
  return session().frontend().askFile(q).value_or(u"");
}

constexpr std::u16string_view kDrawings = u"Disegni DXF (*.dxf)|*.dxf|Tutti i file (*.*)|*.*|";

bool saveAs();

// Saves, after a question where the file has been changed by others meanwhile.
bool saveTo(const std::string& path) {
  Overwrite overwrite = Overwrite::unlessChanged;
  if (session().changedOnDisk(path)) {
    const ui::Pressed pressed = askYesNoCancel(
        u"Il file " + platform::widen(session().drawingPath()) +
        u" è stato modificato da altri dopo l'apertura. Sovrascriverlo? (No: salva con un altro "
        u"nome)");
    if (pressed == ui::Pressed::cancel) return false;
    if (pressed == ui::Pressed::no) return saveAs();
    overwrite = Overwrite::always;
  }
  const auto saved = session().saveDrawing(path, overwrite);
  if (!saved) {
    reportError(saved.error());
    return false;
  }
  say(u"\nDisegno salvato: " + platform::widen(session().drawingPath()));
  return true;
}

bool saveAs() {
  const std::u16string path =
      askPath(u"Salva disegno con nome", kDrawings, ui::FileQuestion::Mode::save);
  return !path.empty() && saveTo(platform::nativePath(path));
}

bool save() { return session().drawingPath().empty() ? saveAs() : saveTo(""); }

// Whether the drawing may go: it has no changes, they have been saved, or the user lets them go.
bool mayDiscard() {
  if (!session().isModified()) return true;
  const ui::Pressed pressed =
      askYesNoCancel(u"Il disegno è stato modificato. Salvare le modifiche?");
  if (pressed == ui::Pressed::cancel) return false;
  return pressed == ui::Pressed::no || save();
}

}  // namespace

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

void commandNew() {
  if (mayDiscard()) session().newDrawing();
}

void commandOpen() {
  if (!mayDiscard()) return;
  const std::u16string path = askPath(u"Apri disegno", kDrawings, ui::FileQuestion::Mode::open);
  if (path.empty()) return;
  std::vector<std::string> warnings;
  const auto opened = session().openDrawing(platform::nativePath(path), warnings);
  if (!opened) return reportError(opened.error());
  for (const std::string& w : warnings) say(u"\nAttenzione: " + platform::widen(w));
}

void commandSave() {
  if (haveDrawing()) save();
}

void commandSaveAs() {
  if (haveDrawing()) saveAs();
}

void commandQuit() {
  if (mayDiscard()) session().requestQuit();
}

void commandLoadModule() {
  const std::u16string path =
      askPath(u"Carica modulo", u"Moduli (*.arx)|*.arx|", ui::FileQuestion::Mode::open);
  if (path.empty()) return;
  const auto loaded = session().loadModule(platform::nativePath(path));
  if (!loaded) return reportError(loaded.error());
  acutPrintf(u"\nModulo caricato: %s", platform::fileNameOf(path));
}

void commandUnloadModule() {
  const auto modules = session().loadedModules();
  if (modules.empty()) return say(u"\nNessun modulo caricato.");
  say(u"\nModuli caricati:");
  for (const auto& m : modules) acutPrintf(u"\n  %s", platform::fileNameOf(m.path));
  std::u16string name;
  if (acedGetString(true, u"\nNome del modulo: ", name) != RTNORM || name.empty()) return;
  for (const auto& m : modules) {
    if (!platform::equalNoCase(platform::fileNameOf(m.path), platform::fileNameOf(name))) continue;
    const auto unloaded = session().unloadModule(m.handle);
    if (!unloaded) return reportError(unloaded.error());
    acutPrintf(u"\nModulo scaricato: %s", platform::fileNameOf(m.path));
    return;
  }
  acutPrintf(u"\nIl modulo \"%s\" non è caricato.", name);
}

}  // namespace cad::host
