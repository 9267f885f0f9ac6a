// The box of what an entity draws.
#pragma once

#include "cad/api/ge.h"
#include "cad/drawing/drawing.h"

namespace cad {

// In the world, nested blocks and attributes included; texts count with an estimate of their width,
// endless lines not at all. Empty for what draws nothing known; a reference whose block draws
// nothing is its insertion point.
AcDbExtents extentsOf(const Drawing& drawing, std::uint32_t entity);

namespace shape {
// The same of what is no text: the symbol of a reference without its attributes.
AcDbExtents symbolExtents(const Drawing& drawing, std::uint32_t entity);
}  // namespace shape

}  // namespace cad
