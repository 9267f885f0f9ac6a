#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "module/dialogs/elenco_reti.h"
#include "module/dialogs/inp_files.h"
#include "module/host/messages.h"
#include "module/host/module.h"
#include "module/inp/collection.h"
#include "module/inp/csv_writer.h"
#include "module/inp/inp_export.h"
#include "module/inp/inp_writer.h"
#include "module/inp/schematic_network.h"
#include "module/network/settings_store.h"
#include "platform/files.h"

namespace vessora {

namespace {

// The settings of a network, which get a record of default ones when the drawing has none yet.
// Those defaults keep their empty name: the record is one of no network.
EpaSettings settingsOf(std::u16string_view network) {
  EpaSettings settings;
  if (!LoadSettings(settings, network)) SaveSettings(settings, true);
  return settings;
}

// The proposed folder is part of no installation; one that the user chose exists.
void makeProposedFolder(std::u16string_view path) {
  const std::u16string proposed = DlgExpInp::proposedFolder();
  if (path.substr(0, proposed.size()) != proposed) return;
  std::error_code failed;  // the writer will tell that the file cannot be opened
  std::filesystem::create_directories(platform::nativePath(proposed), failed);
}

// What the writers return is not looked at: they have told the user themselves.
void exportNetwork(const DlgExpInp& dialog) {
  acdbRegApp(app::kSettings);
  const EpaSettings settings = settingsOf(currentNetwork);
  EpaNetwork network;
  CollectNetwork(currentNetwork, network);
  WriteNetworkInp(dialog.path.value(), network, settings);
  if (dialog.csv.value()) WriteNetworkCsv(dialog.csvPath(), network, settings);
}

// False when the drawing has a fault that the user has to mend first; he has been told.
bool exportSchematicNetwork(const DlgExpInp& dialog) {
  constexpr const char16_t* kFormulas[] = {u"D-W", u"H-W", u"M-C"};
  SchematicNetwork network;
  if (const char16_t* fault = collectSchematicNetwork(currentNetwork, network)) {
    showMessage(TraduciTesto(fault));
    return false;
  }
  WriteSchemaInp(dialog.path.value(), network.juncs, network.resvs, network.pipes, network.coords,
                 network.vertices, kFormulas[resistanceFormulaIndex]);
  return true;
}

int exportChosenNetwork() {
  DlgExpInp dialog;
  if (!dialog.doModal()) return kAbandoned;
  if (!dialog.path.value().empty()) {
    makeProposedFolder(dialog.path.value());
    if (!schema::isAqueductName(currentNetwork)) {
      exportNetwork(dialog);
    } else if (!exportSchematicNetwork(dialog)) {
      return kAbandoned;
    }
  }
  showMessage(TraduciTesto(u"Esportazione completata!"));
  return kRan;
}

}  // namespace

std::int64_t writeInpOf(std::u16string_view path, std::u16string_view network) {
  if (!acdbHostApplicationServices()->workingDatabase()) return 0;
  acdbRegApp(app::kSettings);
  const EpaSettings settings = settingsOf(network);
  EpaNetwork records;
  CollectNetwork(network, records);
  return WriteNetworkInp(path, records, settings);
}

int EpaCommands::expinp() {
  if (!readInstallPath(installPath)) return kAbandoned;
  if (!chooseNetwork(AqueductNetworks::accepted)) return kAbandoned;
  const int result = exportChosenNetwork();
  networkNames.clear();
  return result;
}

}  // namespace vessora
