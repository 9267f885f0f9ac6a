// Where the content of a block comes to stand: base points, the transformation of a reference, and
// the attributes that go along with it.
#pragma once

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
// Moves, turns and scales the attributes of a reference whose transformation changed.
void transformAttributes(Drawing& drawing, std::uint32_t reference, const AcGeMatrix3d& before,
                         const AcGeMatrix3d& after);

}  // namespace cad
