#include "cad/editor/session.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "cad/drawing/drawing.h"
#include "platform/files.h"
#include "platform/text.h"

ACRX_DEFINE(AcRxDictionary, AcRxObject)
ACRX_DEFINE(AcRxDynamicLinker, AcRxObject)
ACRX_DEFINE(AcEdCommandStack, AcRxObject)
ACRX_DEFINE(OdRxModule, AcRxObject)
ACRX_DEFINE(OdRxWin32Module, OdRxModule)

namespace cad {
namespace {

class Linker : public AcRxDynamicLinker {
 public:
  bool unlockApplication(void* packet) override { return packet != nullptr; }
  bool registerAppMDIAware(void* packet) override { return packet != nullptr; }
};

class Stack : public AcEdCommandStack {
 public:
  bool addCommand(std::u16string_view group, std::u16string_view globalName,
                  std::u16string_view localName, int flags, AcRxFunctionPtr function) override {
    return Session::instance().addCommand({std::u16string(group), std::u16string(globalName),
                                           std::u16string(localName), flags, function, u""});
  }
  bool removeGroup(std::u16string_view group) override {
    return Session::instance().removeGroup(group);
  }
};

class Registry : public AcRxDictionary {
 public:
  Registry() {
    objects_.emplace(u"DynamicLinker", &linker_);
    objects_.emplace(u"ACAD_REGISTERED_COMMANDS", &stack_);
  }
  AcRxObject* at(std::u16string_view name) const override {
    const auto it = objects_.find(name);
    return it == objects_.end() ? nullptr : it->second;
  }
  bool atPut(std::u16string_view name, AcRxObject* object) override {
    return object && !name.empty() && objects_.emplace(name, object).second;
  }
  AcRxObject* remove(std::u16string_view name) override {
    const auto it = objects_.find(name);
    if (it == objects_.end() || it->second == &linker_ || it->second == &stack_) return nullptr;
    AcRxObject* const object = it->second;
    objects_.erase(it);
    return object;
  }

 private:
  Linker linker_;
  Stack stack_;
  std::map<std::u16string, AcRxObject*, std::less<>> objects_;
};

void* g_resources = nullptr;
std::vector<void*>& extensions() {
  static std::vector<void*> modules;
  return modules;
}

std::u16string commandKey(std::u16string_view name) {
  while (!name.empty() && (name[0] == u'_' || name[0] == u'-' || name[0] == u'.'))
    name.remove_prefix(1);
  return platform::upper(name);
}

// Answers nothing: stands in until a program says who answers.
class NobodyFrontend : public ui::Frontend {
 public:
  void print(std::u16string_view) override {}

 protected:
  void showDialog(ui::Dialog&) override {}
  ui::Pressed showMessage(const ui::Message& m) override { return ui::escapeAnswer(m.buttons); }
  std::optional<std::u16string> showFileQuestion(const ui::FileQuestion&) override { return {}; }
  ui::Answer showPrompt(const ui::Prompt&) override { return {ui::Answer::Status::end, u""}; }
  void showInvalid(std::u16string_view) override {}
};

}  // namespace

Session& Session::instance() {
  // Never destroyed: modules and front ends may still call while the process ends.
  static Session* session = new Session;
  return *session;
}

Session::Session() { registerHostCommands(); }
Session::~Session() = default;

ui::Frontend& Session::frontend() const {
  static NobodyFrontend nobody;
  return frontend_ ? *frontend_ : nobody;
}

// --- the drawing ---------------------------------------------------------------------------------

void Session::setDrawing(std::unique_ptr<AcDbDatabase> database, const std::string& path) {
  closeDrawing();
  database_ = std::move(database);
  path_ = path;
  view = View();
  acdbHostApplicationServices()->setWorkingDatabase(database_.get());
  sendToModules(AcRx::kLoadDwgMsg);
}

platform::Result<void> Session::openDrawing(const std::string& path,
                                            std::vector<std::string>& warnings) {
  auto database = std::make_unique<AcDbDatabase>(false);
  auto loaded = database->drawing().load(path, warnings);
  if (!loaded) return loaded;
  setDrawing(std::move(database), path);
  return {};
}

void Session::newDrawing() { setDrawing(std::make_unique<AcDbDatabase>(true), ""); }

void Session::closeDrawing() {
  if (!database_) return;
  sendToModules(AcRx::kUnloadDwgMsg);
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  database_.reset();
  path_.clear();
}

std::string Session::versionProblem() const {
  const Drawing& d = database_->drawing();
  const int version = d.format().version;
  if (version >= 1018) return {};
  for (std::uint32_t i = d.records().first(); i; i = d.record(i).next) {
    const Record& r = d.record(i);
    if (!r.is(Record::changed) || r.is(Record::erased)) continue;
    const char* what = r.type == Type::acadTable                      ? "tables"
                       : r.type == Type::lwpolyline && version < 1014 ? "light polylines"
                                                                      : nullptr;
    if (what) {
      return std::string("a drawing of release ") + releaseName(version) + " cannot hold the " +
             what + " that were drawn; use a drawing of release " +
             (r.type == Type::acadTable ? "R2004" : "R14") + " or newer";
    }
  }
  return {};
}

platform::Result<void> Session::saveDrawing(const std::string& path) {
  if (!database_) return platform::Error{"no drawing is open"};
  const std::string& target = path.empty() ? path_ : path;
  if (target.empty()) return platform::Error{"the drawing has no name yet; give a path to save it"};
  if (const std::string problem = versionProblem(); !problem.empty()) {
    return platform::Error{target + ": not saved: " + problem};
  }
  sendToModules(AcRx::kSaveMsg);
  // A drawing that gets its first file opens on what is in it.
  if (path_.empty()) database_->drawing().fitView();
  auto saved = database_->drawing().save(target);
  if (saved) path_ = target;
  return saved;
}

// --- modules -------------------------------------------------------------------------------------

platform::Result<void> Session::loadModule(const std::string& path) {
  auto library = platform::DynamicLibrary::load(path);
  if (!library) return platform::Error{path + ": cannot be loaded: " + library.error()};
  Module module;
  module.path = platform::widen(platform::absolutePath(path));
  module.library = *library;
  module.entry = library->function<AcRx::AppRetCode(AcRx::AppMsgCode, void*)>("acrxEntryPoint");
  if (!module.entry) {
    library->free();
    return platform::Error{path + ": is no module of this host (it has no acrxEntryPoint)"};
  }
  runningModule_ = module.path;
  const AcRx::AppRetCode answer = module.entry(AcRx::kInitAppMsg, &modules_);
  if (answer != AcRx::kRetOK) {
    module.entry(AcRx::kUnloadAppMsg, &modules_);
    runningModule_.clear();
    library->free();
    return platform::Error{path + ": the module refused to start"};
  }
  modules_.push_back(module);
  if (database_) module.entry(AcRx::kLoadDwgMsg, &modules_);
  return {};
}

bool Session::addExport(std::u16string_view group, const ExportedCommand& command) {
  if (modules_.empty()) return false;
  const Module& module = modules_.back();
  auto* function = module.library.function<void()>(command.symbol.c_str());
  if (!function) return false;
  return addCommand({std::u16string(group), command.name, command.name, 0,
                     [this, function, path = module.path] {
                       runningModule_ = path;
                       function();
                     },
                     command.help});
}

void Session::unloadModules() {
  for (Module& m : modules_) {
    runningModule_ = m.path;
    m.entry(AcRx::kQuitMsg, &modules_);
    std::erase_if(commands_, [](const auto& c) { return c.second.group != u"HOST"; });
    m.library.free();
  }
  modules_.clear();
  runningModule_.clear();
}

void* Session::moduleSymbol(const char* name) const {
  for (const Module& m : modules_) {
    if (void* s = m.library.symbol(name)) return s;
  }
  return nullptr;
}

void Session::sendToModules(AcRx::AppMsgCode message) {
  for (Module& m : modules_) {
    runningModule_ = m.path;
    m.entry(message, &modules_);
  }
}

// --- commands ------------------------------------------------------------------------------------

bool Session::addCommand(Command command) {
  const std::u16string key = commandKey(command.globalName);
  const std::u16string local = commandKey(command.localName);
  if (commands_.count(key)) return false;
  if (local != key) commands_.try_emplace(local, command);
  commands_.emplace(key, std::move(command));
  return true;
}

bool Session::removeGroup(std::u16string_view group) {
  return std::erase_if(commands_, [&](const auto& c) {
           return platform::equalNoCase(c.second.group, group);
         }) > 0;
}

RunResult Session::run(std::u16string_view name) {
  const auto it = commands_.find(commandKey(name));
  if (it == commands_.end()) return RunResult::unknown;
  const Command command = it->second;
  ++depth_;
  const bool own = command.group == u"HOST";
  if (database_ && depth_ == 1 && !(own && (command.flags & 1))) {
    database_->drawing().beginCommand(command.globalName);
  }
  initBits = 0;
  initKeywords.clear();
  command.function();
  --depth_;
  if (depth_ == 0) {
    if (database_) database_->drawing().endCommand();
    checkLeaks(command.globalName);
    runPosted();
  }
  return quit_ ? RunResult::quit : RunResult::done;
}

void Session::runPosted() {
  std::vector<std::u16string> lines;
  lines.swap(posted_);
  for (const std::u16string& line : lines) {
    const std::u16string command = line.substr(0, line.find_first_of(u"\r\n "));
    if (!command.empty()) run(command);
  }
}

void Session::checkLeaks(std::u16string_view command) {
  std::string what;
  if (database_ && database_->drawing().openCount()) {
    what += " " + std::to_string(database_->drawing().openCount()) + " object(s) open";
  }
  if (liveSelections_) what += " " + std::to_string(liveSelections_) + " selection set(s)";
  if (acutLiveNodes()) what += " " + std::to_string(acutLiveNodes()) + " result node(s)";
  if (!what.empty()) leaks_ += platform::narrow(command) + " left:" + what + "\n";
}

std::string Session::takeLeaks() { return std::exchange(leaks_, {}); }

void Session::commandLoop(const std::function<bool()>& more) {
  std::u16string last;
  quit_ = false;
  while (!quit_ && (!more || more())) {
    ui::Prompt prompt;
    prompt.kind = ui::Prompt::Kind::command;
    prompt.text = u"\nComando: ";
    for (const auto& [key, command] : commands_) prompt.keywords.push_back(key);
    const ui::Answer answer = frontend().ask(prompt);
    if (answer.status == ui::Answer::Status::end) return;
    if (answer.status == ui::Answer::Status::cancel) continue;
    std::u16string name = answer.text;
    if (answer.status == ui::Answer::Status::none || name.empty()) name = last;
    if (name.empty()) continue;
    if (run(name) == RunResult::unknown) {
      frontend().invalid(u"Comando sconosciuto \"" + name + u"\". Digitare GUIDA per l'elenco.");
    } else {
      last = name;
    }
  }
}

// --- selections, symbols -------------------------------------------------------------------------

std::uint64_t Session::storeSelection(std::vector<AcDbObjectId> ids) {
  ++liveSelections_;
  auto slot = std::find(selections_.begin(), selections_.end(), nullptr);
  const auto at = static_cast<std::uint64_t>(slot - selections_.begin());
  auto stored = std::make_unique<std::vector<AcDbObjectId>>(std::move(ids));
  if (slot == selections_.end()) {
    selections_.push_back(std::move(stored));
  } else {
    *slot = std::move(stored);
  }
  return at + 1;
}

const std::vector<AcDbObjectId>* Session::selection(std::uint64_t number) const {
  return number >= 1 && number <= selections_.size() ? selections_[number - 1].get() : nullptr;
}

bool Session::freeSelection(std::uint64_t number) {
  if (!selection(number)) return false;
  selections_[number - 1].reset();
  --liveSelections_;
  return true;
}

void Session::setSymbol(std::u16string_view name, std::u16string_view value) {
  symbols[platform::upper(name)] = value;
}

Installation findInstallation() {
  Installation found;
  const std::string program = platform::programPath();
  const std::string bin = program.substr(0, program.find_last_of('/') + 1);
  const char* root = std::getenv("VESSORA_ROOT");
  const char* module = std::getenv("VESSORA_MODULE");
  found.root = root && *root ? std::string(root) : bin + "../share/vessora/";
  if (found.root.back() != '/') found.root += '/';
  found.module = module && *module ? std::string(module) : bin + "../lib/vessora/vessora.arx";
  // Shown to users as a proposed path, so without the detours of the program's own place.
  std::error_code unknown;
  found.root = std::filesystem::weakly_canonical(found.root, unknown).string();
  found.module = std::filesystem::weakly_canonical(found.module, unknown).string();
  if (!found.root.empty() && found.root.back() != '/') found.root += '/';
  return found;
}

}  // namespace cad

// --- services ------------------------------------------------------------------------------------

AcRxDictionary* acrxSysRegistry() {
  static cad::Registry registry;
  return &registry;
}

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
