// What can be drawn from the data and results of a network, as plain values: what the jobs are
// given.
#pragma once

#include <string_view>

#include "module/host/notices.h"

namespace vessora {

// Symbols get a scale, tables are multiplied by a factor; each only when wanted.
struct ScaleRequest {
  bool symbols = true, tables = true;
  double symbolScale = 1, tableFactor = 1;
};

// Which tables are drawn beside the elements, with which rows, and how large, in drawing units.
struct TableRequest {
  double rowHeight = 2, columnWidth = 15;
  bool pipes = true, nodes = false, links = false;
  bool length = true, diameter = true, roughness = true, minorLoss = true, pipeStatus = true;
  bool demand = false, head = false, pressure = false, quality = false;
  bool flow = false, velocity = false, headloss = false, linkStatus = false;
};

// All symbols and tables of a network.
void scaleNetwork(std::u16string_view network, const ScaleRequest& request);
// Tables that cannot be made become notices.
Notices drawTables(std::u16string_view network, const TableRequest& request);
// The hydraulic grade line over all links of a network whose two ends have results.
void drawGradeLine(std::u16string_view network, double textHeight);

}  // namespace vessora
