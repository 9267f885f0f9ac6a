// Message boxes of the module.
#pragma once

#include <string_view>

#include "module/host/host_drawing.h"

namespace vessora {

// A message box with the OK button. Both texts have passed through TraduciTesto already.
inline void showMessage(std::u16string_view text, std::u16string_view title = u"",
                        AcEdIcon icon = AcEdIcon::none) {
  acedMessageBox(text, title, icon);
}

}  // namespace vessora
