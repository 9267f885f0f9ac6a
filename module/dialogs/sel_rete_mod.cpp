#include "module/dialogs/sel_rete_mod.h"

#include "module/host/messages.h"
#include "module/network/settings_store.h"

namespace vessora {

bool chooseNetworkToModify() {
  ListNetworks(networkNames, defaultNetwork);
  if (networkNames.size() < 2 || !defaultNetwork.empty()) {
    currentNetwork = defaultNetwork;
    return true;
  }
  DlgSelReteMod dialog;
  for (;;) {
    if (!dialog.doModal()) {
      networkNames.clear();
      return false;
    }
    if (!selectedNetwork.empty()) break;
    showMessage(TraduciTesto(u"Non esiste alcuna rete!"));
  }
  currentNetwork = selectedNetwork;
  return true;
}

}  // namespace vessora
