// What a user may give an element though the solver refuses the exported file for it.
#pragma once

#include "module/host/notices.h"
#include "module/network/field_set.h"
#include "module/network/records.h"

namespace vessora {

// Warns of a name that the solver does not read in its column, a pump without curve and power, a
// pipe's status that the solver does not know, a tank whose levels are out of order. Looks at the
// `changed` fields alone, and says nothing of an element without a name.
template <class Record>
void warnOfSolver(const Record& element, FieldSet changed, Notices& warnings);

}  // namespace vessora
