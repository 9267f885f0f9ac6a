// The module as its host meets it: process-wide values and the command bodies.
#pragma once

#include <string>
#include <string_view>

#include "module/host/host_drawing.h"
#include "platform/wide.h"
#include "schema/element.h"
#include "schema/names.h"

namespace vessora {

using platform::wide256;
using platform::wide50;

// Process-wide values that commands share.
extern std::u16string installPath;                // product root from hn-cpath, ends in a separator
extern wide256 currentNetwork;                    // the network a command works on
extern std::vector<std::u16string> networkNames;  // filled by ListNetworks
extern wide256 defaultNetwork;                    // the flagged one, empty when none is
extern wide256 selectedNetwork;                   // last choice in CDlgElencoReti
extern int resistanceFormulaIndex;                // 0 "D-W", 1 "H-W", 2 "M-C"

struct ElementNames;

// The object whose operations are the command bodies, made on the stack of an export for the span
// of one command. `database` is set by the export; the others belong to the add command. Bodies end
// with 0 when the command ran and 3 when it was abandoned.
class EpaCommands {
 public:
  AcDbDatabase* database = nullptr;
  double roughness = 0, diameter = 0;
  std::u16string material;

  // Branches of the add command (editing/add_link.cpp): a link between two picked nodes of the
  // currentNetwork. `names` are those of its elements so far, and get the link's.
  void AddPipe(ElementNames& names);
  void AddPump(ElementNames& names);
  void AddValve(ElementNames& names);

#define VESSORA_COMMAND(name, needs, help) int name();
#include "module/host/commands.def"
#undef VESSORA_COMMAND
};
constexpr int kRan = 0, kAbandoned = 3;

// The product root from hn-cpath into `path`: every command begins by reading it into installPath.
// False, with `path` as it was, when the symbol is unknown or empty.
bool readInstallPath(std::u16string& path);
// Starts the help launcher on a topic, without waiting.
void showHelp(std::u16string_view topic);

namespace app = schema::app;
namespace layer = schema::layer;

}  // namespace vessora
