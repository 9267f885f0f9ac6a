// The session of the built-in host: the open drawing, the loaded modules, the commands, and who
// answers.
//
// One per process. It runs commands by name: host commands of its own and those that modules
// register. Around each command it keeps the undo mark and checks that nothing was left open or
// unreleased.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cad/api/editor.h"
#include "cad/api/services.h"
#include "cad/ui/frontend.h"
#include "platform/dynamic_library.h"
#include "platform/result.h"

namespace cad {

struct Command {
  std::u16string group, globalName, localName;
  int flags = 0;
  std::function<void()> function;
  std::u16string help;
};

// A command that a module offers as an exported function without arguments.
struct ExportedCommand {
  std::u16string name;
  std::string symbol;
  std::u16string help;  // one line for the list of commands
};

enum class RunResult { done, unknown, quit };

class CAD_API Session {
 public:
  static Session& instance();
  ~Session();

  // --- who answers. Not owned; must outlive the use.
  void setFrontend(ui::Frontend* frontend) { frontend_ = frontend; }
  ui::Frontend& frontend() const;

  // --- the drawing
  // Opens a drawing in place of the current one. `warnings` gets what was repaired. On failure the
  // current drawing stays.
  platform::Result<void> openDrawing(const std::string& path, std::vector<std::string>& warnings);
  void newDrawing();
  void closeDrawing();
  // Saves under a path, or where the drawing came from when the path is empty.
  platform::Result<void> saveDrawing(const std::string& path);
  AcDbDatabase* database() const { return database_.get(); }
  const std::string& drawingPath() const { return path_; }
  // Why this drawing cannot be saved in its version as it is, and which version can; empty if it
  // can.
  std::string versionProblem() const;

  // --- modules
  // Loads a module and sends it the initialisation message. The error says why it is not there.
  platform::Result<void> loadModule(const std::string& path);
  // Makes a command of the group of an export of the module loaded last. False when it has no such
  // export, or another command has the name.
  bool addExport(std::u16string_view group, const ExportedCommand& command);
  void unloadModules();
  // An exported function of a loaded module, or null.
  template <class Function>
  Function* moduleFunction(const char* name) const {
    return reinterpret_cast<Function*>(moduleSymbol(name));
  }
  const std::u16string& runningModule() const { return runningModule_; }

  // --- commands
  // Runs one command by its global or local name (any letter case, leading '_' or '-' ignored),
  // then what was posted meanwhile.
  RunResult run(std::u16string_view name);
  // Asks for commands and runs them until the user quits, input ends, or `more`, asked before each
  // command, says no.
  void commandLoop(const std::function<bool()>& more = {});
  const std::map<std::u16string, Command>& commands() const { return commands_; }
  bool addCommand(Command command);
  bool removeGroup(std::u16string_view group);
  void post(std::u16string_view line) { posted_.emplace_back(line); }
  void requestQuit() { quit_ = true; }
  bool quitRequested() const { return quit_; }
  // What commands left open or unreleased since the last call; empty when all was well.
  std::string takeLeaks();

  // --- variables and symbols
  void setSymbol(std::u16string_view name, std::u16string_view value);
  std::map<std::u16string, std::u16string> symbols;
  std::map<std::u16string, std::u16string> variables;

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
  std::vector<std::u16string> initKeywords;

 private:
  Session();
  void* moduleSymbol(const char* name) const;
  void sendToModules(AcRx::AppMsgCode message);
  void runPosted();
  void checkLeaks(std::u16string_view command);
  void registerHostCommands();
  void setDrawing(std::unique_ptr<AcDbDatabase> database, const std::string& path);

  struct Module {
    std::u16string path;
    platform::DynamicLibrary library;
    AcRx::AppRetCode (*entry)(AcRx::AppMsgCode, void*) = nullptr;
  };
  ui::Frontend* frontend_ = nullptr;
  std::unique_ptr<AcDbDatabase> database_;
  std::string path_;
  std::vector<Module> modules_;
  std::u16string runningModule_;
  std::map<std::u16string, Command> commands_;
  std::vector<std::u16string> posted_;
  std::vector<std::unique_ptr<std::vector<AcDbObjectId>>> selections_;
  int liveSelections_ = 0;
  bool quit_ = false;
  std::string leaks_;
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
