// The networks of the drawing.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "module/host/host_drawing.h"
#include "module/network/network_info.h"

namespace vessora {

// One for each settings point, in drawing order.
std::vector<NetworkInfo> networksOfDrawing();
// Elements and results of a network by its layers, whether or not it is in the list.
NetworkInfo networkInfo(std::u16string_view name);
// The name of a valve, pump or node that counts, without a word about a difference.
std::u16string countingName(AcDbBlockReference& block);
// A network of the sibling module need not be in the list: it stands on the layer of its name.
PickedNetwork pickNetwork(std::u16string_view wanted, std::u16string_view hint);
// The network of the list whose layers a name would share, for letter case does not part layers;
// empty when there is none.
std::u16string networkLike(std::u16string_view name);

}  // namespace vessora
