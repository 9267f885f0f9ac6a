#include "module/host/messages.h"

#include "cad/ui/frontend.h"
#include "module/host/host_drawing.h"

namespace vessora {

namespace {

cad::ui::Icon iconOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::stop:
      return cad::ui::Icon::stop;
    case MessageIcon::warning:
      return cad::ui::Icon::warning;
    case MessageIcon::information:
      return cad::ui::Icon::information;
    case MessageIcon::none:
      break;
  }
  return cad::ui::Icon::none;
}

}  // namespace

void ShowMessage(std::u16string_view text, std::u16string_view title, MessageIcon icon) {
  acedFrontend().messageBox({std::u16string(title), std::u16string(text), iconOf(icon)});
}

}  // namespace vessora
