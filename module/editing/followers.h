// What goes along when the host itself moves elements of networks.
#pragma once

#include <string>
#include <vector>

#include "module/host/host_drawing.h"

namespace vessora {

struct FollowCounts {
  int links = 0;    // whose ends went along with their nodes
  int held = 0;     // moved themselves, whose ends stayed at nodes that did not
  int symbols = 0;  // arrows of nodes, and blocks of valves and pumps, that went along
};

// Of entities that the matrix has moved, turned or scaled: ends of links stay on the nodes on which
// they lay, arrows stay at their nodes, blocks of valves and pumps on their courses. Heights of
// network elements are data and are put back. Names, lengths and results stay as they are written.
FollowCounts followMoved(const std::vector<AcDbObjectId>& entities, const AcGeMatrix3d& matrix);
// The counts in words; empty when nothing went along.
std::u16string describe(const FollowCounts& counts);

}  // namespace vessora
