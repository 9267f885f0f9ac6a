// The simulation settings of one network.
#pragma once

#include "module/dialogs/toolkit.h"
#include "module/network/records.h"

namespace vessora {

// A stored time as the hour and minute of a picker and whole days. Seconds are lost, and a text
// with a blank anywhere (a clock time with AM or PM) is midnight.
struct PickedTime {
  int days = 0;
  ui::TimeOfDay time;
};
// Nothing for a text whose hours are below 0 or whose minutes are no minutes.
std::optional<PickedTime> pickedTime(std::u16string_view text);

// Edits the settings that it is given: OK writes into them, in full only what the user has changed,
// "Annulla" leaves them alone. All their times must be ones that pickedTime() takes. No field
// depends on another and none has a range.
class DlgEpaCalc : public ModuleDialog {
 public:
  explicit DlgEpaCalc(EpaSettings& settings);

  // --- hydraulics
  ui::Group hydraulics{this, u"Parametri Idraulici"};
  ui::Label flowUnits{&hydraulics, u"Udm Portata: l/s"};
  ui::Choice headloss{&hydraulics,
                      u"Formula di resistenza da adottare",
                      {.items = {u"D-W", u"H-W", u"M-C"}, .initial = 1, .translate = false}};
  ui::Real specificGravity{&hydraulics, u"Rapporto di densità"};
  ui::Real viscosity{&hydraulics, u"Viscosità cinematica [centistokes]"};
  ui::Integer trials{&hydraulics, u"N° max iterazioni"};
  ui::Real accuracy{&hydraulics, u"Precisione"};
  ui::Choice unbalanced{&hydraulics,
                        u"Mancata convergenza",
                        {.items = {u"Continue", u"Stop"}, .initial = 0, .translate = false}};
  ui::Real defaultPattern{&hydraulics, u"Pattern di default"};
  ui::Real demandMultiplier{&hydraulics, u"Moltiplicatore della domanda"};
  ui::Real emitterExponent{&hydraulics, u"Esponente Emitter"};

  // --- quality. The classic way tracer node and tolerance are shown and asked, and go nowhere.
  ui::Group quality{this, u"Parametri Qualità"};
  ui::Label qualityUnits{&quality, u"Udm Qualità: mg/l"};
  ui::Choice parameter{&quality,
                       u"Parametro Qualità",
                       {.items = {u"None", u"Chemical", u"Trace", u"Age"},
                        .initial = 0,
                        .freeText = true,
                        .translate = false}};
  ui::Real diffusivity{&quality, u"Diffusività relativa"};
  ui::Text traceNode{&quality, u"Nodo tracciante"};
  ui::Real tolerance{&quality, u"Tolleranza"};
  ui::Real bulkOrder{&quality, u"Bulk Order"};
  ui::Choice wallOrder{
      &quality, u"Wall Order", {.items = {u"First", u"Zero"}, .initial = 0, .translate = false}};
  ui::Real globalBulk{&quality, u"Coeff. globale Bulk"};
  ui::Real globalWall{&quality, u"Coeff. globale Wall"};
  ui::Real limitingPotential{&quality, u"Concentrazione limite"};
  ui::Real roughnessCorrelation{&quality, u"Coeff. correlazione Wall"};

  // --- times
  ui::Group times{this, u"Parametri Temporali"};
  ui::Label timeUnits{&times, u"Udm Tempo: h:m"};
  ui::Integer days{&times, u"gg"};
  ui::TimePicker duration{&times, u"Durata totale"};
  ui::TimePicker hydraulicStep{&times, u"Time Step Idraulico"};
  ui::TimePicker qualityStep{&times, u"Time Step Qualità"};
  ui::TimePicker patternStep{&times, u"Time Step Pattern"};
  ui::TimePicker patternStart{&times, u"Tempo iniziale Pattern"};
  ui::TimePicker reportStep{&times, u"Time Step Report"};
  ui::TimePicker reportStart{&times, u"Tempo iniziale Report"};
  ui::TimePicker startClock{&times, u"Ora iniziale"};

  // --- energy
  ui::Group energy{this, u"Energia"};
  ui::Real globalEfficiency{&energy, u"Efficienza Pompa [%]"};
  ui::Real globalPrice{&energy, u"Prezzo Energia [per Kwh]"};
  ui::Text energyPattern{&energy, u"Pattern Energia"};
  ui::Real demandCharge{&energy, u"Costo Aggiuntivo"};

  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};
  ui::Button help{this, u"?", {.role = ui::Role::help}};

  void onInit() override;
  void onOk() override;
  // Reads the fields first, so that a bad number is still complained of.
  void onCancel() override;

 private:
  template <class Visit>
  void forEachTime(Visit visit);
  template <class Visit>
  void forEachNumber(Visit visit);
  template <class Visit>
  void forEachList(Visit visit);
  bool isWanted(const ui::Control& control) const { return !full_ || isTouched(control); }
  void takeDuration();

  EpaSettings& settings_;
  const bool full_ = inpIsFull();
};

}  // namespace vessora
