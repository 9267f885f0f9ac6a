// The empty drawing: every table, block, layout and dictionary that a complete R2013 file has. CAD
// programs refuse files that leave the required ones out, and add the others on their own.
#pragma once

#include <string_view>

namespace cad {

// The bytes of empty.dxf, which is a part of the program.
std::string_view emptyDrawing();

}  // namespace cad
