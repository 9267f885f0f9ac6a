// A whole input file in other flow units, for the release of the solver that will run it.
//
// Every number that has a unit is rewritten in its place, and the option that says the units; all
// else keeps its bytes. The solver comes to the same results, up to nine significant digits. What
// the file left to defaults that depend on the system of units is written out.
#pragma once

#include "epanet/editor.h"
#include "epanet/network.h"
#include "epanet/units.h"

namespace epanet {

// What could not be carried over exactly, or was carried over in another way than number by number.
struct Remark {
  enum class What : std::uint8_t {
    rowWithError,      // the solver refuses the row: it stays as written
    oldPump,           // a pump in numbers, which only older releases take: as written
    curveWithoutUse,   // nobody knows its units: as written
    curveOfTwoUses,    // converted by the first one, which does not suit another
    statusRange,       // a number for links of several kinds: rows of their own follow it
    pressureLimits,    // the required pressure must stand 0.1 above the minimum: set there
    wallCorrelation,   // wall coefficients from Darcy-Weisbach roughness depend on the units
    flowUnitsUnknown,  // to that release
    pressureUnknown,   // the unit of pressures, to that release: the system's own holds
  };
  What what = What::rowWithError;
  RowId row = kNoRow;  // kNoRow: of the file as a whole
  std::string text;    // the id or word that it is about
};

struct Converted {
  EditResult edit;  // the new text and what was changed in the old one
  std::vector<Remark> remarks;
};

// `network` and `record` are of the document. With the file's own flow units nothing changes.
Converted convert(const Document& document, const Network& network, const Record& record,
                  FlowUnits target, SolverVersion runBy = SolverVersion::v23);

}  // namespace epanet
