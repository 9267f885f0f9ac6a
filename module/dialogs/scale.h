// What the command that scales symbols and tables asks for.
#pragma once

#include "module/dialogs/toolkit.h"

namespace vessora {

class DlgScale : public ModuleDialog {
 public:
  DlgScale()
      : ModuleDialog(u"Scala Tabelle/Simboli", u"_Comando_Scala_Tabelle_Simboli_epascale_.htm") {}

  ui::Group symbolGroup{this, u"Simboli"};
  ui::Check symbols{
      &symbolGroup, u"", {.name = u"Scala simboli", .initial = true}, &DlgScale::onSymbols};
  ui::Real symbolFactor{&symbolGroup, u"Fattore di scala Simboli", {.initial = 1.0}};
  ui::Group tableGroup{this, u"Tabelle"};
  ui::Check tables{
      &tableGroup, u"", {.name = u"Scala tabelle", .initial = true}, &DlgScale::onTables};
  ui::Real tableFactor{&tableGroup, u"Fattore di scala Tabelle", {.initial = 1.0}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};
  ui::Button help{this, u"?", {.role = ui::Role::help}};

 private:
  // A field goes by what its box held when the dialog was last read, which no click does: the first
  // click on a set box disables the field for good, whatever the box shows afterwards.
  void onSymbols() { symbolFactor.setEnabled(!symbols.value()); }
  void onTables() { tableFactor.setEnabled(!tables.value()); }
};

}  // namespace vessora
