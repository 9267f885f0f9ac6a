// Writing a network as an EPANET input file.
//
// The layout is this system's own dialect: section order, missing sections, comment marks, spacing
// and some tokens are not those of the files that EPANET saves, and other programs of the family
// read it as it stands. Texts of the records go in unchanged; only settings, multipliers and curve
// points are formatted here, with a point as decimal mark. Columns pad with blanks and never cut,
// so that a long value touches the next one.
//
// Each function returns 1 when the whole file is on disk, else 0: a notice says why, and an older
// file at the path is as it was. The folder of the path must exist.
#pragma once

#include <cstdint>
#include <string_view>

#include "module/host/notices.h"
#include "module/network/records.h"

namespace vessora {

// A real network, every section.
std::int32_t WriteNetworkInp(std::u16string_view path, const EpaNetwork& network,
                             const EpaSettings& settings, Notices& notices);

// A schematic network: junctions, reservoirs, pipes and their points, with fixed options.
// `headloss` is "D-W", "H-W" or "M-C".
std::int32_t WriteSchemaInp(std::u16string_view path, const RecordList<EpaJunc>& juncs,
                            const RecordList<EpaResv>& resvs, const RecordList<EpaPipe>& pipes,
                            const RecordList<EpaCoord>& coords,
                            const RecordList<EpaCoord>& vertices, std::u16string_view headloss,
                            Notices& notices);

}  // namespace vessora
