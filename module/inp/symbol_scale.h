// How large symbols are in a plan, so that they are to its links as they are in a good drawing.
//
// A scale multiplies the sizes in which the blocks are drawn: a junction's ring is 2 drawing units
// across at scale 1, a text beside a symbol 2 high, a legend 70 wide.
#pragma once

#include <string_view>
#include <vector>

#include "module/host/host_drawing.h"

namespace vessora {

// The length of a course in plan.
double planLength(const AcGePoint3dArray& points);

// The scale at which a junction's ring is a tenth of the median link across, to two digits.
// `lengths` are those of the links in plan; those without a length do not count, and without any
// other the scale is 1.
double fittingScale(std::vector<double> lengths);

// The scale of the symbols that a network has: of the one drawn last, by kind. 1 where it has none.
double drawnScale(std::u16string_view network);

// The scale at which a legend is a fifth as wide as the plan of the network's nodes, to two
// digits; 1 for fewer than two places.
double fittingLegendScale(std::u16string_view network);

}  // namespace vessora
