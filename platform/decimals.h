// Numbers as people read them, in drawings.
#pragma once

#include <string>

#include "platform/format.h"

namespace platform {

// With three decimals; what rounds to nothing has no sign.
inline std::u16string threeDecimals(double value) {
  return format(u"%.3lf", value > -0.0005 && value <= 0 ? 0.0 : value);
}

}  // namespace platform
