// What epanet/ finds in input files, in the programs' words.
#pragma once

#include <string>
#include <vector>

#include "epanet/convert.h"
#include "epanet/problem.h"

namespace program {

// "line 12, column 5: [PIPES] ... (error 203)", for the file of a path. `utf8` tells the encoding
// of the file's own words.
std::string describe(const epanet::Problem& problem, bool utf8);
std::string describe(const epanet::Remark& remark);

}  // namespace program
