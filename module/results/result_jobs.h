// Results of reports onto the drawing, as plain values: what the jobs are given and answer.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "module/host/notices.h"

namespace vessora {

// A report that has been read, and the rows of one of its periods. Only this module looks inside;
// both must go before the module.
class RptText;
using Report = std::shared_ptr<const RptText>;
struct PeriodRows;
using ReportRows = std::shared_ptr<const PeriodRows>;

// What periods a report has.
struct ReportPeriods {
  bool readable = false;
  bool several = false;               // else it has one period, which has no name
  bool lowerCaseHrs = false;          // the first head writes "hrs"
  std::vector<std::u16string> times;  // as their heads write them
};

// How the rows of a period fit a network.
struct ReportFindings {
  bool hasRows = false;                      // of nodes and of links
  int elements = 0;                          // of the network
  int missing = 0;                           // elements that the period has no row of
  std::vector<std::u16string> firstMissing;  // some of their names
  // A table of the period is the last thing in the file and its last line has no end, or rows are
  // missing: the report has been cut short.
  bool cut = false;
};

struct ResultCounts {
  int nodes = 0, pipes = 0, valvesAndPumps = 0;
  int links() const { return pipes + valvesAndPumps; }
  Notices nodeNotices, linkNotices;
};

Report openReport(std::u16string_view path);
ReportPeriods periodsOf(const Report& report);
// The rows of one period; of the only one when `time` is empty and the report has no others. Heads
// are looked for with "hrs" or with "Hrs".
ReportRows rowsOf(const Report& report, std::u16string_view time, bool lowerCaseHrs);
ReportFindings examineResults(const ReportRows& rows, std::u16string_view network);
// Puts rows on all elements of a network, in place of what they have; an element without a row gets
// the last one. Without rows (null) results are taken off, and the counts are those of the elements
// that had some. Link colours and a piezometric line of older results go in either case.
ResultCounts writeResults(const ReportRows& rows, std::u16string_view network);

}  // namespace vessora
