// The choice of the network that a command changes.
#pragma once

#include "module/dialogs/elenco_reti.h"

namespace vessora {

class DlgSelReteMod : public NetworkListDialog {
 public:
  DlgSelReteMod() : NetworkListDialog(u"Modifica Rete Epanet") {}
};

// Fetches the networks of the drawing and makes one of them the currentNetwork: the default one,
// which is no name where none is flagged, or with two or more names and no default the one that the
// user takes from the list. False when he gives up; networkNames is empty then.
bool chooseNetworkToModify();

}  // namespace vessora
