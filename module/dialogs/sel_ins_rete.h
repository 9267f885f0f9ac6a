// The choice of a network, the making of a new one, and which one is the default.
#pragma once

#include "module/dialogs/toolkit.h"

namespace vessora {

// Lists networkNames, sorted. The caller sets `hasNetworks` and `defaultNetwork` and reads them and
// selectedNetwork after OK: the name of a new network, which no one looks at here, or the line
// taken from the list. Nothing of it reaches the drawing.
class DlgSelInsRete : public ModuleDialog {
 public:
  static constexpr int kNewNetwork = 0, kListedNetwork = 1;

  DlgSelInsRete()
      : ModuleDialog(u"Seleziona/Aggiungi rete Epanet",
                     u"_Comando_Aggiungi_elemento_rete_hnaddepa_.htm") {}

  bool hasNetworks = false;
  std::u16string defaultNetwork;
  bool selectionMade = false;  // set by OK: selectedNetwork is a line of the list

  ui::RadioGroup choice{
      this,
      u"",
      {.name = u"Scelta", .items = {u"Nome nuova rete", u"Scegli rete esistente"}},
      &DlgSelInsRete::enableChosen};
  ui::Text newName{this, u"", {.name = u"Nuova rete"}};
  ui::ListBox networks{
      this, u"", {.name = u"Reti", .order = ui::Order::sorted, .translate = false}};
  ui::Button makeDefault{this, u"Imposta come predefinita", &DlgSelInsRete::onMakeDefault};
  ui::Label defaultLine{this, u"Rete predefinita:", {.name = u"Rete predefinita"}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};
  ui::Button help{this, u"?", {.role = ui::Role::help}};

  void onInit() override;
  void onOk() override;

 private:
  void enableChosen();
  void onMakeDefault();
  void showDefault();
};

}  // namespace vessora
