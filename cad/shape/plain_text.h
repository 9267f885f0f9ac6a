// Texts of drawings without their formatting codes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cad::shape {

// The lines of a multi-line text.
std::vector<std::u16string> plainLines(std::u16string_view formatted);
// A single line text: %%c, %%d, %%p and the like.
std::u16string plainText(std::u16string_view text);

}  // namespace cad::shape
