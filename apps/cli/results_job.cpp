// Results of a report onto a drawing, and off it.
#include "apps/cli/results_job.h"

#include "apps/cli/outputs.h"
#include "epanet/results.h"
#include "platform/files.h"
#include "platform/text.h"

namespace cli {
namespace {

using platform::narrow;
using Failure = platform::Error;

int save(const ResultsOptions& o) {
  const Progress progress(words("Salvataggio"));
  const auto saved = saveDrawing(o.out.empty() ? o.drawing : o.out);
  return saved ? 0 : fail(saved.error());
}

int clearResults(const ResultsOptions& o, JobSpan& job, const std::u16string& network) {
  const vessora::ResultCounts removed = job->writeResults(nullptr, network);
  if (const int status = save(o)) return status;
  say(narrow(network) + ": " + words("risultati tolti, elementi") + " " +
      std::to_string(removed.nodes + removed.links()));
  return 0;
}

int listPeriods(const vessora::ReportPeriods& periods) {
  if (!periods.several) say(words("un solo periodo"));
  for (const std::u16string& time : periods.times) say(narrow(time));
  return 0;
}

// Periods in a line: each of them, or of many the first, the last, their number and the step.
std::string shortList(const std::vector<std::u16string>& times) {
  constexpr std::size_t kMost = 12;
  if (times.size() <= kMost) return listed(times);
  const auto seconds = [&times](std::size_t i) { return epanet::secondsOf(narrow(times[i])); };
  const std::int64_t step = seconds(1) - seconds(0);
  bool even = true;
  for (std::size_t i = 1; i < times.size(); ++i) even = even && seconds(i) - seconds(i - 1) == step;
  return narrow(times.front()) + " - " + narrow(times.back()) + ", " +
         std::to_string(times.size()) + words(" in tutto") +
         (even && step > 0 ? words(", ogni ") + epanet::timeText(step) : "");
}

// Why the wanted period cannot be taken; empty when it can.
std::string faultOfPeriod(const ResultsOptions& o, const vessora::ReportPeriods& periods,
                          const std::u16string& found) {
  if (!found.empty()) return {};
  if (!periods.several) {
    return o.period.empty() ? "" : words("il report non elenca periodi; togliere --period");
  }
  return (o.period.empty() ? words("indicare un periodo con --period; ci sono: ")
                           : words("il periodo non c'è; ci sono: ")) +
         (periods.full ? shortList(periods.times) : listed(periods.times));
}

}  // namespace

int bringResults(const ResultsOptions& o, JobSpan& job, const vessora::Report& report,
                 const vessora::ReportPeriods& periods, const std::u16string& network) {
  // In full the only period need not be named.
  const std::u16string period = !o.period.empty() ? program::periodOf(periods, o.period)
                                : periods.full && periods.times.size() == 1 ? periods.times[0]
                                                                            : std::u16string();
  if (const std::string no = faultOfPeriod(o, periods, period); !no.empty()) {
    return fail(o.report + ": " + no);
  }
  vessora::ReportFindings found;
  vessora::ResultCounts written;
  {
    const Progress progress(words("Risultati"));
    const vessora::ReportRows rows = job->rowsOf(report, period, periods.lowerCaseHrs);
    found = job->examineResults(rows, network);
    if (const std::string no = faultOf(found, network); !no.empty()) {
      return fail((found.hasRows && found.elements == 0 ? o.drawing : o.report) + ": " + no);
    }
    written = job->writeResults(rows, network);
  }
  if (const int status = save(o)) return status;
  if (const std::string lack = lackOf(found); !lack.empty()) warn(lack);
  warn(found.remarks);
  warn(written.nodeNotices);
  warn(written.linkNotices);
  say(describe(written, network, period));
  return 0;
}

int importResults(const ResultsOptions& o) {
  if (!o.out.empty()) {
    const std::string no = refusalOf(o.out, {{o.drawing, true}, {o.report}});
    if (!no.empty()) return fail(no);
  }
  JobSpan job(o.mode);
  vessora::Report report;
  vessora::ReportPeriods periods;
  if (auto opened = job.open(o.drawing); !opened) return fail(opened.error());
  if (!o.clear) {
    report = job->openReport(platform::widen(o.report));
    periods = job->periodsOf(report);
    if (!periods.readable) {
      return fail(describe(
          vessora::Notice{vessora::NoticeCode::reportUnreadable, platform::widen(o.report)}));
    }
    if (!periods.faults.empty()) return fail(o.report + ": " + describe(periods.faults.front()));
    if (o.listPeriods) return listPeriods(periods);
  }
  // The report's name may name the network.
  const std::u16string path = platform::widen(o.report);
  const std::u16string_view file = platform::fileNameOf(path);
  const std::u16string_view hint = file.substr(0, file.size() < 4 ? 0 : file.size() - 4);
  const vessora::PickedNetwork picked = job->pickNetwork(platform::widen(o.network), hint);
  if (picked.why != vessora::PickedNetwork::Why::found)
    return fail(describe(picked, o.drawing, o.network));
  return o.clear ? clearResults(o, job, picked.name)
                 : bringResults(o, job, report, periods, picked.name);
}

}  // namespace cli
