// Results of reports onto the drawing, as plain values: what the jobs are given and answer.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "module/host/notices.h"

namespace vessora {

// A report that has been read in the classic way, or a report or binary results file in full; and
// the rows of one of its periods. Only this module looks inside; both must go before the module.
class RptText;
class FullReport;
class Report {
 public:
  Report() = default;
  Report(std::shared_ptr<const RptText> text) : text_(std::move(text)) {}     // NOLINT: it is one
  Report(std::shared_ptr<const FullReport> full) : full_(std::move(full)) {}  // NOLINT
  explicit operator bool() const { return text_ || full_; }
  const std::shared_ptr<const RptText>& text() const { return text_; }
  const std::shared_ptr<const FullReport>& full() const { return full_; }

 private:
  std::shared_ptr<const RptText> text_;
  std::shared_ptr<const FullReport> full_;
};
struct PeriodRows;
using ReportRows = std::shared_ptr<const PeriodRows>;

// What periods a report has.
struct ReportPeriods {
  bool readable = false;
  // Else it has one period, which has no name, or in full that of a statistic.
  bool several = false;
  bool lowerCaseHrs = false;          // the first head writes "hrs"
  std::vector<std::u16string> times;  // as their heads write them
  bool full = false;
  Notices faults;  // in full: why nothing can be taken from it, the first reason first
};

// How the rows of a period fit a network.
struct ReportFindings {
  bool hasRows = false;                      // of nodes and of links; in full of either
  int elements = 0;                          // of the network
  int missing = 0;                           // elements that the period has no row of
  std::vector<std::u16string> firstMissing;  // some of their names
  // A table of the period is the last thing in the file and its last line has no end, or rows are
  // missing: the report has been cut short.
  bool cut = false;
  // In full an element without a row, or with one that cannot be read, gets no results and loses
  // older ones. What else keeps the rows from being taken, and what should be known of them.
  bool full = false;
  Notices faults, remarks;
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
// the last one, in full none. Without rows (null) results are taken off, and the counts are those
// of the elements that had some. Link colours and a piezometric line of older results go in either
// case.
ResultCounts writeResults(const ReportRows& rows, std::u16string_view network);

}  // namespace vessora
