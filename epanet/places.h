// Places on the map for nodes that have none.
#pragma once

#include <vector>

#include "epanet/network.h"

namespace epanet {

struct MapPoint {
  double x = 0, y = 0;
};

// A place for every node of the network: its own, or one that lets the drawing be read. Nodes
// between placed ones go amid their neighbours, dead ends beside the node that they hang on, and
// parts of the network without any place are laid out from their sources, layer by layer, to the
// right of everything else. The places follow from the file alone. Empty when every node has its
// own.
std::vector<MapPoint> placesOf(const Network& network);

}  // namespace epanet
