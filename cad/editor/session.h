// The session of the built-in host: the open drawing, the loaded modules, the commands, and who
// answers.
//
// One per process. It runs commands by name: those that it is given (see commands.h) and those that
// modules register. Around each command it keeps the undo mark and checks that nothing was left
// open or unreleased.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cad/api/editor.h"
#include "cad/api/services.h"
#include "cad/ui/frontend.h"
#include "platform/dynamic_library.h"
#include "platform/files.h"
#include "platform/result.h"

namespace cad {

// A module that is loaded; 0 is none, the host itself. Numbers are never used twice.
using ModuleHandle = int;

struct Command {
  std::u16string group, globalName, localName;
  int flags = 0;
  std::function<void()> function;
  std::u16string help;
  ModuleHandle module = 0;  // whose it is: it goes when the module goes

  static constexpr int outsideUndo = 1;  // flag: the command keeps no undo mark of its own
};

// A command that a module offers as an exported function without arguments.
struct ExportedCommand {
  std::u16string name;
  std::string symbol;
  std::u16string help;  // one line for the list of commands
};

enum class RunResult { done, unknown, quit };

// Thrown into a command that asks what nobody can answer any more: it leaves the command, which the
// session then takes back.
struct CAD_API CommandAbandoned {};

// What a save does to a drawing file that somebody else has changed since it was opened or saved.
enum class Overwrite { unlessChanged, always };

class CAD_API Session {
 public:
  static Session& instance();
  ~Session();

  // --- who answers. Not owned; must outlive the use.
  void setFrontend(ui::Frontend* frontend);
  ui::Frontend& frontend() const;
  // Takes down in a new file what is asked and answered from here on, as a script that repeats it;
  // it begins with the language of now. Ends with endJournal() or with the front end. The path of
  // the file meanwhile, else empty.
  platform::Result<void> beginJournal(const std::string& path);
  platform::Result<void> endJournal();
  std::string journalPath() const;

  // --- the drawing
  // Opens a drawing in place of the current one. `warnings` gets what was repaired. On failure the
  // current drawing stays.
  platform::Result<void> openDrawing(const std::string& path, std::vector<std::string>& warnings);
  void newDrawing();
  void closeDrawing();
  // Saves under a path, or where the drawing came from when the path is empty. A file that was
  // changed on disk since it was opened is left alone, and the error says so, unless told
  // otherwise.
  platform::Result<void> saveDrawing(const std::string& path,
                                     Overwrite overwrite = Overwrite::unlessChanged);
  // The drawing's own file was changed or replaced by others since it was opened or saved, and
  // saving at this path (as above) would take that away.
  bool changedOnDisk(const std::string& path) const;
  // The drawing has changes that no file has yet: a question before it is left.
  bool isModified() const;
  AcDbDatabase* database() const { return database_.get(); }
  const std::string& drawingPath() const { return path_; }

  // --- modules
  // Loads a module and sends it the initialisation message. The error says why it is not there;
  // what it had registered before it failed is taken back.
  platform::Result<ModuleHandle> loadModule(const std::string& path);
  // Sends it the unload message and takes its commands and services away. Refused while one of its
  // commands runs, and for a module that has not allowed it (see AcRxDynamicLinker).
  platform::Result<void> unloadModule(ModuleHandle module);
  // Makes a command of the group of an export of the module. False when it has no such export, or
  // another command has the name.
  bool addExport(ModuleHandle module, std::u16string_view group, const ExportedCommand& command);
  // Tells all modules that the program ends, the latest first, and lets them go.
  void unloadModules();
  // An exported function of a loaded module, or null.
  template <class Function>
  Function* moduleFunction(const char* name) const {
    return reinterpret_cast<Function*>(moduleSymbol(name));
  }
  struct LoadedModule {
    ModuleHandle handle = 0;
    std::u16string path;
  };
  // In the order in which they came.
  std::vector<LoadedModule> loadedModules() const;
  // Path and handle of the module whose code runs now; empty and 0 outside modules.
  const std::u16string& runningModule() const { return runningModule_; }
  ModuleHandle runningHandle() const { return running_.empty() ? 0 : running_.back(); }
  // The module whose code runs may be unloaded.
  void allowUnloading();

  // --- commands
  // Runs one command by its global or local name (any letter case, leading '_' or '-' ignored),
  // then what was posted meanwhile.
  RunResult run(std::u16string_view name);
  // Asks for commands and runs them until the user quits, input ends, or `more`, asked before each
  // command, says no. A user who ends his input leaves by the same question as one who quits; false
  // when the input ended for good with changes that were not saved.
  bool commandLoop(const std::function<bool()>& more = {});
  const std::map<std::u16string, Command>& commands() const { return commands_; }
  bool addCommand(Command command);
  // Removes the commands that the module (0: nobody's) has in the group; false when it has none.
  bool removeGroup(std::u16string_view group, ModuleHandle module);
  void post(std::u16string_view line) { posted_.emplace_back(line); }
  void requestQuit() { quit_ = true; }
  bool quitRequested() const { return quit_; }
  // Called after each command of the user's, when its effects stand and before what it has posted:
  // a program says there what the command itself does not.
  std::function<void()> afterCommand;
  // What commands left open or unreleased since the last call; empty when all was well.
  std::string takeLeaks();

  // --- variables and symbols
  void setSymbol(std::u16string_view name, std::u16string_view value);
  std::map<std::u16string, std::u16string> symbols;
  std::map<std::u16string, std::u16string> variables;

  // --- what data of entities mean, told by whoever knows: of the entities of a layer, the item at
  // a place (from 1) of an application's extended data, or with place 0 the attribute of a tag.
  struct DataName {
    std::u16string name, unit;  // in the user's language; empty: not worth showing
  };
  std::function<std::optional<DataName>(std::u16string_view layer, std::u16string_view key,
                                        int place)>
      nameOfData;

  // --- the view, as the zoom command leaves it: plan window in world coordinates
  struct View {
    bool set = false;
    AcGePoint3d low, high;
  };
  View view;

  // --- selection sets alive
  std::uint64_t storeSelection(std::vector<AcDbObjectId> ids);
  const std::vector<AcDbObjectId>* selection(std::uint64_t number) const;
  bool freeSelection(std::uint64_t number);
  int liveSelections() const { return liveSelections_; }

  // --- the rules of acedInitGet for the next input
  int initBits = 0;
  std::vector<std::u16string> initKeywords, initGlobals;

 private:
  Session();
  struct Module;
  // The span in which a module's code runs, or the host's own under the handle 0.
  class Inside {
   public:
    Inside(Session& session, ModuleHandle module, std::u16string path);
    Inside(Session& session, ModuleHandle module);
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
    ~Inside();

   private:
    Session& session_;
    std::u16string before_;
  };
  void* moduleSymbol(const char* name) const;
  const Module* moduleOf(ModuleHandle handle) const;
  void sendToModules(AcRx::AppMsgCode message);
  AcRx::AppRetCode send(const Module& module, AcRx::AppMsgCode message);
  void forget(const Module& module);
  void runPosted();
  void takeBack(bool wasModified);
  void checkLeaks(std::u16string_view command);
  void setDrawing(std::unique_ptr<AcDbDatabase> database, const std::string& path);
  bool isOwnFile(const std::string& path) const;

  struct Module {
    ModuleHandle handle = 0;
    std::u16string path;
    platform::DynamicLibrary library;
    AcRx::AppRetCode (*entry)(AcRx::AppMsgCode, void*) = nullptr;
    bool mayUnload = false;
  };
  struct JournalFile;
  ui::Frontend* frontend_ = nullptr;
  std::unique_ptr<JournalFile> journal_;
  std::unique_ptr<AcDbDatabase> database_;
  std::string path_;
  std::optional<platform::FileStamp> stamp_;  // of the drawing's file as this session knows it
  std::uint64_t cleanRevision_ = 0;           // of the drawing when it was made or read
  std::vector<Module> modules_;
  ModuleHandle lastHandle_ = 0;
  std::vector<ModuleHandle> running_;  // whose code is on the stack, 0 for host commands
  std::u16string runningModule_;
  std::map<std::u16string, Command> commands_;
  std::vector<std::u16string> posted_;
  std::vector<std::unique_ptr<std::vector<AcDbObjectId>>> selections_;
  int liveSelections_ = 0;
  bool quit_ = false;
  std::string leaks_;
  int nodesBefore_ = 0;  // result nodes and selection sets that were there before the command
  std::vector<bool> heldBefore_;
  int depth_ = 0;
};

// Where the product is: the folder of the running program tells bin/, lib/vessora/ and
// share/vessora/ beside it; VESSORA_ROOT and VESSORA_MODULE in the environment win. The root ends
// in a separator.
struct Installation {
  std::string root, module;
};
CAD_API Installation findInstallation();

}  // namespace cad
