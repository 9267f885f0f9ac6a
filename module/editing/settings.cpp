// The settings that the next export of a network writes: the job and the command that edits them.
#include <algorithm>

#include "module/dialogs/elenco_reti.h"
#include "module/dialogs/epa_calc.h"
#include "module/editing/settings_jobs.h"
#include "module/host/warnings.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/settings_store.h"

namespace vessora {

// --- the job -------------------------------------------------------------------------------------

EpaSettings settingsOf(std::u16string_view network) {
  EpaSettings settings;
  settings.name = network;
  LoadSettings(settings, network);
  return settings;
}

Notices storeSettings(EpaSettings settings) {
  EpaSettings stored;
  const bool there = LoadSettings(stored, settings.name);
  Notices warnings;
  if (there && inpIsFull() && settings == stored) return warnings;
  SaveSettings(settings, !there);
  if (settings.energyPattern.empty()) return warnings;
  std::vector<EpaPattern> patterns;
  LoadPatterns(patterns, settings.name);
  const bool known = std::any_of(patterns.begin(), patterns.end(), [&](const EpaPattern& pattern) {
    return pattern.id == settings.energyPattern.str();
  });
  if (!known) warnings.push_back({NoticeCode::energyPatternMissing, settings.energyPattern.str()});
  return warnings;
}

// --- the command ---------------------------------------------------------------------------------

namespace {

// A stored time that no picker can show ends the command.
bool timesCanBeShown(const EpaSettings& s) {
  for (const wide50* time : {&s.duration, &s.hydraulicStep, &s.qualityStep, &s.patternStep,
                             &s.patternStart, &s.reportStep, &s.reportStart, &s.startClock}) {
    if (pickedTime(*time)) continue;
    acutPrintf(TraduciTesto(u"\nTempo non valido nelle impostazioni della rete: %s"), time->str());
    return false;
  }
  return true;
}

}  // namespace

int EpaCommands::epacalc() {
  if (!readInstallPath(installPath)) return kAbandoned;
  acdbRegApp(app::kSettings);
  if (!chooseNetwork(AqueductNetworks::refused)) return kAbandoned;
  networkNames.clear();
  EpaSettings settings = settingsOf(currentNetwork);
  if (!timesCanBeShown(settings)) return kAbandoned;
  DlgEpaCalc dialog(settings);
  if (!dialog.doModal()) return kAbandoned;
  resistanceFormulaIndex = dialog.headloss.selected();
  warn(storeSettings(settings));
  return kRan;
}

}  // namespace vessora
