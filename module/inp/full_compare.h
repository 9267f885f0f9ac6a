// How a drawing differs from the text that it keeps of a network.
//
// Every element of the drawing carries the id that the text has for it. What importing its rows
// would store is compared with what is stored; where a value stands twice in the drawing, the copy
// that differs is the edit, where both do, the attribute.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "module/host/notices.h"
#include "module/inp/drawn_element.h"
#include "module/inp/full_form.h"
#include "module/inp/full_settings.h"

namespace vessora {

// A field that the drawing has otherwise, in the drawing's units.
struct ChangedField {
  schema::Field field;
  std::u16string was, now;
};

// An element that the text has too.
struct ChangedElement {
  const schema::Kind* kind = nullptr;
  std::uint32_t index = epanet::kNone;  // in the network's nodes or links
  std::vector<ChangedField> fields;
  std::optional<AcGePoint3d> place;          // a node's, where it has been moved
  std::optional<AcGePoint3dArray> vertices;  // a link's, without its ends, where they differ
  bool empty() const { return fields.empty() && !place && !vertices; }
};

// An element that the text does not have.
struct NewElement {
  const schema::Kind* kind = nullptr;
  AcDbObjectId entity;          // that carries its data
  std::u16string name;          // free among the nodes or links of the file
  std::u16string copyOf;        // the original's name; empty: no copy
  std::u16string node1, node2;  // of a link
  AcGePoint3d place;            // of a node
  AcGePoint3dArray vertices;    // of a link, without its ends
};

// A pattern or a curve: both have values, a curve a kind too.
template <class Record>
struct ChangedSeries {
  std::uint32_t index = epanet::kNone;  // in the network; kNone: new
  std::optional<Record> now;            // none: gone
};

struct Comparison {
  std::vector<Rename> renames;  // of things that are still drawn
  std::vector<ChangedElement> changed;
  std::vector<NewElement> added;
  std::vector<std::uint32_t> goneNodes, goneLinks;
  std::vector<ChangedSeries<EpaPattern>> patterns;
  std::vector<ChangedSeries<EpaCurve>> curves;
  std::vector<ChangedSetting> settings;
  int drawn = 0;    // elements that have their data
  Notices notices;  // what a user has to know besides
  bool empty() const {
    return renames.empty() && changed.empty() && added.empty() && goneNodes.empty() &&
           goneLinks.empty() && patterns.empty() && curves.empty() && settings.empty();
  }
};

enum class Match {
  byTie,       // elements are those that the kept text has under their ties
  everything,  // the same; each field, and each pattern and curve, counts as changed
  byName,      // the network is that of another file: elements are those of their names
};
// Compares a drawn network with a network of a file. The fields `counted` count as changed.
Comparison compareNetwork(std::u16string_view name, const epanet::Network& network,
                          Match match = Match::byTie,
                          const std::vector<schema::Field>& counted = {});
// The same with a network that may still be on its way while the drawing is read. `network` is
// called in another thread; null makes it an empty comparison.
Comparison compareNetwork(std::u16string_view name,
                          const std::function<const epanet::Network*()>& network, Match match);

}  // namespace vessora
