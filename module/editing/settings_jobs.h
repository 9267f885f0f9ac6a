// The simulation settings of a network, without anybody being asked.
#pragma once

#include <string_view>

#include "module/host/notices.h"
#include "module/network/records.h"

namespace vessora {

// What the drawing has stored for the network, or the defaults of a new one under its name.
EpaSettings settingsOf(std::u16string_view network);
// Stores them under the name that they bear, which makes the network one of the drawing's list.
// Days of duration become hours. What they name and the drawing lacks is a warning.
Notices storeSettings(EpaSettings settings);

}  // namespace vessora
