#include "module/host/messages.h"

#include "module/host/host_drawing.h"

namespace vessora {

void showMessage(std::u16string_view text, std::u16string_view title, MessageIcon icon) {
  AcEdIcon shown = AcEdIcon::none;
  switch (icon) {
    case MessageIcon::none:
      break;
    case MessageIcon::stop:
      shown = AcEdIcon::stop;
      break;
    case MessageIcon::warning:
      shown = AcEdIcon::warning;
      break;
    case MessageIcon::information:
      shown = AcEdIcon::information;
      break;
  }
  acedMessageBox(text, title, shown);
}

}  // namespace vessora
