// The order in which people look for names: letters without case, numbers by their value.
#pragma once

#include <string_view>

namespace desktop {

// "P2" comes before "p10".
bool isBefore(std::u16string_view a, std::u16string_view b);

}  // namespace desktop
