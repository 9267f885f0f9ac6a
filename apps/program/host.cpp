#include "apps/program/host.h"

#include "apps/program/user_root.h"
#include "apps/program/words.h"
#include "cad/editor/commands.h"
#include "cad/editor/variables.h"
#include "cad/family/family_commands.h"
#include "platform/files.h"
#include "platform/text.h"

namespace program {

namespace {

// What the last command left inconsistent, on the command line below its own words.
void tellWarnings() {
  vessora::Jobs* const jobs = vessora::Jobs::find();
  if (!jobs) return;
  for (const std::string& line : described(jobs->takeWarnings())) {
    cad::Session::instance().frontend().print(platform::widen("\n" + words("Attenzione: ") + line));
  }
}

}  // namespace

platform::Result<void> startHost(cad::ui::Frontend& ui, InpMode mode) {
  cad::Session& session = cad::Session::instance();
  session.setFrontend(&ui);
  cad::addHostCommands(session);
  cad::addFamilyCommands(session);
  cad::setVariable(u"VSINPMODE", mode == InpMode::full ? u"FULL" : u"CLASSIC");
  const cad::Installation place = cad::findInstallation();
  if (!platform::folderExists(place.root)) {
    return platform::Error{place.root + ": " +
                           words("la cartella del prodotto manca; reinstallare, o indicarla con "
                                 "VESSORA_ROOT")};
  }
  const auto own = rootForUser(place.root);
  if (!own) return platform::Error{own.error()};
  // The root ends in a backslash, whatever the platform: modules append to it as it stands.
  std::u16string root = platform::widen(*own);
  root.back() = u'\\';
  session.setSymbol(u"hn-cpath", root);
  const auto module = session.loadModule(place.module);
  if (!module) return platform::Error{module.error()};
  vessora::Jobs* const jobs = vessora::Jobs::find();
  if (!jobs) {
    return platform::Error{place.module + ": " +
                           words("il modulo è di un'altra versione; reinstallare")};
  }
  for (const vessora::CommandRow& row : jobs->commands()) {
    session.addExport(*module, u"VESSORA", {row.name, row.symbol, row.help});
  }
  session.afterCommand = tellWarnings;
  return {};
}

void stopHost() {
  cad::Session& session = cad::Session::instance();
  session.closeDrawing();
  session.afterCommand = nullptr;
  session.unloadModules();
  session.setFrontend(nullptr);
}

}  // namespace program
