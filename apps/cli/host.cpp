#include "apps/cli/host.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "module/jobs.h"
#include "platform/files.h"
#include "platform/text.h"

namespace cli {

platform::Result<void> startHost(cad::ui::Frontend& ui) {
  cad::Session& session = cad::Session::instance();
  session.setFrontend(&ui);
  const cad::Installation place = cad::findInstallation();
  if (!platform::folderExists(place.root)) {
    return platform::Error{place.root + ": " +
                           words("la cartella del prodotto manca; reinstallare, o indicarla con "
                                 "VESSORA_ROOT",
                                 "the product's folder is missing; install again, or name it with "
                                 "VESSORA_ROOT")};
  }
  // The root ends in a backslash, whatever the platform: modules append to it as it stands.
  std::u16string root = platform::widen(place.root);
  root.back() = u'\\';
  session.setSymbol(u"hn-cpath", root);
  if (auto loaded = session.loadModule(place.module); !loaded) return loaded;
  vessora::Jobs* const jobs = vessora::Jobs::find();
  if (!jobs) {
    return platform::Error{place.module + ": " +
                           words("il modulo è di un'altra versione; reinstallare",
                                 "the module is of another version; install again")};
  }
  for (const vessora::CommandRow& row : jobs->commands()) {
    session.addExport(u"VESSORA", {row.name, row.symbol, row.help});
  }
  return {};
}

void stopHost() {
  cad::Session& session = cad::Session::instance();
  session.closeDrawing();
  session.unloadModules();
  session.setFrontend(nullptr);
}

platform::Result<void> openDrawing(const std::string& path) {
  cad::Session& session = cad::Session::instance();
  if (path.empty() || path == "-") {
    session.newDrawing();
    return {};
  }
  std::vector<std::string> warnings;
  auto opened = session.openDrawing(path, warnings);
  for (const std::string& w : warnings) {
    std::fprintf(stderr, "vessora: %s%s\n", words("attenzione: ", "warning: ").c_str(), w.c_str());
  }
  return opened;
}

platform::Result<void> saveDrawing(const std::string& path) {
  return cad::Session::instance().saveDrawing(path);
}

bool italian() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value && *value) return std::strncmp(value, "it", 2) == 0;
  }
  return false;
}

int fail(const std::string& message) {
  std::fprintf(stderr, "vessora: %s\n", message.c_str());
  return 1;
}

Progress::Progress(const std::string& what) : visible_(isatty(2) == 1), what_(what) { show(""); }

Progress::~Progress() {
  if (visible_) std::fputs("\r\x1b[K", stderr);
}

void Progress::show(const std::string& text) {
  if (visible_) std::fprintf(stderr, "\r\x1b[K%s %s", what_.c_str(), text.c_str());
}

}  // namespace cli
