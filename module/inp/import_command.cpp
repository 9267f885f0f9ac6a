#include "module/dialogs/inp_files.h"
#include "module/host/messages.h"
#include "module/host/module.h"
#include "module/inp/draw_network.h"
#include "module/inp/inp_reader.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/settings_store.h"

namespace vessora {

namespace {

struct Pass {
  const schema::Kind& kind;
  void (NetworkDrawing::*draw)(std::u16string_view layer);
};
constexpr Pass kPasses[] = {
    {schema::kJunc, &NetworkDrawing::DrawJunctions},
    {schema::kResv, &NetworkDrawing::DrawReservoirs},
    {schema::kTank, &NetworkDrawing::DrawTanks},
    {schema::kPipe, &NetworkDrawing::DrawPipes},
    {schema::kPump, &NetworkDrawing::DrawPumps},
    {schema::kValv, &NetworkDrawing::DrawValves},
};

void drawNetwork(const EpaNetwork& network) {
  NetworkDrawing drawing(network);
  for (const Pass& pass : kPasses) {
    const std::u16string name = schema::layerName(pass.kind.layer, currentNetwork);
    HNGeometry::createNewLayer(name);
    HNGeometry::setColorLtypeLayer(name, pass.kind.color, u"ByLayer");
    (drawing.*pass.draw)(name);
  }
  for (const EpaPattern& pattern : network.patterns) AddPattern(pattern, currentNetwork);
  for (const EpaCurve& curve : network.curves) AddCurve(curve, currentNetwork);
}

// Asks for the file and makes currentNetwork of its name. Where the answer does not do, the user is
// told and asked once more, and the command goes on with whatever stands in the dialog then.
bool askForFile(std::u16string& path) {
  CDlgimpinp dialog;
  if (!dialog.doModal()) return false;
  if (dialog.path.value().empty()) {
    showMessage(TraduciTesto(u"Percorso assente!"));
    dialog.doModal();
  }
  path = dialog.path.value();
  currentNetwork = schema::networkOfFile(path);
  // A name of the aqueduct module's networks; its sixth character alone is no name yet.
  const std::u16string_view name = currentNetwork;
  if (name.size() > 6 && schema::isAqueductName(name)) {
    showMessage(TraduciTesto(u"Nome del file non valido!"));
    dialog.doModal();
  }
  return true;
}

}  // namespace

int EpaCommands::impinp() {
  if (!readInstallPath(installPath)) return kAbandoned;
  EpaSettings settings;
  networkNames.clear();
  ListNetworks(networkNames, defaultNetwork);
  // The first network of a drawing is its default one.
  if (networkNames.empty()) settings.isDefault = 1;
  networkNames.clear();

  std::u16string path;
  if (!askForFile(path)) return kAbandoned;

  for (const char16_t* name : {app::kImport, app::kSettings, app::kPattern, app::kCurve}) {
    acdbRegApp(name);
  }
  settings.name = currentNetwork;
  EpaNetwork network;
  ReadInp(path, network, settings);
  SaveSettings(settings, true);
  drawNetwork(network);
  showMessage(TraduciTesto(u"Importazione terminata!"));
  return kRan;
}

}  // namespace vessora
