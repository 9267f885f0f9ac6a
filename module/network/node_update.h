// What follows a node that is renamed or moved in height.
#pragma once

#include "module/network/schema.h"

namespace vessora {

struct NodeChange {
  double oldHeight = 0;  // what the height attribute said before the change, m
  double newHeight = 0;
  wide256 id;                  // the node's name from now on
  bool onlyTextItems = false;  // leave a pipe's stored name when it is no text
};

// Takes over the node's block, whose attributes and data are written already, and closes it. The
// ends of `currentNetwork`'s links that lie on the node get its height and name, with what is
// between the ends interpolated anew, colour 3 and no results; then the block itself gets the
// height. When the block does not stand at its old height, somebody has edited one of the two by
// hand, and the links are left alone.
void moveNode(Opened<AcDbBlockReference> block, const NodeChange& change);

}  // namespace vessora
