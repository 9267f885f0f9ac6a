// What the command that draws tables asks for.
#pragma once

#include "module/dialogs/toolkit.h"

namespace vessora {

class DlgTables : public ModuleDialog {
 public:
  DlgTables() : ModuleDialog(u"Disegna Tabelle", u"_Comando_Disegna_tabelle_epatables_.htm") {}

  ui::Real rowHeight{this, u"Altezza delle righe [u.d.]", {.initial = 2.0}};
  ui::Real columnWidth{this, u"Larghezza delle colonne [u.d.]", {.initial = 15.0}};

  ui::Check pipes{this, u"Dati Rami", {.initial = true}, &DlgTables::onPipes};
  ui::Group pipeRows{this, u"Dati Rami"};
  ui::Check length{&pipeRows, u"Lunghezza", {.initial = true}};
  ui::Check diameter{&pipeRows, u"Diametro", {.initial = true}};
  ui::Check roughness{&pipeRows, u"Scabrezza", {.initial = true}};
  ui::Check minorLoss{&pipeRows, u"Perdita loc.", {.initial = true}};
  ui::Check pipeStatus{&pipeRows, u"Stato", {.initial = true}};

  ui::Check nodes{this, u"Risultati Nodi", {}, &DlgTables::onNodes};
  ui::Group nodeRows{this, u"Risultati Nodi"};
  ui::Check demand{&nodeRows, u"Portata"};
  ui::Check head{&nodeRows, u"Carico"};
  ui::Check pressure{&nodeRows, u"Pressione"};
  ui::Check quality{&nodeRows, u"Qualità"};

  ui::Check links{this, u"Risultati Rami", {}, &DlgTables::onLinks};
  ui::Group linkRows{this, u"Risultati Rami"};
  ui::Check flow{&linkRows, u"Portata"};
  ui::Check velocity{&linkRows, u"Velocità"};
  ui::Check headloss{&linkRows, u"Perdità Distr."};
  ui::Check linkStatus{&linkRows, u"Stato"};

  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};
  ui::Button help{this, u"?", {.role = ui::Role::help}};

  // Why the sizes cannot be used, untranslated; null when they can.
  const char16_t* fault() const;

 private:
  // A click on a box that heads a group flips each box below it by itself.
  void onPipes() { flip({&length, &diameter, &roughness, &minorLoss, &pipeStatus}); }
  void onNodes() { flip({&demand, &head, &pressure, &quality}); }
  void onLinks() { flip({&flow, &velocity, &headloss, &linkStatus}); }
  static void flip(std::initializer_list<ui::Check*> boxes);
};

}  // namespace vessora
