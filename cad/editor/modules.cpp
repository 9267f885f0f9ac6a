// Modules and the services by which they meet their host.
#include <algorithm>
#include <cstdlib>

#include "cad/editor/session.h"
#include "platform/text.h"
#include "platform/words.h"

ACRX_DEFINE(AcRxDictionary, AcRxObject)
ACRX_DEFINE(AcRxDynamicLinker, AcRxObject)
ACRX_DEFINE(AcEdCommandStack, AcRxObject)
ACRX_DEFINE(OdRxModule, AcRxObject)
ACRX_DEFINE(OdRxWin32Module, OdRxModule)

namespace cad {
namespace {

class Linker : public AcRxDynamicLinker {
 public:
  bool unlockApplication(void* packet) override {
    if (packet) Session::instance().allowUnloading();
    return packet != nullptr;
  }
  bool registerAppMDIAware(void* packet) override { return packet != nullptr; }
};

class Stack : public AcEdCommandStack {
 public:
  bool addCommand(std::u16string_view group, std::u16string_view globalName,
                  std::u16string_view localName, int flags, AcRxFunctionPtr function) override {
    Session& session = Session::instance();
    return session.addCommand({std::u16string(group), std::u16string(globalName),
                               std::u16string(localName), flags, function, u"",
                               session.runningHandle()});
  }
  bool removeGroup(std::u16string_view group) override {
    Session& session = Session::instance();
    return session.removeGroup(group, session.runningHandle());
  }
};

// Each entry knows whose it is, so that none is left behind by a module that goes.
class Registry : public AcRxDictionary {
 public:
  Registry() {
    objects_[u"DynamicLinker"] = {&linker_, kHost};
    objects_[u"ACAD_REGISTERED_COMMANDS"] = {&stack_, kHost};
  }
  AcRxObject* at(std::u16string_view name) const override {
    const auto it = objects_.find(name);
    return it == objects_.end() ? nullptr : it->second.object;
  }
  bool atPut(std::u16string_view name, AcRxObject* object) override {
    const Entry entry{object, Session::instance().runningHandle()};
    return object && !name.empty() && objects_.emplace(name, entry).second;
  }
  AcRxObject* remove(std::u16string_view name) override {
    const auto it = objects_.find(name);
    if (it == objects_.end() || it->second.owner == kHost) return nullptr;
    AcRxObject* const object = it->second.object;
    objects_.erase(it);
    return object;
  }
  void removeAllOf(ModuleHandle owner) {
    std::erase_if(objects_, [&](const auto& o) { return o.second.owner == owner; });
  }

 private:
  static constexpr ModuleHandle kHost = -1;
  struct Entry {
    AcRxObject* object = nullptr;
    ModuleHandle owner = 0;
  };
  Linker linker_;
  Stack stack_;
  std::map<std::u16string, Entry, std::less<>> objects_;
};

Registry& registry() {
  static Registry registry;
  return registry;
}

void* g_resources = nullptr;
std::vector<void*>& extensions() {
  static std::vector<void*> modules;
  return modules;
}

}  // namespace

// --- whose code runs -----------------------------------------------------------------------------

Session::Inside::Inside(Session& session, ModuleHandle module, std::u16string path)
    : session_(session), before_(std::move(session.runningModule_)) {
  session.running_.push_back(module);
  session.runningModule_ = std::move(path);
}

Session::Inside::Inside(Session& session, ModuleHandle module)
    : Inside(session, module, session.moduleOf(module) ? session.moduleOf(module)->path : u"") {}

Session::Inside::~Inside() {
  session_.running_.pop_back();
  session_.runningModule_ = std::move(before_);
}

const Session::Module* Session::moduleOf(ModuleHandle handle) const {
  for (const Module& m : modules_) {
    if (m.handle == handle) return &m;
  }
  return nullptr;
}

AcRx::AppRetCode Session::send(const Module& module, AcRx::AppMsgCode message) {
  const Inside inside(*this, module.handle, module.path);
  return module.entry(message, &modules_);
}

void Session::sendToModules(AcRx::AppMsgCode message) {
  const std::vector<Module> all = modules_;  // a module may load another one on the way
  for (const Module& m : all) {
    if (moduleOf(m.handle)) send(m, message);
  }
}

// --- coming and going ----------------------------------------------------------------------------

platform::Result<ModuleHandle> Session::loadModule(const std::string& given) {
  // Without a folder in front the loader would look in the system's folders.
  const std::string path = platform::absolutePath(given);
  const std::u16string widePath = platform::widen(path);
  for (const Module& m : modules_) {
    if (platform::canonicalPath(platform::narrow(m.path)) == platform::canonicalPath(path)) {
      return platform::Error{given + platform::words(": è già caricato")};
    }
  }
  Module module;
  module.handle = ++lastHandle_;
  module.path = widePath;
  const Inside inside(*this, module.handle, module.path);
  if (!platform::fileExists(path)) {
    return platform::Error{given + platform::words(": il file non c'è")};
  }
  auto library = platform::DynamicLibrary::load(path);
  if (!library)
    return platform::Error{given + platform::words(": non si può caricare: ") + library.error()};
  module.library = *library;
  module.entry = library->function<AcRx::AppRetCode(AcRx::AppMsgCode, void*)>("acrxEntryPoint");
  if (!module.entry) {
    forget(module);
    return platform::Error{
        given + platform::words(": non è un modulo di questo programma (manca acrxEntryPoint)")};
  }
  modules_.push_back(module);
  if (module.entry(AcRx::kInitAppMsg, &modules_) != AcRx::kRetOK) {
    module.entry(AcRx::kUnloadAppMsg, &modules_);
    forget(module);
    return platform::Error{given + platform::words(": il modulo ha rifiutato di avviarsi")};
  }
  if (database_) module.entry(AcRx::kLoadDwgMsg, &modules_);
  return module.handle;
}

void Session::allowUnloading() {
  for (Module& m : modules_) {
    if (m.handle == runningHandle()) m.mayUnload = true;
  }
}

// Takes away what a module has registered, and then its code.
void Session::forget(const Module& gone) {
  Module module = gone;
  std::erase_if(commands_, [&](const auto& c) { return c.second.module == module.handle; });
  registry().removeAllOf(module.handle);
  std::erase_if(modules_, [&](const Module& m) { return m.handle == module.handle; });
  module.library.free();
}

platform::Result<void> Session::unloadModule(ModuleHandle handle) {
  const Module* found = moduleOf(handle);
  if (!found) return platform::Error{platform::words("nessun modulo così è caricato")};
  const Module module = *found;
  const std::string path = platform::narrow(module.path);
  if (std::find(running_.begin(), running_.end(), handle) != running_.end()) {
    return platform::Error{
        path + platform::words(": non si può scaricare mentre un suo comando è in corso")};
  }
  if (!module.mayUnload)
    return platform::Error{path + platform::words(": non permette di essere scaricato")};
  send(module, AcRx::kUnloadAppMsg);
  forget(module);
  return {};
}

void Session::unloadModules() {
  while (!modules_.empty()) {
    const Module module = modules_.back();
    send(module, AcRx::kQuitMsg);
    forget(module);
  }
}

std::vector<Session::LoadedModule> Session::loadedModules() const {
  std::vector<LoadedModule> all;
  for (const Module& m : modules_) all.push_back({m.handle, m.path});
  return all;
}

bool Session::addExport(ModuleHandle handle, std::u16string_view group,
                        const ExportedCommand& command) {
  const Module* module = moduleOf(handle);
  if (!module) return false;
  auto* function = module->library.function<void()>(command.symbol.c_str());
  if (!function) return false;
  return addCommand(
      {std::u16string(group), command.name, command.name, 0, function, command.help, handle});
}

void* Session::moduleSymbol(const char* name) const {
  for (const Module& m : modules_) {
    if (void* s = m.library.symbol(name)) return s;
  }
  return nullptr;
}

}  // namespace cad

// --- services ------------------------------------------------------------------------------------

AcRxDictionary* acrxSysRegistry() { return &cad::registry(); }

void* odrxAlloc(std::size_t size) { return std::malloc(size); }
void odrxFree(void* memory) { std::free(memory); }

void* afxResourceHandle() { return cad::g_resources; }
void afxSetResourceHandle(void* handle) { cad::g_resources = handle; }
bool afxAddExtensionModule(void* instance) {
  if (!instance) return false;
  cad::extensions().push_back(instance);
  return true;
}
void afxRemoveExtensionModule(void* instance) { std::erase(cad::extensions(), instance); }
