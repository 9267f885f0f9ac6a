// Drawings for measurements: as many polylines and block references as asked for, with extended
// data.
#pragma once

#include <cstddef>
#include <string>

#include "platform/result.h"

namespace bench {

// Writes a drawing of R2013 with `elements` 3D polylines (three vertices, eight items of extended
// data) and as many references to a block with three attributes: what a network of that many pipes
// and nodes makes.
platform::Result<void> makeDrawing(std::size_t elements, const std::string& path);

}  // namespace bench
