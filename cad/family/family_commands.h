// Commands that the family's libraries add to the host.
#pragma once

#include "cad/editor/session.h"

namespace cad {

// Gives the session the command for manholes on a profile; whoever starts the host calls it.
CAD_API void addFamilyCommands(Session& session);

}  // namespace cad
