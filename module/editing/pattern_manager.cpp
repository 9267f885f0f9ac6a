// The command that manages the patterns and curves of the default network.
#include "module/dialogs/gest_ptn.h"
#include "module/editing/table_jobs.h"
#include "module/host/messages.h"
#include "module/host/warnings.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/settings_store.h"

namespace vessora {

namespace {

constexpr char16_t kProduct[] = u"Vessora";

bool hasDefaultNetwork() {
  ListNetworks(networkNames, defaultNetwork);
  if (networkNames.empty()) {
    showMessage(TraduciTesto(u"Nessuna rete di acquedotto presente!"), kProduct);
    return false;
  }
  if (defaultNetwork.empty()) {
    showMessage(TraduciTesto(u"Nessuna rete di default impostata!"), kProduct);
    return false;
  }
  return true;
}

RecordStore<EpaPattern> patternsOf(std::u16string_view network) {
  RecordStore<EpaPattern> store{
      {},
      [=](const EpaPattern& added) { warn(addPattern(network, added).warnings); },
      [=](const EpaPattern& changed, std::u16string_view oldName) {
        warn(replacePattern(network, changed, oldName).warnings);
      },
      [=](std::u16string_view name) { warn(deletePattern(network, name).warnings); }};
  LoadPatterns(store.records, network);
  return store;
}

RecordStore<EpaCurve> curvesOf(std::u16string_view network) {
  RecordStore<EpaCurve> store{
      {},
      [=](const EpaCurve& added) { warn(addCurve(network, added).warnings); },
      [=](const EpaCurve& changed, std::u16string_view oldName) {
        warn(replaceCurve(network, changed, oldName).warnings);
      },
      [=](std::u16string_view name) { warn(deleteCurve(network, name).warnings); }};
  LoadCurves(store.records, network);
  return store;
}

}  // namespace

int EpaCommands::hnsetpat() {
  if (!readInstallPath(installPath)) return kAbandoned;
  for (const char16_t* application : {app::kSettings, app::kPattern, app::kCurve}) {
    acdbRegApp(application);
  }
  if (!hasDefaultNetwork()) return kAbandoned;
  const std::u16string network = defaultNetwork.str();
  RecordStore<EpaPattern> patterns = patternsOf(network);
  RecordStore<EpaCurve> curves = curvesOf(network);
  DlgGest_PTN(patterns, curves).doModal();
  networkNames.clear();
  return kRan;
}

}  // namespace vessora
