// Whether input files and results go the classic way or the full one.
#pragma once

namespace vessora {

// True while the host variable VSINPMODE says FULL: what the solver reads is kept and given back.
// Absent, anything else, or a host without the variable is the classic way.
bool inpIsFull();

}  // namespace vessora
