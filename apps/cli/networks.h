// What a drawing says of its networks, read from the entities alone.
#pragma once

#include <string>
#include <vector>

namespace cli {

struct NetworkInfo {
  std::u16string name;
  bool isDefault = false;
  int junctions = 0, reservoirs = 0, tanks = 0, pipes = 0, pumps = 0, valves = 0;
  bool hasResults = false;
  std::u16string period;  // of the results; empty for a single period
};

// One for each settings point, in drawing order.
std::vector<NetworkInfo> listNetworks();
NetworkInfo countNetwork(const std::u16string& name);
// "junctions 9, reservoirs 1, ..." in the user's language.
std::string countsLine(const NetworkInfo& n);
// Makes one network the default of the drawing in memory, so that commands take it without asking.
// A network that stands on its layer alone gets a settings point. False when there is no such
// network.
bool chooseNetwork(const std::u16string& name);

}  // namespace cli
