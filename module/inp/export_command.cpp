// The export of a network: the job, the command that asks for the files and tells what became of
// them, and the export that other modules call.
#include "module/dialogs/elenco_reti.h"
#include "module/dialogs/inp_files.h"
#include "module/host/messages.h"
#include "module/host/module.h"
#include "module/host/tell.h"
#include "module/inp/collection.h"
#include "module/inp/csv_writer.h"
#include "module/inp/full_export.h"
#include "module/inp/inp_export.h"
#include "module/inp/inp_jobs.h"
#include "module/inp/inp_writer.h"
#include "module/inp/schematic_network.h"
#include "module/inp/text_output.h"
#include "module/network/settings_store.h"
#include "platform/files.h"

namespace vessora {

// --- the job -------------------------------------------------------------------------------------

namespace {

// The settings of a network, which get a record of default ones when the drawing has none yet.
// Those defaults keep their empty name: the record is one of no network.
EpaSettings settingsOf(std::u16string_view network) {
  EpaSettings settings;
  if (!LoadSettings(settings, network)) SaveSettings(settings, true);
  return settings;
}

// The listing is the classic one: it shows what is drawn.
void exportFull(const ExportRequest& request, ExportResult& result) {
  const auto text = fullText(request, result);
  if (!text) {
    result.stopped = true;
    return;
  }
  auto file = TextOutput::open(request.path, result.notices);
  if (!file) return;
  file->write(*text);
  result.written = file->close(result.notices) == 1;
  if (!result.written || request.csvPath.empty()) return;
  EpaNetwork network;
  Notices unheard;
  CollectNetwork(request.network, network, unheard);
  result.listed =
      WriteNetworkCsv(request.csvPath, network, settingsOf(request.network), result.notices) == 1;
}

void exportReal(const ExportRequest& request, ExportResult& result) {
  if (inpIsFull()) return exportFull(request, result);
  acdbRegApp(app::kSettings);
  const EpaSettings settings = settingsOf(request.network);
  EpaNetwork network;
  CollectNetwork(request.network, network, result.notices);
  result.written = WriteNetworkInp(request.path, network, settings, result.notices) == 1;
  if (request.csvPath.empty()) return;
  result.listed = WriteNetworkCsv(request.csvPath, network, settings, result.notices) == 1;
}

void exportSchematic(const ExportRequest& request, ExportResult& result) {
  constexpr const char16_t* kFormulas[] = {u"D-W", u"H-W", u"M-C"};
  SchematicNetwork network;
  if (const auto fault = collectSchematicNetwork(request.network, request.formula, network)) {
    result.stopped = true;
    result.notices.push_back({*fault});
    return;
  }
  result.written =
      WriteSchemaInp(request.path, network.juncs, network.resvs, network.pipes, network.coords,
                     network.vertices, kFormulas[request.formula], result.notices) == 1;
}

}  // namespace

ExportResult exportNetwork(const ExportRequest& request) {
  ExportResult result;
  if (schema::isAqueductName(request.network)) {
    exportSchematic(request, result);
  } else {
    exportReal(request, result);
  }
  return result;
}

// Any name is that of a real network here. What goes wrong is told as the command tells it.
std::int64_t writeInpOf(std::u16string_view path, std::u16string_view network) {
  if (!acdbHostApplicationServices()->workingDatabase()) return 0;
  ExportResult result;
  exportReal({.network = network, .path = path, .csvPath = {}}, result);
  tell(result.notices);
  return result.written ? 1 : 0;
}

// --- the command ---------------------------------------------------------------------------------

namespace {

// The proposed folder is part of no installation; one that the user chose exists. Where it cannot
// be made the writer will tell that the file cannot be opened.
void makeProposedFolder(std::u16string_view path) {
  const std::u16string proposed = DlgExpInp::proposedFolder();
  if (path.starts_with(proposed)) platform::makeFolders(platform::nativePath(proposed));
}

int exportChosenNetwork() {
  DlgExpInp dialog;
  if (!dialog.doModal()) return kAbandoned;
  if (!dialog.path.value().empty()) {
    makeProposedFolder(dialog.path.value());
    const ExportResult result = exportNetwork(
        {currentNetwork, dialog.path.value(),
         dialog.csv.value() ? std::u16string_view(dialog.csvPath()) : u"", resistanceFormulaIndex});
    tell(result.notices);
    if (result.stopped) return kAbandoned;
  }
  showMessage(TraduciTesto(u"Esportazione completata!"));
  return kRan;
}

}  // namespace

int EpaCommands::expinp() {
  if (!readInstallPath(installPath)) return kAbandoned;
  if (!chooseNetwork(AqueductNetworks::accepted)) return kAbandoned;
  const int result = exportChosenNetwork();
  networkNames.clear();
  return result;
}

}  // namespace vessora
