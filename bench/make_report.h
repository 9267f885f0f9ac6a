// Reports and binary results files as the solver writes them, for a network of any size.
#pragma once

#include <string>

#include "platform/result.h"

namespace bench {

// A report with hourly periods from 0:00:00 for all nodes and links of an INP file; the values are
// made up and the same for the same arguments.
platform::Result<void> makeReport(const std::string& inp, int periods, const std::string& path);
// The same as a binary results file.
platform::Result<void> makeOutput(const std::string& inp, int periods, const std::string& path);

}  // namespace bench
