// What an attribute takes over from its definition.
#pragma once

#include "cad/api/entities.h"
#include "cad/dxf/tags.h"

namespace cad {

// Makes the tags of a new attribute that shows a definition in a reference of this transformation.
// What is the same for all references that turn and scale alike is made once for them.
void makeAttribute(const AcDbAttributeDefinition& definition, const AcGeMatrix3d& transform,
                   TagList& made);

}  // namespace cad
