#include "module/host/inp_mode.h"

#include "module/host/host_drawing.h"
#include "platform/text.h"

namespace vessora {

bool inpIsFull() {
  std::u16string mode;
  return readTextVariable(u"VSINPMODE", mode) && platform::equalNoCase(mode, u"FULL");
}

}  // namespace vessora
