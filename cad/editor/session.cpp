#include "cad/editor/session.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "cad/drawing/drawing.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad {
namespace {

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

ui::Frontend& Session::frontend() const {
  static NobodyFrontend nobody;
  return frontend_ ? *frontend_ : nobody;
}

// --- the drawing ---------------------------------------------------------------------------------

void Session::setDrawing(std::unique_ptr<AcDbDatabase> database, const std::string& path) {
  closeDrawing();
  database_ = std::move(database);
  path_ = path;
  cleanRevision_ = database_->drawing().revision();
  view = View();
  acdbHostApplicationServices()->setWorkingDatabase(database_.get());
  sendToModules(AcRx::kLoadDwgMsg);
}

platform::Result<void> Session::openDrawing(const std::string& path,
                                            std::vector<std::string>& warnings) {
  auto database = std::make_unique<AcDbDatabase>(false);
  // Taken before reading: what is written meanwhile counts as changed.
  const auto stamp = platform::stampOf(path);
  auto loaded = database->drawing().load(path, warnings);
  if (!loaded) return loaded;
  setDrawing(std::move(database), path);
  stamp_ = stamp;
  return {};
}

void Session::newDrawing() { setDrawing(std::make_unique<AcDbDatabase>(true), ""); }

void Session::closeDrawing() {
  if (!database_) return;
  sendToModules(AcRx::kUnloadDwgMsg);
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  database_.reset();
  path_.clear();
  stamp_.reset();
}

bool Session::isOwnFile(const std::string& path) const {
  return path.empty() || path == path_ ||
         (!path_.empty() && platform::canonicalPath(path) == platform::canonicalPath(path_));
}

bool Session::changedOnDisk(const std::string& path) const {
  if (!stamp_ || !isOwnFile(path)) return false;
  const auto now = platform::stampOf(path_);
  return now && now != stamp_;
}

bool Session::isModified() const {
  return database_ && database_->drawing().isChanged() &&
         database_->drawing().revision() != cleanRevision_;
}

platform::Result<void> Session::saveDrawing(const std::string& path, Overwrite overwrite) {
  if (!database_) return platform::Error{platform::words("non c'è un disegno aperto")};
  const std::string target = path.empty() ? path_ : path;
  if (target.empty())
    return platform::Error{
        platform::words("il disegno non ha ancora un nome; dare un percorso per salvarlo")};
  if (overwrite == Overwrite::unlessChanged && changedOnDisk(target)) {
    return platform::Error{
        target +
        platform::words(
            ": non salvato: un altro programma ha cambiato il file dopo l'apertura; salvare con "
            "un altro nome, o riaprirlo")};
  }
  sendToModules(AcRx::kSaveMsg);
  // A drawing that gets its first file opens on what is in it.
  if (path_.empty()) database_->drawing().fitView();
  auto saved = database_->drawing().save(target);
  if (saved) {
    path_ = target;
    stamp_ = platform::stampOf(target);
  }
  return saved;
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

bool Session::removeGroup(std::u16string_view group, ModuleHandle module) {
  return std::erase_if(commands_, [&](const auto& c) {
           return c.second.module == module && platform::equalNoCase(c.second.group, group);
         }) > 0;
}

RunResult Session::run(std::u16string_view name) {
  const auto it = commands_.find(commandKey(name));
  if (it == commands_.end()) return RunResult::unknown;
  const Command command = it->second;
  const bool wasModified = isModified();
  bool abandoned = false;
  ++depth_;
  const bool keepsNone = command.module == 0 && (command.flags & Command::outsideUndo);
  if (database_ && depth_ == 1 && !keepsNone) {
    database_->drawing().beginCommand(command.globalName);
  }
  if (depth_ == 1) {
    frontend().setUnanswered([] { throw CommandAbandoned(); });
    // What the caller holds is his own affair.
    nodesBefore_ = acutLiveNodes();
    heldBefore_.clear();
    for (const auto& set : selections_) heldBefore_.push_back(set != nullptr);
  }
  initBits = 0;
  initKeywords.clear();
  initGlobals.clear();
  try {
    const Inside inside(*this, command.module);
    command.function();
  } catch (const std::bad_alloc&) {
    // The drawing is whole, and what the command has done so far can be taken back.
    frontend().invalid(platform::words(u"Memoria esaurita: comando interrotto."));
  } catch (const CommandAbandoned&) {
    if (depth_ > 1) {
      --depth_;
      throw;
    }
    abandoned = true;
  }
  --depth_;
  if (depth_ == 0) {
    frontend().setUnanswered(nullptr);
    checkLeaks(command.globalName);
    if (abandoned) {
      takeBack(wasModified);
    } else if (database_) {
      database_->drawing().endCommand();
    }
    if (afterCommand) afterCommand();
    runPosted();
  }
  return quit_ ? RunResult::quit : RunResult::done;
}

// Nothing of a command that was left in the middle stays, nor what it had posted.
void Session::takeBack(bool wasModified) {
  posted_.clear();
  if (!database_) return;
  database_->drawing().abandonCommand();
  if (!wasModified) cleanRevision_ = database_->drawing().revision();
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
  // Undo and saving would be refused for as long as one is open.
  if (const int open = database_ ? database_->drawing().closeAll() : 0) {
    what += " " + std::to_string(open) + " object(s) open";
    frontend().print(platform::format(
        platform::words(u"\nIl comando %s ha lasciato aperti degli oggetti: sono stati chiusi."),
        command));
  }
  int sets = 0;
  for (std::size_t i = 0; i < selections_.size(); ++i) {
    if (!selections_[i] || (i < heldBefore_.size() && heldBefore_[i])) continue;
    freeSelection(i + 1);
    ++sets;
  }
  if (sets) what += " " + std::to_string(sets) + " selection set(s)";
  // A chain may still be held by whoever forgot it, so it is lost rather than released.
  if (const int nodes = acutLiveNodes() - nodesBefore_; nodes > 0) {
    what += " " + std::to_string(nodes) + " result node(s)";
  }
  if (!what.empty()) leaks_ += platform::narrow(command) + " left:" + what + "\n";
}

std::string Session::takeLeaks() { return std::exchange(leaks_, {}); }

bool Session::commandLoop(const std::function<bool()>& more) {
  std::u16string last;
  quit_ = false;
  while (!quit_ && (!more || more())) {
    ui::Prompt prompt;
    prompt.kind = ui::Prompt::Kind::command;
    prompt.text = platform::words(u"\nComando: ");
    for (const auto& [key, command] : commands_) prompt.keywords.push_back(key);
    const ui::Answer answer = frontend().ask(prompt);
    if (answer.status == ui::Answer::Status::end) {
      // A person who ends his input means to leave, which may need an answer of his.
      if (frontend().ended() || run(u"QUIT") == RunResult::unknown) return !isModified();
      continue;
    }
    if (answer.status == ui::Answer::Status::cancel) continue;
    std::u16string name = answer.text;
    if (answer.status == ui::Answer::Status::none || name.empty()) name = last;
    if (name.empty()) continue;
    if (run(name) == RunResult::unknown) {
      frontend().invalid(platform::format(
          platform::words(u"Comando sconosciuto \"%s\". Digitare GUIDA per l'elenco."), name));
    } else {
      last = name;
    }
  }
  return true;
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
  found.root = platform::canonicalPath(found.root);
  found.module = platform::canonicalPath(found.module);
  if (!found.root.empty() && found.root.back() != '/') found.root += '/';
  return found;
}

}  // namespace cad
