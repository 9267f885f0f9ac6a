// Results in full: reports of either dialect and binary results files, in the units of the drawing.
//
// Elements are matched by their names to the letter. One that the period has no row of, or none
// that can be read, keeps no results. Reals are stored as they are, to the last digit; quality as
// the shortest text that reads back, and empty where none was computed; the status as "Open",
// "Closed" or "Active", and empty where the report does not tell.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "epanet/results.h"
#include "module/network/schema.h"
#include "module/results/result_jobs.h"

namespace vessora {

class FullReport {
 public:
  // Null when the file cannot be read at all. What is in it may still be of no use.
  static std::shared_ptr<const FullReport> load(std::u16string_view path);
  // Of the bytes of a file.
  explicit FullReport(std::string bytes);

  ReportPeriods periods() const;
  // Null for a damaged binary file.
  const epanet::Results* results() const { return opened_.results.get(); }

 private:
  epanet::OpenedResults opened_;
};

// One period. Its values are converted to the drawing's units for a network, whose liquid may be
// heavier than water.
class FullPeriod {
 public:
  // The only period when `time` is empty.
  FullPeriod(std::shared_ptr<const FullReport> report, std::u16string_view time);

  bool hasRows() const { return !values_.nodes.rows().empty() || !values_.links.rows().empty(); }
  ReportFindings examine(std::u16string_view network) const;
  // What could not be converted is not written: see the faults.
  ResultCounts write(std::u16string_view network) const;

 private:
  // The values of an element; null when there is no row, or one without what is stored as a real.
  const epanet::NodeValues* node(std::u16string_view name) const;
  const epanet::LinkValues* link(std::u16string_view name) const;
  // How many metres of a network's liquid stand for a metre of pressure.
  double columnOf(std::u16string_view network) const;
  std::string bytesOf(std::u16string_view name) const;
  Notices faults() const;
  void judge(ReportFindings& found, std::u16string_view network) const;

  std::shared_ptr<const FullReport> report_;  // whose bytes the values' ids are
  epanet::PeriodValues values_;
  std::string missingColumns_;  // as [REPORT] names them
  std::string unknownUnit_;
  bool ofWeight_ = false;  // pressures grow with the specific gravity
};

}  // namespace vessora
