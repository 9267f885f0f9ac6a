// Where the content of a block comes to stand: base points, the transformation of a reference, and
// the attributes that go along with it.
#pragma once

#include <optional>
#include <vector>

#include "cad/api/ge.h"
#include "cad/drawing/drawing.h"

namespace cad {

// The base point of a block.
AcGePoint3d blockOrigin(const Drawing& drawing, const BlockInfo& block);
// From the coordinates of a block to those in which its reference (the tags of an INSERT) stands;
// `dx`, `dy` is the place of a copy within an array. Without a drawing the base point counts as the
// origin.
AcGeMatrix3d insertTransform(const Drawing* drawing, const TagList& reference, std::uint32_t block,
                             double dx = 0, double dy = 0);
// The way back; none from a transformation that flattens (a scale of zero).
std::optional<AcGeMatrix3d> invert(const AcGeMatrix3d& m);
// Moves, turns and scales the attributes of a reference as this does in the world.
void transformAttributes(Drawing& drawing, std::uint32_t reference, const AcGeMatrix3d& world);
// The positions of a polyline's vertices, straight from the records, which is what opening each
// vertex would give.
CAD_API std::vector<AcGePoint3d> vertexPositions(const Drawing& drawing, std::uint32_t polyline);

}  // namespace cad
