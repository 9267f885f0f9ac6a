// The dialogs that ask for the INP file to write and to read.
#pragma once

#include "module/dialogs/toolkit.h"

namespace vessora {

// Opens with a path made of the product root and currentNetwork. After OK `path` is the INP file,
// csvPath() the listing beside it, and the formula's index stands in resistanceFormulaIndex.
class DlgExpInp : public ModuleDialog {
 public:
  DlgExpInp()
      : ModuleDialog(u"Esporta file INP di Epanet",
                     u"_Comando_Esporta_file_INP_di_Epanet_expinp_.htm") {}

  ui::Check csv{this, u"Esporta anche file csv"};
  ui::Text path{this, u"", {.name = u"Percorso", .capacity = 1000, .enabled = false}};
  ui::Button browse{this, u"Sfoglia...", &DlgExpInp::onBrowse};
  // Out of reach: an export is always for the first formula.
  ui::Choice formula{
      this,
      u"Formula di resistenza da adottare",
      {.items = {u"D-W", u"H-W", u"M-C"}, .initial = 0, .translate = false, .visible = false}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};
  ui::Button help{this, u"?", {.role = ui::Role::help}};

  const std::u16string& csvPath() const { return csvPath_; }
  // The folder in which the dialog proposes to write, with its separator.
  static std::u16string proposedFolder();

  void onInit() override;
  void onOk() override;

 private:
  void onBrowse();
  std::u16string csvPath_;
};

// Asks for the INP file to read; opens empty.
class CDlgimpinp : public ModuleDialog {
 public:
  CDlgimpinp()
      : ModuleDialog(u"Importa file INP di Epanet",
                     u"_Comando_Importa_file_INP_di_Epanet_impinp_.htm") {}

  ui::Text path{this, u"", {.name = u"Percorso", .capacity = 1000}};
  ui::Button browse{this, u"Sfoglia...", &CDlgimpinp::onBrowse};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};
  ui::Button help{this, u"?", {.role = ui::Role::help}};

 private:
  void onBrowse();
};

}  // namespace vessora
