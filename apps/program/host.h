// What every program begins with: the session of the host, the module and its commands.
#pragma once

#include "cad/editor/session.h"
#include "module/jobs.h"
#include "platform/result.h"

namespace program {

// Which way INP files and results go until somebody sets VSINPMODE: in full is the way of our
// programs, the classic one that of any other host.
enum class InpMode { full, classic };

// Points hn-cpath at the product root, makes `ui` answer, loads the module and registers its
// commands.
platform::Result<void> startHost(cad::ui::Frontend& ui, InpMode mode);
void stopHost();

}  // namespace program
