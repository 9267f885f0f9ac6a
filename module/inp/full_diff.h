// What a drawing says otherwise than its kept text or a file, for people and programs to read; and
// the fingerprint of a network's hydraulics, by which results know whether they are its own.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/host/notices.h"

namespace vessora {

struct DiffItem {
  enum class What { changed, moved, course, added, copied, gone, renamed };
  What what = What::changed;
  // "junction", "reservoir", "tank", "pipe", "pump", "valve", "pattern", "curve", "option".
  std::string kind;
  std::u16string name;
  std::string field;        // of what has been changed: "diameter", or an option's name
  std::u16string was, now;  // values in the drawing's units, names, places
};
struct DiffResult {
  // There is something to compare with: a kept text, or a file that can be read.
  bool compared = false;
  std::vector<DiffItem> items;
  Notices notices;
};

// Against the kept text; with a path against that file, whose elements are known by their names.
DiffResult diffNetwork(std::u16string_view network, std::u16string_view path);

// A text that changes when what the solver computes may change, and stays when only places, names
// of the title or the layout of rows do. Empty when the network cannot be told.
std::u16string hydraulicsOf(std::u16string_view network);
// Whether the network has results that were computed from other hydraulics, as far as is known.
bool resultsAreStale(std::u16string_view network);

}  // namespace vessora
