#include "module/dialogs/sel_ins_rete.h"

#include "module/host/messages.h"

namespace vessora {

void DlgSelInsRete::onInit() {
  ModuleDialog::onInit();
  choice.select(hasNetworks ? kListedNetwork : kNewNetwork);
  if (hasNetworks) {
    networks.setItems(networkNames);
    networks.select(networks.find(defaultNetwork));
  }
  enableChosen();
  showDefault();
}

void DlgSelInsRete::enableChosen() {
  newName.setEnabled(choice.selected() == kNewNetwork);
  networks.setEnabled(choice.selected() == kListedNetwork);
}

void DlgSelInsRete::showDefault() {
  defaultLine = TraduciTesto(u"Rete predefinita: ") + defaultNetwork;
}

void DlgSelInsRete::onMakeDefault() {
  if (choice.selected() == kNewNetwork || networks.selected() < 0) return;
  defaultNetwork = networks.shown();
  showDefault();
}

void DlgSelInsRete::onOk() {
  if (!updateData()) return;
  selectionMade = false;
  if (choice.value() == kNewNetwork) {
    selectedNetwork = newName.value();
    defaultNetwork = newName.value();
  } else if (defaultNetwork.empty()) {
    const std::u16string text = TraduciTesto(u"Impostare una rete come predefinita!");
    return showMessage(text, TraduciTesto(u"Attenzione"));
  } else if (networks.selected() >= 0) {
    selectedNetwork = networks.shown();
    selectionMade = true;
  }
  end(ui::Outcome::ok);
}

}  // namespace vessora
