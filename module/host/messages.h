// Message boxes of the module.
#pragma once

#include <string_view>

namespace vessora {

enum class MessageIcon { none, stop, warning, information };

// A message box with the OK button. Both texts have passed through TraduciTesto already.
void showMessage(std::u16string_view text, std::u16string_view title = u"",
                 MessageIcon icon = MessageIcon::none);

}  // namespace vessora
