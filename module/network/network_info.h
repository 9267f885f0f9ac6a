// What a drawing says of its networks, as plain values.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vessora {

struct ElementCounts {
  int junctions = 0, reservoirs = 0, tanks = 0, pipes = 0, pumps = 0, valves = 0;
  int nodes() const { return junctions + reservoirs + tanks; }
  int links() const { return pipes + pumps + valves; }
};

struct NetworkInfo {
  std::u16string name;
  bool isDefault = false;
  ElementCounts counts;
  bool hasResults = false;
  std::u16string period;  // of the results; empty for a single period
};

// The network that a job is to work on, by the one rule for all of them: the one that was wanted,
// else one of the hinted name, else the default one, else the only one.
struct PickedNetwork {
  enum class Why { found, unknown, none, several };
  Why why = Why::none;
  std::u16string name;                // when found
  std::vector<std::u16string> names;  // all that the drawing has
};

}  // namespace vessora
