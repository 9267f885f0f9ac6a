// The search for pipes and the choice of the material that they get.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "module/dialogs/toolkit.h"
#include "module/network/materials.h"

namespace vessora {

// Where the dialog finds pipes: each answers names.
struct PipeSearch {
  std::function<std::vector<std::u16string>(double roughness)> byRoughness;
  std::function<std::vector<std::u16string>(std::u16string_view material)> byMaterial;
};

// `table` has rows and outlives the dialog. After OK found(), material() and roughness() say what
// is to be assigned to which pipes; the roughness in mm, as its box shows it.
class DlgSetMat : public ModuleDialog {
 public:
  DlgSetMat(const std::vector<EpaMaterial>& table, PipeSearch pipes)
      : ModuleDialog(u"Assegna Materiali", u"_Comando_Associa_materiale_hnsetmat_.htm"),
        table_(table),
        search_(std::move(pipes)) {}

  ui::Group searchBox{this, u"Ricerca"};
  ui::RadioGroup criterion{
      &searchBox,
      u"",
      {.name = u"Criterio",
       .items = {u"Ricerca rami con scabrezza pari a:         mm", u"Ricerca per materiale"}},
      &DlgSetMat::onCriterion};
  ui::Text wantedRoughness{&searchBox, u"", {.name = u"Scabrezza"}, &DlgSetMat::onStale};
  ui::Choice wantedMaterial{&searchBox,
                            u"",
                            {.name = u"Materiale", .translate = false, .enabled = false},
                            &DlgSetMat::onStale};
  ui::Button search{&searchBox, u"Cerca", &DlgSetMat::onSearch};
  ui::Label result{&searchBox, u"", {.name = u"Esito"}};

  ui::Group assignBox{this, u"Assegnazione"};
  ui::Choice newMaterial{
      &assignBox, u"", {.name = u"Materiale", .translate = false}, &DlgSetMat::onNewMaterial};
  ui::Text newRoughness{&assignBox, u"", {.name = u"Scabrezza", .enabled = false}};

  ui::Button assign{this, u"Assegna", {.role = ui::Role::ok, .isDefault = true, .enabled = false}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};
  ui::Button help{this, u"?", {.role = ui::Role::help}};

  const std::vector<std::u16string>& found() const { return found_; }
  const std::u16string& material() const { return material_; }
  const std::u16string& roughness() const { return roughness_; }

  void onInit() override;
  void onOk() override;

 private:
  void onCriterion();
  void onStale() { assign.setEnabled(false); }
  void onNewMaterial();
  void onSearch();
  bool findByRoughness();

  const std::vector<EpaMaterial>& table_;
  PipeSearch search_;
  std::vector<std::u16string> found_;
  std::u16string material_, roughness_;
};

}  // namespace vessora
