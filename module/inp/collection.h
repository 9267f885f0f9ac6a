// A whole network read out of the drawing.
//
// Nothing is sorted, checked or joined: what the drawing holds is what comes out, in drawing order.
// Links name their nodes by what they have stored, not by where they lie.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/host/notices.h"
#include "module/network/records.h"
#include "schema/element.h"

namespace vessora {

// Fills the lists of `network`, which must be empty. A network that is not in the drawing leaves
// them short. A notice tells of each junction and tank whose name attribute differs from its
// imported name, which wins. Valves get the setting "0.000" whatever they have.
void CollectNetwork(std::u16string_view name, EpaNetwork& network, Notices& notices);

// Appends the names of all nodes and of all links, doubles included. Notices tell as above, of all
// kinds of blocks.
void CollectNetworkNames(std::u16string_view name, std::vector<std::u16string>& nodeNames,
                         std::vector<std::u16string>& linkNames, Notices& notices);

// The same, with the nodes that each link names.
struct LinkEnds {
  AcDbObjectId id;  // of a pipe's polyline or a link's block
  const schema::Kind* kind = nullptr;
  std::u16string node1, node2;
};
struct NetworkNames {
  std::vector<std::u16string> nodes, links;
  std::vector<LinkEnds> ends;  // one for each of the links
};
void CollectNetworkNames(std::u16string_view name, NetworkNames& names, Notices& notices);

}  // namespace vessora
