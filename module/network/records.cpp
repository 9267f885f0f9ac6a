#include "module/network/records.h"

namespace vessora {

void ResetSettings(EpaSettings& settings) { settings = EpaSettings(); }

}  // namespace vessora
