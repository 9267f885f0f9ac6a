// What epanet/ finds in input files, in the program's words.
#pragma once

#include <string>
#include <vector>

#include "epanet/convert.h"
#include "epanet/problem.h"

namespace cli {

// "line 12, column 5: [PIPES] ... (error 203)", for the file of a path. `utf8` tells the encoding
// of the file's own words.
std::string describe(const epanet::Problem& problem, bool utf8);
// On standard error, at most a few of them, and how many more there are; where `info` shows all.
void warn(const std::string& path, const std::vector<epanet::Problem>& problems, bool utf8);
std::string describe(const epanet::Remark& remark);

}  // namespace cli
