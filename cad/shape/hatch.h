// Hatches as loops and lines.
#pragma once

#include "cad/dxf/tags.h"
#include "cad/shape/primitive.h"

namespace cad::shape {

// The boundary of a hatch, in its own plane, and the lines of its pattern (none for a solid one).
void readHatch(const TagList& tags, Loops& loops, Loops& patternLines);

}  // namespace cad::shape
