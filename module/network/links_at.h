// Which links end at a place.
#pragma once

#include <vector>

#include "module/network/schema.h"

namespace vessora {

// A link polyline with one or both of its ends at a place in plan.
struct LinkAt {
  AcDbObjectId id;
  bool start = false, end = false;
};

// The polylines of pipes, valves and pumps that start or end there, within kPlaceTolerance, in
// drawing order. Heights and stored names do not count. Reads the ends of every link polyline of
// the network and nothing else of them.
std::vector<LinkAt> linksAt(const NetworkLayers& layers, const AcGePoint3d& place);

}  // namespace vessora
