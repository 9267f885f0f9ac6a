// The export that other modules call to have an INP file written.
#pragma once

#include <cstdint>
#include <string_view>

namespace vessora {

// The body of ScriviInp: 1 when the file has been written, else 0.
std::int64_t writeInpOf(std::u16string_view path, std::u16string_view network);

}  // namespace vessora
