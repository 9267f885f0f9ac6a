// Elements of a network that change or go, as plain values: what the jobs are given and answer.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "module/host/host_values.h"
#include "module/host/notices.h"
#include "module/inp/collection.h"
#include "module/network/field_set.h"
#include "module/network/records.h"

namespace vessora {

// An element as it is drawn. `material` is a pipe's and counts as its field `type`.
struct DrawnElement {
  std::variant<EpaJunc, EpaResv, EpaTank, EpaPipe, EpaValv, EpaPump> record;
  std::u16string material;
};

enum class ChangeVerdict {
  done,
  notOfNetwork,   // no such element of the network, or of another kind than the record
  nameMissing,    // no element goes without a name
  placeUnusable,  // a coordinate is no number
  linked,         // links name or touch the node, and nobody has asked twice
};

// Nothing has changed unless it is done.
struct ChangeResult {
  ChangeVerdict verdict = ChangeVerdict::notOfNetwork;
  Notices notices;                    // what else was done
  Notices warnings;                   // what is inconsistent now
  std::vector<std::u16string> links;  // of a node to be deleted: who names or touches it
  bool done() const { return verdict == ChangeVerdict::done; }
};

// The element of a block, or of a pipe's polyline; none for what is no element of the network. Its
// kind is that of its layer.
std::optional<DrawnElement> readElement(std::u16string_view network, AcDbObjectId id);

// Writes the changed fields of an element and takes its results off. Names of a link's nodes are
// never written. A changed name or height of a node goes to the links whose ends lie on it: they
// turn colour 3 and lose their results. Texts go to attributes as they are; reals of extended data
// come from the texts.
//
// In full all fields are those whose text differs from what readElement() says, and where none does
// nothing is written and no result goes; "Close" becomes the solver's "Closed"; a rename is noted
// for the export and reaches links and settings by name as well as by place.
//
// `names` are those of the network before the change, for callers that have them; without them they
// are collected when an element is renamed.
ChangeResult modifyElement(std::u16string_view network, AcDbObjectId id,
                           const DrawnElement& element, FieldSet changed = FieldSet::all(),
                           const NetworkNames* names = nullptr);

// A status as the solver calls it: in full the dialogs' "Close" is its "Closed".
std::u16string_view solversStatus(std::u16string_view status);

// Moves a node in plan. The ends of links that lie on it go along, with their heights as they are
// and those of their inner vertices, which stay, interpolated anew; so do the blocks of valves and
// pumps, attributes included, and the flow arrows. All of them lose their results. A pipe as long
// as it was drawn gets the length that is drawn now; one whose length somebody has typed keeps it;
// a notice tells either of each pipe.
ChangeResult moveNode(std::u16string_view network, AcDbObjectId id, double x, double y);

// Erases an element, found by any of its entities: block, polyline, flow arrow. A
// valve or pump goes with its companion, a node with its arrows. A node that links name or touch
// stays, unless it is asked for once more with `evenIfLinked`: the links are left then, and a
// warning names them.
ChangeResult deleteElement(std::u16string_view network, AcDbObjectId id, bool evenIfLinked = false);

}  // namespace vessora
