// Collecting a schematic aqueduct network, which a sibling module drew: blocks with attributes and
// 3D polylines on one layer of the network's name.
//
// Such a drawing does not say which nodes a pipe joins. The ends are tied to the blocks by their
// place, in all three axes, with a tolerance of 0.0001 m.
#pragma once

#include <string_view>

#include "module/network/records.h"

namespace vessora {

struct SchematicNetwork {
  RecordList<EpaJunc> juncs;
  RecordList<EpaResv> resvs;
  RecordList<EpaPipe> pipes;
  RecordList<EpaCoord> coords;
  RecordList<EpaCoord> vertices;  // of all pipes, ends included
};

// Null when the network has been collected, which may be empty. Else the fault that the user has to
// mend, as an untranslated message.
const char16_t* collectSchematicNetwork(std::u16string_view name, SchematicNetwork& network);

}  // namespace vessora
