// How a network is found in a drawing: its layers, the selections by them, and the geometry of its
// links. What stands on an element is told by schema/element.h.
#pragma once

#include <string>
#include <string_view>

#include "module/host/host_drawing.h"
#include "module/host/module.h"
#include "module/network/records.h"

namespace vessora {

// The six element layers of one network. An entity's kind is decided by comparing its layer exactly
// with these, although selections do not look at letter case.
struct NetworkLayers {
  explicit NetworkLayers(std::u16string_view network);
  std::u16string junc, resv, tank, pipe, pump, valv;
};

// --- filters. The caller owns the chain; SelectionSet takes it.
// -----------------------------------

// All blocks and link polylines of a network; without companions, of the polylines only the pipes.
resbuf* wholeNetworkFilter(const NetworkLayers& layers, bool companions = true);
// The polylines of pipes, valves and pumps.
resbuf* linkPolylineFilter(const NetworkLayers& layers);
// The blocks of junctions, reservoirs and tanks.
resbuf* nodeBlockFilter(const NetworkLayers& layers);
// The blocks of valves and pumps.
resbuf* linkBlockFilter(const NetworkLayers& layers);
// All blocks on a layer.
resbuf* blocksOnLayerFilter(std::u16string_view layer);
// The polylines on a layer that belong to elements.
resbuf* elementPolylineFilter(std::u16string_view layer);
// What one application keeps on the reserved layer.
resbuf* reservedFilter(std::u16string_view application);

// Makes the reserved layer, and freezes it also where the user has thawed it.
void makeReservedLayer();

// --- geometry ------------------------------------------------------------------------------------

// Tolerance per axis, strict, by which blocks and link ends are found by their place.
inline constexpr double kPlaceTolerance = 0.0001;

// Where the block of a valve or pump stands on its companion polyline: amid the first two vertices
// of two, amid the second and the third of more. False with fewer than two.
bool linkBlockPlace(const AcGePoint3dArray& points, AcGePoint3d& place);

// The height at a point of a link whose ends are `start` and `end`: linear in the plan distance
// from the start, not clamped. Ends that coincide in plan (or all but do) have no slope to follow,
// and the start's height is given: a division by zero must never put a NaN into a drawing.
double heightBetween(const AcGePoint3d& start, const AcGePoint3d& end, const AcGePoint3d& at);
// Puts every vertex between the ends at that height.
void interpolateInterior(AcGePoint3dArray& points);

}  // namespace vessora
