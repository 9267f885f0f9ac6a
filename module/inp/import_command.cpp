#include "module/dialogs/inp_files.h"
#include "module/host/messages.h"
#include "module/host/module.h"
#include "module/inp/draw_network.h"
#include "module/inp/inp_reader.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/settings_store.h"

namespace vessora {

namespace {

// A network is named after its file: what stands between the last separator and the last four
// characters, which are taken for the extension.
std::u16string_view networkNameOf(std::u16string_view path) {
  const std::size_t separator = path.find_last_of(u"\\/");
  const std::u16string_view file = separator == path.npos ? path : path.substr(separator + 1);
  return file.substr(0, file.size() < 4 ? 0 : file.size() - 4);
}

struct Kind {
  const char16_t* prefix;
  int color;
  void (NetworkDrawing::*draw)(std::u16string_view layer);
};
constexpr Kind kKinds[] = {
    {layer::kJunc, 5, &NetworkDrawing::DrawJunctions},
    {layer::kResv, 5, &NetworkDrawing::DrawReservoirs},
    {layer::kTank, 5, &NetworkDrawing::DrawTanks},
    {layer::kPipe, 140, &NetworkDrawing::DrawPipes},
    {layer::kPump, 6, &NetworkDrawing::DrawPumps},
    {layer::kValv, 2, &NetworkDrawing::DrawValves},
};

void drawNetwork(const EpaNetwork& network) {
  NetworkDrawing drawing(network);
  for (const Kind& kind : kKinds) {
    const std::u16string name = layer::of(kind.prefix, currentNetwork);
    HNGeometry::createNewLayer(name);
    HNGeometry::setColorLtypeLayer(name, kind.color, u"ByLayer");
    (drawing.*kind.draw)(name);
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
  currentNetwork = networkNameOf(path);
  // A name of the aqueduct module's networks; its sixth character alone is no name yet.
  const std::u16string_view name = currentNetwork;
  if (name.size() > 6 && name.substr(0, 5) == u"HN-AQ") {
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
