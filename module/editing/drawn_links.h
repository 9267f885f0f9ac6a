// Which entities belong together in a drawn network.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/network/schema.h"

namespace vessora {

// The name of an element as it counts: of its extended data, else of its attribute.
std::u16string nameOf(AcDbEntity& entity);

// "A, B, C".
std::u16string joined(const std::vector<std::u16string>& names);

// Warns when the network's settings trace a node of this name, which no node has any more.
void warnOfTracing(std::u16string_view network, std::u16string_view node, Notices& warnings);

// The node blocks within kPlaceTolerance of a place in plan.
std::vector<AcDbObjectId> nodesAt(const NetworkLayers& layers, const AcGePoint3d& place);

// The flow arrows there.
std::vector<AcDbObjectId> arrowsAt(std::u16string_view network, const AcGePoint3d& place);

// The other half of a valve or pump: the course of its block, or the block of its course, on the
// same layer. Name and place tie them; where only one of both fits, it must leave no doubt. Null
// without one.
AcDbObjectId companionOf(AcDbObjectId id);

}  // namespace vessora
