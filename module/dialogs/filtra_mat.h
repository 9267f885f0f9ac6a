// The choice of a material by which links are filtered.
#pragma once

#include <string>
#include <vector>

#include "module/dialogs/toolkit.h"
#include "module/network/materials.h"

namespace vessora {

// Lists the names of `table`, which has rows and outlives the dialog, with the first one selected.
// After OK chosen() is the name taken.
class DlgFiltraMat : public ModuleDialog {
 public:
  explicit DlgFiltraMat(const std::vector<EpaMaterial>& table)
      : ModuleDialog(u"Filtra per Materiale"), table_(table) {}

  ui::Choice material{this, u"Materiale", {.translate = false}, &DlgFiltraMat::showRoughness};
  ui::Text roughness{this, u"Scabrezza", {.enabled = false}};
  ui::Button filter{this, u"Filtra", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};

  const std::u16string& chosen() const { return chosen_; }

  void onInit() override;
  void onOk() override;

 private:
  void showRoughness();
  const std::vector<EpaMaterial>& table_;
  std::u16string chosen_;
};

}  // namespace vessora
