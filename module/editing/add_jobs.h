// Networks and elements that come into a drawing, as plain values: what the jobs are given and
// answer.
//
// Numbers of a record are texts of any precision. The drawing gets them whole where it keeps reals
// (heights, extended data) and, the classic way, with three decimals where it shows them
// (attributes). In full the dialogs' status "Close" is stored as the solver's "Closed".
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/host/host_values.h"
#include "module/host/notices.h"
#include "module/network/records.h"

namespace vessora {

// The names of a network's elements, doubles included.
struct ElementNames {
  std::vector<std::u16string> nodes, links;
  Notices notices;  // names that an attribute and the imported data give differently
};

struct AddedElement {
  AcDbObjectId id;      // of the symbol, of a pipe's polyline; null when it could not be drawn
  AcDbObjectId course;  // of a link: its polyline
  Notices notices;      // what could not be drawn
  Notices warnings;     // what the element leaves inconsistent
};

// --- networks

// A new network with the settings of new ones, flagged as the default one. Others keep their flags:
// until one is confirmed, the last flagged counts. Answers warnings: a name that another network
// has in any letters, a name that no layer can bear.
Notices createNetwork(std::u16string_view name);
// Flags the network of this name as the default one and takes the flag off all others. Of a name
// that no network has, none stays flagged.
void confirmDefaultNetwork(std::u16string_view name);

// --- elements, one at a time: thousands come by a file and its import. `names` are those of the
// network so far, and get the new one. No job refuses a name that is taken or empty, or a node that
// the network does not have, but it warns. The network becomes currentNetwork.

ElementNames namesOfNetwork(std::u16string_view network);

// At a place in plan, at the height that the record says.
AddedElement addJunction(std::u16string_view network, const AcGePoint3d& place,
                         const EpaJunc& junction, ElementNames& names);
AddedElement addReservoir(std::u16string_view network, const AcGePoint3d& place,
                          const EpaResv& reservoir, ElementNames& names);
AddedElement addTank(std::u16string_view network, const AcGePoint3d& place, const EpaTank& tank,
                     ElementNames& names);
// Along the points, ends included, between the nodes that the record names.
AddedElement addPipe(std::u16string_view network, const std::vector<AcGePoint3d>& points,
                     const EpaPipe& pipe, std::u16string_view material, ElementNames& names);
AddedElement addPump(std::u16string_view network, const std::vector<AcGePoint3d>& points,
                     const EpaPump& pump, ElementNames& names);
AddedElement addValve(std::u16string_view network, const std::vector<AcGePoint3d>& points,
                      const EpaValv& valve, ElementNames& names);

}  // namespace vessora
