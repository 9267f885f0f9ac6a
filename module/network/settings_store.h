// The simulation settings of networks, and with them the list of networks of a drawing.
//
// Each network's settings are the extended data of one point on the frozen reserved layer; all
// these points lie at one place, and the name in the data tells them apart. A network exists, as
// far as a user can choose it, when it has such a point.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/network/records.h"

namespace vessora {

// The settings stored for a name, compared exactly; the first of several. False when there are
// none, and the record stays as it is. Flow units, quality flag, quality units and statistic are
// stored but never read back: those fields always stay.
bool LoadSettings(EpaSettings& settings, std::u16string_view name);

// Stores the settings: as a new point, or with `create` false on every point of the name, which
// does nothing where there is none. Days of duration are turned into hours of `duration` here; the
// record keeps both, so that saving it again adds the days again. Makes the reserved layer and
// freezes it.
void SaveSettings(EpaSettings& settings, bool create);

// The points that carry the settings of a name, in drawing order.
std::vector<AcDbObjectId> settingsPoints(std::u16string_view name);

// A time of the settings with all its parts: "6", "24", "1:30" or "100:00" as "06:00:00"... Any
// other length than one to six characters stays as it is.
std::u16string withSeconds(std::u16string_view time);

// The names of the drawing's networks in drawing order, doubles kept, at most 10000, and the one
// that is flagged as default: the last of several, empty for none. Both arguments are emptied
// first.
void ListNetworks(std::vector<std::u16string>& names, wide256& defaultName);

}  // namespace vessora
