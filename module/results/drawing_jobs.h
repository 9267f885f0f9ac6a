// What can be listed and drawn of the data and results of a network, as plain values: what the jobs
// are given and answer.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "module/host/host_values.h"
#include "module/host/notices.h"
#include "module/network/result_rows.h"

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

// Which rows are listed: all, or those whose quantity lies between two bounds, both excluded. A
// quantity of nodes filters nodes, one of links filters links.
struct QueryRequest {
  Quantity quantity = Quantity::none;
  double above = 0, below = 0;
};
struct QueryResult {
  QueryRows rows;
  Notices notices;
};

// Colours by 5 or 10 classes of a quantity, with their legend at a point in place of the drawing's
// older ones of its kind.
struct ColorRequest {
  Quantity quantity = Quantity::pressure;
  int classCount = 5;
  AcGePoint3d legend;
};
// How many elements fell into a class. A course that goes with the block of its valve or pump is
// not counted.
struct ColorResult {
  int painted = 0;
  Notices notices;
};

// The classes that a query makes of values, lowest first, with host colour indices.
struct ValueClasses {
  struct Class {
    double lower = 0, upper = 0;
    int color = 0;
  };
  std::vector<Class> classes;
  // The class of a value, lower bound included and upper bound not, or -1.
  int find(double value) const {
    for (std::size_t i = 0; i < classes.size(); ++i) {
      if (classes[i].lower <= value && value < classes[i].upper) return static_cast<int>(i);
    }
    return -1;
  }
};

// A legend that stands in the drawing: its classes from the first, with host colour indices.
struct DrawnLegend {
  struct Class {
    int color = 0;
    std::u16string range;
  };
  AcDbObjectId id;
  std::u16string title;
  std::vector<Class> classes;
};

// A profile along links. Without a place it has no frame and stands about the drawing's origin.
struct ProfileRequest {
  std::vector<std::u16string> links;    // names, in the order in which they join
  std::u16string name;                  // of the profile
  double start = 0;                     // chainage of the first node
  std::optional<double> terrainOffset;  // of the terrain above the design line
  std::optional<AcGePoint3d> place;     // of the title block
};
// Why a link cannot go on with a profile.
enum class LinkVerdict {
  valid = 1,
  notOfNetwork = 2,
  notImported = 3,
  noResults = 4,
  nodesNotFound,
  misplaced,  // its ends do not lie on its nodes
  notConsecutive,
};
// When a link is refused, nothing is drawn.
struct ProfileResult {
  LinkVerdict verdict = LinkVerdict::valid;
  std::size_t refused = 0;  // place of the first such link in the request
  Notices notices;
};

QueryResult queryNetwork(std::u16string_view network, const QueryRequest& request);
// Bounds come from the network's rows; colours go to every element with results, of whatever
// network. Nothing remembers the colour that an element had before.
ColorResult colorNetwork(std::u16string_view network, const ColorRequest& request);
// 5 or 10 classes of values in three decimals, as results are listed; else none.
ValueClasses classesOf(const std::vector<double>& values, int count);
// The legends of nodes and links that the drawing has, in drawing order.
std::vector<DrawnLegend> drawnLegends();
// The elements of these rows in orange, or back in the colours in which symbols and links are
// drawn.
Notices highlightElements(std::u16string_view network, const QueryRows& rows);
Notices resetColors(std::u16string_view network, const QueryRows& rows);
ProfileResult drawProfile(std::u16string_view network, const ProfileRequest& request);
// All symbols and tables of a network.
void scaleNetwork(std::u16string_view network, const ScaleRequest& request);
// Tables that cannot be made become notices.
Notices drawTables(std::u16string_view network, const TableRequest& request);
// The hydraulic grade line over all links of a network whose two ends have results.
void drawGradeLine(std::u16string_view network, double textHeight);

}  // namespace vessora
