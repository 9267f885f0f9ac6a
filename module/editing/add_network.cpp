// Which network an element goes to: the step before every element, in which networks are made too.
#include "module/dialogs/sel_ins_rete.h"
#include "module/editing/add_element.h"
#include "module/host/messages.h"
#include "module/host/warnings.h"
#include "module/network/settings_store.h"

namespace vessora {

namespace {

bool namesNewNetwork(const DlgSelInsRete& dialog) {
  return dialog.choice.value() == DlgSelInsRete::kNewNetwork && !selectedNetwork.empty();
}

void askForName() { showMessage(TraduciTesto(u"Inserire un nome per la rete!")); }

// The new network becomes the default one. The flags of the others stay: the listing takes the last
// flagged one, which is the new.
NetworkStep makeNetwork() {
  warn(createNetwork(selectedNetwork));
  return NetworkStep::ran;
}

NetworkStep makeFirstNetwork() {
  for (;;) {
    DlgSelInsRete dialog;
    if (!dialog.doModal()) return NetworkStep::abandoned;
    if (namesNewNetwork(dialog)) return makeNetwork();
    askForName();
  }
}

NetworkStep manageNetworks() {
  DlgSelInsRete dialog;
  dialog.hasNetworks = true;
  dialog.defaultNetwork = defaultNetwork.empty() ? networkNames.front() : defaultNetwork.str();
  if (!dialog.doModal()) return NetworkStep::abandoned;
  defaultNetwork = dialog.defaultNetwork;
  if (namesNewNetwork(dialog)) return makeNetwork();
  if (dialog.selectionMade) {
    currentNetwork = selectedNetwork;
  } else {
    askForName();
  }
  confirmDefaultNetwork(defaultNetwork);
  return NetworkStep::ran;
}

}  // namespace

NetworkStep settleNetwork() {
  networkNames.clear();
  ListNetworks(networkNames, defaultNetwork);
  if (networkNames.empty()) return makeFirstNetwork();
  std::u16string answer;
  const int status = acedGetString(
      true, TraduciTesto(u"Premere \"G\" per gestione reti, altrimenti <INVIO>:"), answer);
  if (status != RTNORM) return NetworkStep::abandoned;
  if (answer == u"G" || answer == u"g") return manageNetworks();
  if (defaultNetwork.empty()) {
    currentNetwork = networkNames.front();
  } else {
    currentNetwork = defaultNetwork;
  }
  confirmDefaultNetwork(defaultNetwork);
  return NetworkStep::goOn;
}

}  // namespace vessora
