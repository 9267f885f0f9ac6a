// The choice of the network in which an element is modified.
#pragma once

#include <string>
#include <vector>

#include "module/dialogs/toolkit.h"

namespace vessora {

// Opens on the first line. On OK the selected line, if there is one, goes to selectedNetwork.
class DlgSelReteMod : public ModuleDialog {
 public:
  // `names` must outlive the dialog.
  explicit DlgSelReteMod(const std::vector<std::u16string>& names)
      : ModuleDialog(u"Modifica Rete Epanet"), names_(names) {}

  ui::ListBox networks{
      this, u"", {.name = u"Reti", .order = ui::Order::sorted, .translate = false}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};

  void onInit() override {
    ModuleDialog::onInit();
    networks.setItems(names_);
    networks.select(0);
  }
  void onOk() override {
    if (networks.selected() >= 0) selectedNetwork = networks.shown();
    ModuleDialog::onOk();
  }

 private:
  const std::vector<std::u16string>& names_;
};

}  // namespace vessora
