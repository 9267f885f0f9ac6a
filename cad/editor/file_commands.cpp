// Drawings that come and go, and the modules.
#include "cad/editor/host_commands.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad::host {
namespace {

ui::Pressed askYesNoCancel(std::u16string_view text) {
  ui::Message m;
  m.title = platform::words(u"Disegno");
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

std::u16string drawings() {
  return platform::words(u"Disegni DXF (*.dxf)|*.dxf|Tutti i file (*.*)|*.*|");
}

bool saveAs();

// Saves, after a question where the file has been changed by others meanwhile.
bool saveTo(const std::string& path) {
  Overwrite overwrite = Overwrite::unlessChanged;
  if (session().changedOnDisk(path)) {
    const ui::Pressed pressed = askYesNoCancel(platform::format(
        platform::words(
            u"Il file %s è stato modificato da altri dopo l'apertura. Sovrascriverlo? (No: salva "
            u"con un altro nome)"),
        platform::widen(session().drawingPath())));
    if (pressed == ui::Pressed::cancel) return false;
    if (pressed == ui::Pressed::no) return saveAs();
    overwrite = Overwrite::always;
  }
  const auto saved = session().saveDrawing(path, overwrite);
  if (!saved) {
    reportError(saved.error());
    return false;
  }
  acutPrintf(platform::words(u"\nDisegno salvato: %s"), platform::widen(session().drawingPath()));
  return true;
}

bool saveAs() {
  const std::u16string path =
      askPath(platform::words(u"Salva disegno con nome"), drawings(), ui::FileQuestion::Mode::save);
  return !path.empty() && saveTo(platform::nativePath(path));
}

bool save() { return session().drawingPath().empty() ? saveAs() : saveTo(""); }

// Whether the drawing may go: it has no changes, they have been saved, or the user lets them go.
bool mayDiscard() {
  if (!session().isModified()) return true;
  const ui::Pressed pressed =
      askYesNoCancel(platform::words(u"Il disegno è stato modificato. Salvare le modifiche?"));
  if (pressed == ui::Pressed::cancel) return false;
  return pressed == ui::Pressed::no || save();
}

}  // namespace

bool haveDrawing() {
  if (session().database()) return true;
  say(platform::words(u"\nNessun disegno aperto."));
  return false;
}

void reportError(const std::string& error) {
  ui::Message m;
  m.title = platform::words(u"Disegno");
  m.text = platform::widen(error);
  m.icon = ui::Icon::stop;
  session().frontend().messageBox(m);
}

void commandNew() {
  if (mayDiscard()) session().newDrawing();
}

void commandOpen() {
  if (!mayDiscard()) return;
  const std::u16string path =
      askPath(platform::words(u"Apri disegno"), drawings(), ui::FileQuestion::Mode::open);
  if (path.empty()) return;
  std::vector<std::string> warnings;
  const auto opened = session().openDrawing(platform::nativePath(path), warnings);
  if (!opened) return reportError(opened.error());
  for (const std::string& w : warnings)
    acutPrintf(platform::words(u"\nAttenzione: %s"), platform::widen(w));
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
      askPath(platform::words(u"Carica modulo"), platform::words(u"Moduli (*.arx)|*.arx|"),
              ui::FileQuestion::Mode::open);
  if (path.empty()) return;
  const auto loaded = session().loadModule(platform::nativePath(path));
  if (!loaded) return reportError(loaded.error());
  acutPrintf(platform::words(u"\nModulo caricato: %s"), platform::fileNameOf(path));
}

void commandUnloadModule() {
  const auto modules = session().loadedModules();
  if (modules.empty()) return say(platform::words(u"\nNessun modulo caricato."));
  say(platform::words(u"\nModuli caricati:"));
  for (const auto& m : modules) acutPrintf(u"\n  %s", platform::fileNameOf(m.path));
  std::u16string name;
  if (acedGetString(true, platform::words(u"\nNome del modulo: "), name) != RTNORM || name.empty())
    return;
  for (const auto& m : modules) {
    if (!platform::equalNoCase(platform::fileNameOf(m.path), platform::fileNameOf(name))) continue;
    const auto unloaded = session().unloadModule(m.handle);
    if (!unloaded) return reportError(unloaded.error());
    acutPrintf(platform::words(u"\nModulo scaricato: %s"), platform::fileNameOf(m.path));
    return;
  }
  acutPrintf(platform::words(u"\nIl modulo \"%s\" non è caricato."), name);
}

}  // namespace cad::host
