#include "module/dialogs/epa_calc.h"

#include "module/network/settings_store.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {
std::optional<PickedTime> pickedTime(std::u16string_view text) {
  if (text.find(u' ') != text.npos) return PickedTime();
  // "1:00:00" as well, which files have.
  const std::u16string full = text.size() == 7 ? u"0" + std::u16string(text) : withSeconds(text);
  const std::size_t digits = full.size() == 9 ? 3 : 2;  // of the hours
  const std::u16string_view whole(full);
  const int hours = platform::wtoi(whole.substr(0, digits));
  const int minutes = whole.size() > digits + 1 ? platform::wtoi(whole.substr(digits + 1, 2)) : 0;
  if (hours < 0 || minutes < 0 || minutes > 59) return std::nullopt;
  return PickedTime{hours / 24, {hours % 24, minutes}};
}

template <class Visit>
void DlgEpaCalc::forEachTime(Visit visit) {
  visit(duration, settings_.duration);
  visit(hydraulicStep, settings_.hydraulicStep);
  visit(qualityStep, settings_.qualityStep);
  visit(patternStep, settings_.patternStep);
  visit(patternStart, settings_.patternStart);
  visit(reportStep, settings_.reportStep);
  visit(reportStart, settings_.reportStart);
  visit(startClock, settings_.startClock);
}

template <class Visit>
void DlgEpaCalc::forEachNumber(Visit visit) {
  visit(specificGravity, settings_.specificGravity);
  visit(viscosity, settings_.viscosity);
  visit(trials, settings_.trials);
  visit(accuracy, settings_.accuracy);
  visit(defaultPattern, settings_.defaultPattern);
  visit(demandMultiplier, settings_.demandMultiplier);
  visit(emitterExponent, settings_.emitterExponent);
  visit(diffusivity, settings_.diffusivity);
  visit(bulkOrder, settings_.bulkOrder);
  visit(globalBulk, settings_.globalBulk);
  visit(globalWall, settings_.globalWall);
  visit(limitingPotential, settings_.limitingPotential);
  visit(roughnessCorrelation, settings_.roughnessCorrelation);
  visit(globalEfficiency, settings_.globalEfficiency);
  visit(globalPrice, settings_.globalPrice);
  visit(demandCharge, settings_.demandCharge);
  if (full_) visit(tolerance, settings_.tolerance);
}

template <class Visit>
void DlgEpaCalc::forEachList(Visit visit) {
  visit(headloss, settings_.headloss);
  visit(unbalanced, settings_.unbalanced);
  visit(parameter, settings_.qualityParam);
  visit(wallOrder, settings_.wallOrder);
}

DlgEpaCalc::DlgEpaCalc(EpaSettings& settings)
    : ModuleDialog(u"Impostazioni Rete Epanet", u"_Comando_Calcola_rete_epacalc_.htm"),
      settings_(settings) {
  forEachNumber([](auto& field, auto value) { field = value; });
  energyPattern = settings.energyPattern.str();
  if (full_) traceNode = settings.traceNode.str();
  forEachTime([this](ui::TimePicker& picker, const wide50& text) {
    const PickedTime picked = pickedTime(text).value_or(PickedTime());
    picker.set(picked.time);
    if (&picker == &duration) days = picked.days;
  });
}

void DlgEpaCalc::onInit() {
  ModuleDialog::onInit();
  headloss.select(headloss.findSame(settings_.headloss));
  unbalanced.select(unbalanced.findSame(settings_.unbalanced));
  parameter.select(parameter.findSame(settings_.qualityParam));
  if (parameter.selected() < 0) parameter.setText(settings_.qualityParam);
  const std::u16string order = settings_.wallOrder.str();
  wallOrder.select(wallOrder.findSame(order == u"1" ? u"First" : order == u"0" ? u"Zero" : order));
  noteOpened();
}

// Pickers have neither seconds nor days, and what the user has not set stays: the days alone do not
// take the seconds.
void DlgEpaCalc::takeDuration() {
  if (!isWanted(days) && !isWanted(duration)) return;
  std::u16string text =
      platform::format(u"%02d:%02d", duration.value().hour, duration.value().minute);
  const std::u16string stored = settings_.duration.str();
  const std::size_t last = stored.rfind(u':');
  if (!isWanted(duration) && last != stored.find(u':')) text += stored.substr(last);
  settings_.durationDays = days.value();
  settings_.duration = text;
}

void DlgEpaCalc::onOk() {
  if (!updateData()) return;
  forEachList([this](const ui::Choice& field, auto& text) {
    if (isWanted(field)) text = field.text();
  });
  forEachNumber([this](const auto& field, auto& value) {
    if (isWanted(field)) value = field.value();
  });
  if (isWanted(energyPattern)) settings_.energyPattern = energyPattern.value();
  if (full_ && isTouched(traceNode)) settings_.traceNode = traceNode.value();
  takeDuration();
  forEachTime([this](const ui::TimePicker& picker, wide50& text) {
    if (&picker == &duration || !isWanted(picker)) return;
    text = platform::format(u"%02d:%02d", picker.value().hour, picker.value().minute);
  });
  end(ui::Outcome::ok);
}

void DlgEpaCalc::onCancel() {
  updateData();
  ModuleDialog::onCancel();
}

}  // namespace vessora
