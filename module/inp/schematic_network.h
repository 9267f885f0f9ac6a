// Collecting a schematic aqueduct network, which a sibling module drew: blocks with attributes and
// 3D polylines on one layer of the network's name.
//
// Such a drawing does not say which nodes a pipe joins. The ends are tied to the blocks by their
// place, in all three axes, with a tolerance of 0.0001 m.
#pragma once

#include <optional>
#include <string_view>

#include "module/host/notices.h"
#include "module/network/records.h"

namespace vessora {

struct SchematicNetwork {
  RecordList<EpaJunc> juncs;
  RecordList<EpaResv> resvs;
  RecordList<EpaPipe> pipes;
  RecordList<EpaCoord> coords;
  RecordList<EpaCoord> vertices;  // of all pipes, ends included
};

// Nothing when the network has been collected, which may be empty; else the fault that the user has
// to mend. `formula` is 0 "D-W", 1 "H-W", 2 "M-C": for the first, roughness is turned into mm.
std::optional<NoticeCode> collectSchematicNetwork(std::u16string_view name, int formula,
                                                  SchematicNetwork& network);

}  // namespace vessora
