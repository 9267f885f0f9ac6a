// What the solver and the search for it come to, in words.
#pragma once

#include <string>

#include "epanet/document.h"
#include "epanet/solver.h"

namespace program {

// What is missing, and how to get it.
std::string lackOf(const epanet::SolverSearch& search);
// "error 203: 8:00:00 Node 5: ...", with the row of the file that was solved.
std::string describe(const epanet::SolverMessage& message, const epanet::Document& input);
// Why a run has no results, its first error being told in `firstError`; empty when it has.
std::string faultOf(const epanet::SolverRun& run, const std::string& firstError);

}  // namespace program
