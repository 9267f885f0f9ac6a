// The module as its host meets it: process-wide values and the command bodies.
#pragma once

#include <string>
#include <string_view>

#include "module/host/host_drawing.h"
#include "platform/wide.h"

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

// The object whose operations are the command bodies, made on the stack of an export for the span
// of one command. `database` is set by the export; the others belong to the add command. Bodies end
// with 0 when the command ran and 3 when it was abandoned.
class EpaCommands {
 public:
  AcDbDatabase* database = nullptr;
  double roughness = 0, diameter = 0;
  std::u16string material;

#define VESSORA_COMMAND(name, needs, help) int name();
#define VESSORA_PENDING VESSORA_COMMAND
#include "module/host/commands.def"
#undef VESSORA_PENDING
#undef VESSORA_COMMAND
};
constexpr int kRan = 0, kAbandoned = 3;

// The product root from hn-cpath into `path`: every command begins by reading it into installPath.
// False, with `path` as it was, when the symbol is unknown or empty.
bool readInstallPath(std::u16string& path);
// Starts the help launcher on a topic, without waiting.
void showHelp(std::u16string_view topic);

// Applications with extended data of a network.
namespace app {
inline constexpr char16_t kImport[] = u"HN-C_EPAHNIMPORT";
inline constexpr char16_t kMaterial[] = u"HN-C_MATEPA";
inline constexpr char16_t kNodeResult[] = u"HN-C_NODE_RESULT";
inline constexpr char16_t kLinkResult[] = u"HN-C_LINK_RESULT";
inline constexpr char16_t kPeriod[] = u"HN-C_PERIOD_RPT";
inline constexpr char16_t kColor[] = u"HN-C_EPA_COLOR";
inline constexpr char16_t kSettings[] = u"HN-C_EPA_IMPOSTAZIONI";
inline constexpr char16_t kPattern[] = u"HN-C_EPA_PATTERN";
inline constexpr char16_t kCurve[] = u"HN-C_EPA_CURVE";
inline constexpr char16_t kSchema[] = u"HN-SCHEMA_RETE-ACQ";
}  // namespace app

// Layers of a network: prefix and name, with nothing between.
namespace layer {
inline constexpr char16_t kJunc[] = u"JUNC-";
inline constexpr char16_t kResv[] = u"RESV-";
inline constexpr char16_t kTank[] = u"TANK-";
inline constexpr char16_t kPipe[] = u"PIPE-";
inline constexpr char16_t kPump[] = u"PUMP-";
inline constexpr char16_t kValv[] = u"VALV-";
inline constexpr char16_t kFlowIn[] = u"Q-IN-";
inline constexpr char16_t kFlowOut[] = u"Q-OUT-";
inline constexpr char16_t kReserved[] = u"HN-RISERVATO";
std::u16string of(std::u16string_view prefix, std::u16string_view network);
}  // namespace layer

}  // namespace vessora
