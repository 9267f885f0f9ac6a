// What a job leaves inconsistent though the command that ran it says nothing of it: a pattern that
// elements still name, a name that stands twice. Commands show what their texts tell and hand the
// rest here; our programs print it when the command has ended, other hosts never ask.
#pragma once

#include "module/host/notices.h"

namespace vessora {

void warn(Notices notices);
// What has come since the last call; the list is empty afterwards.
Notices takeWarnings();

}  // namespace vessora
