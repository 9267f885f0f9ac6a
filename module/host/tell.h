// The words in which commands tell what their jobs have found.
#pragma once

#include "module/host/notices.h"

namespace vessora {

// Each in its turn: a message box or a line on the command line.
void tell(const Notices& notices);

}  // namespace vessora
