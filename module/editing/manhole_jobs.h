// Manholes from a longitudinal profile into the plan, without anybody being asked.
#pragma once

#include <string_view>

#include "module/host/host_values.h"
#include "module/host/notices.h"

namespace vessora {

// Whether the manholes of a profile can be carried over: it has some, it runs along two or more
// pipes, and the network still has all of these, joined as the profile runs.
bool hasManholesToTransfer(AcDbObjectId titleBlock);

struct ManholeResult {
  int drawn = 0;
  Notices notices;
};
// Draws each manhole as the block, at its chainage along the pipes and at its own level, turned as
// the pipe runs there. A manhole beyond an end stands at that end. Nothing when there is nothing
// to transfer. A second run draws them a second time.
ManholeResult transferManholes(AcDbObjectId titleBlock, std::u16string_view block, double scale);

}  // namespace vessora
