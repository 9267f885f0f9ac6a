// Dialogs of the kinds that commands need, for the tests of the dialog kit.
#pragma once

#include <string>
#include <vector>

#include "cad/ui/dialog.h"
#include "cad/ui/script_frontend.h"
#include "platform/format.h"
#include "platform/text.h"

namespace sample {

using namespace cad::ui;

// Typed fields with bounds, and an OK that goes through the field exchange.
class PipeDialog : public Dialog {
 public:
  PipeDialog() : Dialog(u"Ramo", u"_Ramo_") {}
  Text name{this, u"&Nome del ramo", {.capacity = 8}};
  Real length{this, u"Lunghezza [m]", {.min = 0.0001, .enabled = false}};
  Check custom{this, u"Abilita", {}, &PipeDialog::customClicked};
  Real diameter{this, u"Diametro [mm]", {.initial = 200, .min = 0.0001, .max = 3000}};
  Integer days{this, u"gg", {.min = 0, .max = 365}};
  Choice material{this,
                  u"Materiale",
                  {.items = {u"Nessun Materiale", u"PEAD", u"Ghisa"}, .initial = 0},
                  &PipeDialog::materialChosen};
  TimePicker start{this, u"Ora iniziale", {.initial = {12, 0}}};
  Button ok{this, u"OK", {.role = Role::ok, .isDefault = true}};
  Button cancel{this, u"Annulla", {.role = Role::cancel}};
  Button helpButton{this, u"?", {.role = Role::help}};
  int chosen = 0;

 private:
  void customClicked() { length.setEnabled(custom.checked()); }
  void materialChosen() {
    ++chosen;
    if (material.selected() == 2) material.select(0);  // snaps back, and fires nothing
  }
};

// A question in a small dialog over the large one.
class NameDialog : public Dialog {
 public:
  NameDialog() : Dialog(u"Materiale") {}
  Choice which{this, u"Nome", {.items = {u"PEAD", u"Ghisa"}, .initial = 0}};
  Button ok{this, u"Filtra", {.role = Role::ok}};
  Button cancel{this, u"Annulla", {.role = Role::cancel}};
};

// Groups in groups, labels that occur twice, report lists, a nested dialog, messages.
class QueryDialog : public Dialog {
 public:
  QueryDialog() : Dialog(u"Interroga Rete") {}
  Group nodes{this, u"Nodi"};
  ReportList list{
      &nodes,
      u"",
      {.name = u"Elenco nodi", .columns = {{u"Nodo", 148}, {u"Portata [l/s]"}, {u"Pressione [m]"}}},
      {},
      &QueryDialog::opened};
  Group pressure{&nodes, u"Pressione"};
  Real pressureMin{&pressure, u"> di"};
  Real pressureMax{&pressure, u"< di"};
  Button pressureFilter{&pressure, u"Filtra Nodi", &QueryDialog::filter};
  Group flow{&nodes, u"Portata"};
  Real flowMin{&flow, u"> di"};
  Button flowFilter{&flow, u"Filtra Nodi", &QueryDialog::warn};
  Group display{this, u""};
  RadioGroup classes{&display, u"N° colori filtro", {.items = {u"5", u"10"}}};
  Button byMaterial{this, u"Filtra per Materiale", &QueryDialog::filterMaterial};
  Button save{this, u"Esporta", &QueryDialog::exportRows};
  Button remove{this, u"Elimina...", &QueryDialog::removeAll};
  Button finish{this, u"OK", {.role = Role::ok}};

  std::u16string openedName, material, path;
  int rows = 3;

  void onInit() override {
    std::vector<ReportList::Row> all;
    for (int i = 1; i <= rows; ++i)
      all.push_back({platform::format(u"N%d", i), u"1.000", platform::format(u"%d.5", 10 * i)});
    list.setRows(all);
    list.setEnabled(!all.empty());
  }

 private:
  void opened() {
    openedName = list.shown();
    end(Outcome::ok);
  }
  void filter() {
    if (!updateData()) return;
    std::vector<ReportList::Row> kept;
    for (int i = 0; i < list.count(); ++i) {
      double value = platform::wtof(list.cell(i, 2));
      if (value > pressureMin.value() && value < pressureMax.value()) kept.push_back(list.row(i));
    }
    if (kept.empty()) return;
    list.setRows(kept);
    list.setBackground(Colour{255, 255, 0});
  }
  void warn() { say(u"Inserire un valore\nnumerico positivo!", Icon::warning); }
  void filterMaterial() {
    NameDialog question;
    if (question.run(frontend()) == Outcome::ok) material = question.which.value();
  }
  void exportRows() {
    path =
        frontend()
            .askFile({FileQuestion::Mode::save, u"", u"Results.csv", u"CSV Files (*.csv)|*.csv|"})
            .value_or(u"(niente)");
  }
  void removeAll() {
    if (say(u"Cancellare il pattern?", Icon::question, Buttons::yesNo) == Pressed::yes)
      list.clear();
  }
};

// A grid with the popup menu of the pattern editor.
class PatternGrid : public Grid {
 public:
  using Grid::Grid;
  std::vector<std::u16string> menu() const override {
    return {u"Copia", u"Incolla", u"Inserisci Riga", u"Elimina Riga"};
  }
  void number() {
    for (int r = 1; r < rowCount(); ++r) setCell(r, 0, platform::format(u"%d", r));
  }

 protected:
  void onMenu(int entry, Cell at) override {
    if (entry == 0) dialog().frontend().setClipboard(copied());
    if (entry == 1) paste(dialog().frontend().clipboard());
    if (entry == 2 && at.row >= 1) insertRow(at.row);
    if (entry == 3) deleteRow(at.row);
    number();
  }
};

class PatternDialog : public Dialog {
 public:
  PatternDialog() : Dialog(u"Patterns/Curve") {}
  Text name{this, u"Nome pattern"};
  Choice type{this,
              u"Tipo Curva",
              {.items = {u"VOLUME", u"PUMP"}, .initial = 0, .translate = false},
              &PatternDialog::retitle};
  PatternGrid grid{this,
                   u"",
                   {.columns = {{u"Periodo", 50, true}, {u"Moltiplicatore", 108}, {u"Nota", 80}},
                    .fixedColumns = 1}};
  Button ok{this, u"OK", {.role = Role::ok}};
  Button cancel{this, u"Annulla", {.role = Role::cancel}};
  void onInit() override {
    grid.setRowCount(1 + 4);
    grid.number();
  }

 private:
  void retitle() { grid.setColumnTitle(1, type.selected() == 1 ? u"Carico" : u"Volume"); }
};

// Networks, sorted.
class NetworkDialog : public Dialog {
 public:
  NetworkDialog() : Dialog(u"Selezionare una rete") {}
  ListBox networks{this, u"Reti", {.order = Order::sorted}};
  Button ok{this, u"OK", {.role = Role::ok}};
  Button cancel{this, u"Annulla", {.role = Role::cancel}};
  std::vector<std::u16string> names{u"rete", u"Borgo", u"Acquedotto"};
  void onInit() override {
    for (const auto& n : names) networks.add(n);
    networks.select(0);
  }
};

// Runs a dialog under a script; the outcome, with the script's complaint if it has one.
struct Played {
  Outcome outcome;
  std::string error;
};
inline Played play(Dialog& dialog, std::string_view script) {
  ScriptFrontend ui(script, "prova.vsc");
  Outcome outcome = dialog.run(ui);
  auto finished = ui.finish();
  return {outcome, finished ? "" : finished.error()};
}

}  // namespace sample
