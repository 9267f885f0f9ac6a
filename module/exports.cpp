// The exports by which commands and other modules of the family reach this module.
#include <cstdint>
#include <new>

#include "module/entry.h"
#include "module/host/command_span.h"
#include "module/host/module.h"
#include "module/host/translate.h"
#include "module/inp/inp_export.h"
#include "module/results/route.h"

namespace vessora {

namespace {

using Body = int (EpaCommands::*)();

// No exception may leave a module. The one that can arise is lack of memory.
void runBody(EpaCommands& commands, Body body) {
  const CommandSpan span;
  try {
    (commands.*body)();
  } catch (const std::bad_alloc&) {
    acutPrintf(TraduciTesto(u"\nMemoria insufficiente: comando interrotto."));
  }
}

// The fixed shape around every command. Without a drawing the resource handle stays this module's:
// hosts of the family count on that.
void runCommand(Body body) {
  EpaCommands commands;
  void* const resources = afxResourceHandle();
  afxSetResourceHandle(moduleInstance());
  AcDbDatabase* const database = acdbHostApplicationServices()->workingDatabase();
  if (!database) return;
  commands.database = database;
  runBody(commands, body);
  afxSetResourceHandle(resources);
}

}  // namespace

}  // namespace vessora

#define VESSORA_EXPORT extern "C" __attribute__((visibility("default")))
#define VESSORA_COMMAND(name, needs, help) \
  VESSORA_EXPORT void name() { vessora::runCommand(&vessora::EpaCommands::name); }
#include "module/host/commands.def"

// Writes the INP file of a drawn network without a word to the user. 1 for written, else 0.
VESSORA_EXPORT std::int64_t ScriviInp(const char16_t* path, const char16_t* network) {
  if (!path || !network) return 0;
  try {
    return vessora::writeInpOf(path, network);
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

// Queues the import of a report onto a network; the import runs as a command of its own.
VESSORA_EXPORT int ImportaRpt(const char16_t* path, const char16_t* network) {
  if (!path || !network) return RTERROR;
  try {
    return vessora::queueRptImport(path, network);
  } catch (const std::bad_alloc&) {
    return RTERROR;
  }
}
