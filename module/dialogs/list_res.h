// The list of results of a query, its filters, and what the user wants done with the drawing.
#pragma once

#include <string>

#include "module/dialogs/toolkit.h"
#include "module/network/result_rows.h"

namespace vessora {

enum class QueryAction {
  showDrawing = 0,
  finish = 1,
  zoomNode = 2,
  zoomLink = 3,
};

// What the query command and its dialog share for the length of the command.
struct NetworkQuery : QueryRows {
  QueryFilter filteredNodes, filteredLinks;
  QueryAction action = QueryAction::showDrawing;
  std::u16string nodeId, linkId;  // of the double-clicked row
  int classCount = 5;
  int nodeColorBy = 0;  // 0 none, 1 pressure, 2 demand
  int linkColorBy = 0;  // 0 none, 1 flow, 2 velocity
  bool colorFiltered = false;
  bool resetColors = false;
  bool legacyNetwork = false;  // of the aqueduct module: without materials
  bool stale = false;          // the results were computed from another state of the network
};

// Ends with OK for each action; Esc ends it otherwise. Reopened, it shows the last filter.
class DlgListRes : public ModuleDialog {
 public:
  // `query` must outlive the dialog.
  explicit DlgListRes(NetworkQuery& query)
      : ModuleDialog(u"Interroga Rete", u"_Comando_Rete_Epanet_netvis_.htm"), query_(query) {}

  ui::Group nodeBox{this, u"Nodi"};
  ui::ReportList nodes{&nodeBox,
                       u"",
                       {.name = u"Elenco nodi",
                        .columns = {{.title = u"Nodo", .width = 148},
                                    {.title = u"Portata [l/s]"},
                                    {.title = u"Carico [m]"},
                                    {.title = u"Pressione [m]"},
                                    {.title = u"Qualità [mg/l]"}}},
                       {},
                       &DlgListRes::zoomToNode};
  ui::Group pressureBox{&nodeBox, u"Pressione"};
  ui::Real pressureAbove{&pressureBox, u"> di"};
  ui::Real pressureBelow{&pressureBox, u"< di"};
  ui::Button filterPressure{&pressureBox, u"Filtra Nodi", &DlgListRes::onFilterPressure};
  ui::Group demandBox{&nodeBox, u"Portata"};
  ui::Real demandAbove{&demandBox, u"> di"};
  ui::Real demandBelow{&demandBox, u"< di"};
  ui::Button filterDemand{&demandBox, u"Filtra Nodi", &DlgListRes::onFilterDemand};
  ui::Choice nodeColor{
      &nodeBox, u"Colore", {.items = {u"Nessuno", u"Pressione", u"Portata"}, .initial = 0}};

  ui::Group linkBox{this, u"Rami"};
  ui::ReportList links{&linkBox,
                       u"",
                       {.name = u"Elenco rami",
                        .columns = {{.title = u"Ramo", .width = 148},
                                    {.title = u"Portata [l/s]"},
                                    {.title = u"Velocità [m/s]"},
                                    {.title = u"Perdita[m/Km]"},
                                    {.title = u"Stato"}}},
                       {},
                       &DlgListRes::zoomToLink};
  ui::Group flowBox{&linkBox, u"Portata"};
  ui::Real flowAbove{&flowBox, u"> di"};
  ui::Real flowBelow{&flowBox, u"< di"};
  ui::Button filterFlow{&flowBox, u"Filtra Rami", &DlgListRes::onFilterFlow};
  ui::Group velocityBox{&linkBox, u"Velocità"};
  ui::Real velocityAbove{&velocityBox, u"> di"};
  ui::Real velocityBelow{&velocityBox, u"< di"};
  ui::Button filterVelocity{&velocityBox, u"Filtra Rami", &DlgListRes::onFilterVelocity};
  ui::Button filterMaterial{&linkBox, u"Filtra per Materiale", &DlgListRes::onFilterMaterial};
  ui::Choice linkColor{
      &linkBox, u"Colore", {.items = {u"Nessuno", u"Portata", u"Velocità"}, .initial = 0}};

  ui::RadioGroup classes{this, u"N° colori filtro", {.items = {u"5", u"10"}}};
  ui::Check colorFiltered{this, u"Colora in arancione elementi filtrati"};
  ui::Check resetColors{this, u"Resetta colori rete"};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button showDrawing{this, u"Visualizza Rete", &DlgListRes::onShowDrawing};
  ui::Button reset{this, u"Resetta campi", &DlgListRes::onReset};
  ui::Button exportCsv{this, u"Esporta", &DlgListRes::onExport};
  ui::Button help{this, u"?", {.role = ui::Role::help}};
  ui::Label message{this, u""};  // what is to be known of the results, or nothing

  void onInit() override;
  void onOk() override;
  void onCancel() override;

 private:
  bool takeFields();
  void finish(QueryAction action);
  void filter(Quantity quantity, const ui::Real& above, const ui::Real& below);
  void onFilterPressure() { filter(Quantity::pressure, pressureAbove, pressureBelow); }
  void onFilterDemand() { filter(Quantity::demand, demandAbove, demandBelow); }
  void onFilterFlow() { filter(Quantity::flow, flowAbove, flowBelow); }
  void onFilterVelocity() { filter(Quantity::velocity, velocityAbove, velocityBelow); }
  void onFilterMaterial();
  void onShowDrawing() { finish(QueryAction::showDrawing); }
  void onReset();
  void onExport();
  void zoomToNode();
  void zoomToLink();

  NetworkQuery& query_;
  int nodeColorBy_ = 0, linkColorBy_ = 0;  // at the last field exchange
};

}  // namespace vessora
