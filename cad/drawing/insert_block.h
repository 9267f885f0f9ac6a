// Copying the contents of one drawing into another as a block.
#pragma once

#include <cstdint>
#include <string_view>

#include "cad/drawing/drawing.h"

namespace cad {

// Makes a block of the name out of the model space of `from`: entities with their parts, and the
// layers, line types, text styles, applications and blocks that they use and `to` does not have.
// Pointers to other objects of the source cannot come along and are left out. Returns the block's
// record, 0 when the name cannot be used.
std::uint32_t insertBlock(Drawing& to, std::u16string_view name, const Drawing& from);

}  // namespace cad
