#include "module/dialogs/elenco_reti.h"

#include "module/host/messages.h"
#include "module/network/settings_store.h"

namespace vessora {

void NetworkListDialog::onInit() {
  ModuleDialog::onInit();
  networks.setItems(networkNames);
  networks.select(0);
}

void NetworkListDialog::onOk() {
  if (networks.selected() >= 0) selectedNetwork = networks.shown();
  ModuleDialog::onOk();
}

namespace {

// The user's choice into selectedNetwork; false for "Annulla".
bool takeFromList(AqueductNetworks aqueduct) {
  CDlgElencoReti dialog;
  for (;;) {
    if (!dialog.doModal()) return false;
    if (aqueduct == AqueductNetworks::accepted || !schema::isAqueductName(selectedNetwork))
      return true;
    showMessage(TraduciTesto(u"Rete non valida!\nSelezionare una rete Epanet!"));
    if (aqueduct == AqueductNetworks::refusedOnce) aqueduct = AqueductNetworks::accepted;
  }
}

}  // namespace

bool chooseNetwork(AqueductNetworks aqueduct) {
  networkNames.clear();
  ListNetworks(networkNames, defaultNetwork);
  if (networkNames.empty()) {
    showMessage(TraduciTesto(u"Non esiste alcuna rete!"));
    return false;
  }
  if (networkNames.size() < 2 || !defaultNetwork.empty()) {
    currentNetwork = defaultNetwork;
    return true;
  }
  if (!takeFromList(aqueduct)) {
    networkNames.clear();
    return false;
  }
  currentNetwork = selectedNetwork;
  return true;
}

}  // namespace vessora
