// Results as they stand on the elements of a drawing, and the rows of those that are listed.
#pragma once

#include <string_view>

#include "module/network/result_records.h"
#include "module/network/result_rows.h"
#include "module/network/schema.h"

namespace vessora {

// One element's results: reals with three decimals, the fourth one as it is stored. The record's
// name is set in any case; where the result is false the element has no results and the other
// fields stay. A block whose attribute differs from its imported name is noted.
bool ReadNodeResult(EpaNodeResult& record, AcDbBlockReference* block, Notices& notices);
bool ReadBlockLinkResult(EpaLinkResult& record, AcDbBlockReference* block, Notices& notices);
bool ReadPolylineLinkResult(EpaLinkResult& record, AcDb3dPolyline* polyline);

// Lets the user pick elements of the network and adds their rows to `rows`. False when nothing was
// picked.
bool CollectQueryRows(const NetworkLayers& layers, QueryRows& rows);
// The same for a network of the aqueduct module, which has no results at all.
bool collectAqueductRows(std::u16string_view network, QueryRows& rows);

// The rows of all elements of a network.
QueryRows rowsOfNetwork(const NetworkLayers& layers, Notices& notices);

// The name of a pipe of such a network; empty for other polylines.
std::u16string aqueductPipeName(AcDb3dPolyline* polyline);

}  // namespace vessora
