#include "cad/drawing/empty.h"

// The file's bytes as data of the program; EMPTY_DXF is its path.
asm(".section .rodata\n"
    ".global vessora_empty_dxf\n"
    ".hidden vessora_empty_dxf\n"
    ".global vessora_empty_dxf_end\n"
    ".hidden vessora_empty_dxf_end\n"
    "vessora_empty_dxf:\n"
    ".incbin \"" EMPTY_DXF
    "\"\n"
    "vessora_empty_dxf_end:\n"
    ".byte 0\n"
    ".previous\n");

extern "C" const char vessora_empty_dxf[], vessora_empty_dxf_end[];

namespace cad {

std::string_view emptyDrawing() {
  return {vessora_empty_dxf, static_cast<std::size_t>(vessora_empty_dxf_end - vessora_empty_dxf)};
}

}  // namespace cad
