// Units of results as reports and binary results files name them, and what they are in those of a
// drawing: l/s, m, m/s, m of water. The factors are the solver's own constants, not exact physics:
// a model that is converted back and forth must give the same results.
#pragma once

#include <optional>
#include <string_view>

namespace epanet {

enum class ResultQuantity { flow, length, velocity, pressure, headloss };

// By how much a value in this unit is multiplied to be in the drawing's. Case does not matter:
// "L/s" of a report and "LPS" of the Windows program are one unit, and so are "psi" and "PSI". The
// factor of a loss of head ("/1000ft", "m/km") is that of an absolute one, of a valve or pump; the
// loss of a pipe per thousand is the same number in every unit. Empty for a unit that is not known.
std::optional<double> drawingFactor(ResultQuantity quantity, std::string_view unit);

// Whether a pressure in this unit is one of weight, which grows with the specific gravity, and not
// the height of a column of the liquid: psi, kPa, bar, and the "m" of releases before 2.3, which
// write "METERS" for the height.
bool growsWithGravity(std::string_view pressureUnit);

// The units that a binary results file names by number; empty for a number that is none.
std::string_view flowUnitOf(int code);
std::string_view pressureUnitOf(int code);
// Whether flows in this unit (by number) go with feet and inches.
bool isUsFlowUnit(int code);

}  // namespace epanet
