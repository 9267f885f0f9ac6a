// The second half of bringing results onto a drawing, which solving has too.
#pragma once

#include <string>

#include "apps/cli/host.h"
#include "apps/cli/jobs.h"

namespace cli {

// Writes the wanted period of what has been opened onto a network, saves the drawing, and says so;
// the exit status.
int bringResults(const ResultsOptions& options, JobSpan& job, const vessora::Report& report,
                 const vessora::ReportPeriods& periods, const std::u16string& network);

}  // namespace cli
