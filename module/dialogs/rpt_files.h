// The dialogs that ask for the report to import and for one of its periods.
#pragma once

#include <string>
#include <vector>

#include "module/dialogs/toolkit.h"

namespace vessora {

// Asks for the report; opens empty. An empty path after OK asks for the removal of results.
class Dlgimprpt : public ModuleDialog {
 public:
  Dlgimprpt()
      : ModuleDialog(u"Importa file RPT di Epanet",
                     u"_Comando_Importa_file_RPT_di_Epanet_imprpt_.htm") {}

  ui::Text path{this, u"", {.name = u"Percorso", .capacity = 1000}};
  ui::Button browse{this, u"Sfoglia...", &Dlgimprpt::onBrowse};
  ui::Label nameNote{this, u"N.B.: Il nome del file RPT deve coincidere con il nome della rete!"};
  ui::Label clearNote{this, u"Non caricare alcun file per cancellare i risultati attuali."};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};
  ui::Button help{this, u"?", {.role = ui::Role::help}};

 private:
  void onBrowse();
};

// Asks for one of `steps`, which must outlive the dialog. After OK period() is the one of the
// selected row, or empty when no row was selected.
class DlgRptMult : public ModuleDialog {
 public:
  explicit DlgRptMult(const std::vector<std::u16string>& steps)
      : ModuleDialog(u"Importazione Risultati (Time Steps)"), steps_(steps) {}

  ui::Group periodsBox{this, u"Periodi di simulazione"};
  ui::Label prompt{&periodsBox, u"Scegliere un periodo da importare:"};
  ui::ReportList periods{
      &periodsBox, u"", {.name = u"Periodi", .columns = {{.title = u"Step"}, {.title = u"Ora"}}}};
  ui::Button import{this, u"Importa", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};

  const std::u16string& period() const { return period_; }

  void onInit() override;
  void onOk() override;

 private:
  const std::vector<std::u16string>& steps_;
  std::u16string period_;
};

}  // namespace vessora
