// The choice of a network from a list.
#pragma once

#include "module/dialogs/toolkit.h"

namespace vessora {

// Shows networkNames, sorted, with the first line selected. On OK the selected line goes to
// selectedNetwork.
class NetworkListDialog : public ModuleDialog {
 public:
  using ModuleDialog::ModuleDialog;

  ui::ListBox networks{
      this, u"", {.name = u"Reti", .order = ui::Order::sorted, .translate = false}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};

  void onInit() override;
  void onOk() override;
};

class CDlgElencoReti : public NetworkListDialog {
 public:
  CDlgElencoReti() : NetworkListDialog(u"Selezionare una rete") {}
};

// What is done about a name of the aqueduct module ("HN-AQ...") that the user takes from the list.
enum class AqueductNetworks {
  accepted,
  refused,      // told so, and the list again, until another name is taken
  refusedOnce,  // told so, and the list once more; whatever is taken then stands
};

// Fetches the networks of the drawing and makes one of them the currentNetwork: the default one, or
// with two or more names and no default the one that the user takes from the list. A single network
// without the default flag leaves the name empty. False when there is no network, which the user is
// told, or when he gives up; networkNames is empty then.
bool chooseNetwork(AqueductNetworks aqueduct);

}  // namespace vessora
