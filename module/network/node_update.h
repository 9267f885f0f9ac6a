// What follows a node that is renamed, moved in height or moved in plan: the links that end on it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "module/network/schema.h"

namespace vessora {

struct NodeChange {
  double oldHeight = 0;              // what the height attribute said before the change, m
  std::optional<double> newHeight;   // m; none leaves all heights
  std::optional<wide256> id;         // the node's name from now on; none leaves the stored names
  std::optional<AcGePoint3d> place;  // in plan, its Z does not count; none leaves it where it is
  // In full: what links have stored for the node. An end that names another node which stands at
  // the same place is that one's, and stays.
  std::optional<std::u16string> oldName;
  bool onlyTextItems = false;  // leave a pipe's stored name when it is no text
};

// A link that has followed.
struct FollowedLink {
  AcDbObjectId id;
  double lengthBefore = 0, lengthAfter = 0;  // as drawn, in space
};
struct FollowedLinks {
  // In drawing order; a link whose both ends lie there stands once.
  std::vector<FollowedLink> links;
  // There are links, but the block does not stand at its old height.
  bool leftBehind = false;
};

// Takes over the node's block, whose attributes and data are written already, and closes it. The
// ends of `currentNetwork`'s links that lie on the node get its height, name and place, with the
// heights between the ends interpolated anew, colour 3 and no results; blocks of valves and pumps
// go along with their courses. Then the block itself moves. When it does not stand at its old
// height, somebody has edited one of the two by hand, and the links are left alone.
FollowedLinks dragLinks(Opened<AcDbBlockReference> block, const NodeChange& change);

}  // namespace vessora
