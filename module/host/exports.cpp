// The exports by which commands and other modules of the family reach this module.
#include <cstdint>
#include <new>

#include "module/host/entry.h"
#include "module/host/module.h"
#include "module/host/translate.h"

namespace vessora {

namespace {

using Body = int (EpaCommands::*)();

// No exception may leave a module. The one that can arise is lack of memory.
void runBody(EpaCommands& commands, Body body) {
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
  ++commandNumber;
  commands.database = database;
  runBody(commands, body);
  endCommand();
  afxSetResourceHandle(resources);
}

}  // namespace

}  // namespace vessora

#define VESSORA_EXPORT extern "C" __attribute__((visibility("default")))
#define VESSORA_COMMAND(name) \
  VESSORA_EXPORT void name() { vessora::runCommand(&vessora::EpaCommands::name); }

VESSORA_COMMAND(hnaddepa)   // adds a network or an element
VESSORA_COMMAND(hnmatepa)   // edits the material table
VESSORA_COMMAND(hnmodepa)   // modifies an element
VESSORA_COMMAND(hnpzzpmod)  // transfers manholes from a profile to the model
VESSORA_COMMAND(hnsetmat)   // assigns a material to pipes
VESSORA_COMMAND(hnsetpat)   // manages patterns and curves
VESSORA_COMMAND(epaProf)    // draws a longitudinal profile
VESSORA_COMMAND(epacalc)    // edits the simulation settings
VESSORA_COMMAND(epapiezo)   // draws the piezometric line
VESSORA_COMMAND(epascale)   // rescales symbols and tables
VESSORA_COMMAND(epatables)  // draws network tables
VESSORA_COMMAND(expinp)     // exports an INP file
VESSORA_COMMAND(impinp)     // imports an INP file
VESSORA_COMMAND(imprpt)     // imports an RPT file
VESSORA_COMMAND(netvis)     // queries the network and its results

// Writes the INP file of a drawn network without a word to the user. 1 for written, else 0.
VESSORA_EXPORT std::int64_t ScriviInp(const char16_t* path, const char16_t* network) {
  if (!path || !network) return 0;
  try {
    return vessora::WriteInpOf(path, network);
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

// Queues the import of a report onto a network; the import runs as a command of its own.
VESSORA_EXPORT int ImportaRpt(const char16_t* path, const char16_t* network) {
  if (!path || !network) return RTERROR;
  try {
    return vessora::QueueRptImport(path, network);
  } catch (const std::bad_alloc&) {
    return RTERROR;
  }
}
