// Geometry that needs the whole drawing: boxes of entities, origins of blocks, attributes that go
// along with their reference.
#pragma once

#include "cad/api/ge.h"
#include "cad/drawing/drawing.h"

namespace cad {

// The box of what an entity draws in the world, nested blocks and attributes included; texts count
// with an estimate of their width. Empty for what draws nothing known.
AcDbExtents extentsOf(const Drawing& drawing, std::uint32_t entity);
// The base point of a block.
AcGePoint3d blockOrigin(const Drawing& drawing, const BlockInfo& block);
// Moves, turns and scales the attributes of a reference whose transformation changed.
void transformAttributes(Drawing& drawing, std::uint32_t reference, const AcGeMatrix3d& before,
                         const AcGeMatrix3d& after);

}  // namespace cad
