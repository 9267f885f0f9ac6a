// Commands that the family's libraries add to the host.
#pragma once

#include "cad/editor/session.h"

namespace cad {

// Gives the session the command for manholes on a profile, and the names and units of what a
// network's entities hold; whoever starts the host calls it.
CAD_API void addFamilyCommands(Session& session);
// The second of these alone.
void nameDataOfNetworks(Session& session);

}  // namespace cad
