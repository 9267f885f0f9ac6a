// The host's own commands.
#pragma once

#include "cad/editor/session.h"

namespace cad {

// Gives the session the host's commands; whoever starts the host calls it. Calling it again changes
// nothing.
CAD_API void addHostCommands(Session& session);

}  // namespace cad
