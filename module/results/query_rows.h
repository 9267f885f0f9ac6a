// Results as they stand on the elements of a drawing, and the rows of those that a user picks.
#pragma once

#include <string_view>

#include "module/dialogs/list_res.h"
#include "module/network/result_records.h"
#include "module/network/schema.h"

namespace vessora {

// One element's results: reals with three decimals, the fourth one as it is stored. The record's
// name is set in any case; where the result is false the element has no results and the other
// fields stay. A block whose attribute differs from its imported name is told to the user.
bool ReadNodeResult(EpaNodeResult& record, AcDbBlockReference* block);
bool ReadBlockLinkResult(EpaLinkResult& record, AcDbBlockReference* block);
bool ReadPolylineLinkResult(EpaLinkResult& record, AcDb3dPolyline* polyline);

// Lets the user pick elements of the network and adds their rows to `query`, in drawing order, with
// "-" for results that are not there. False when nothing was picked.
bool CollectQueryRows(const NetworkLayers& layers, NetworkQuery& query);
// The same for a network of the aqueduct module, which has no results at all.
bool collectAqueductRows(std::u16string_view network, NetworkQuery& query);

// The name of a pipe of such a network; empty for other polylines.
std::u16string aqueductPipeName(AcDb3dPolyline* polyline);

}  // namespace vessora
