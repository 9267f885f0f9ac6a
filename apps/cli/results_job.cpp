// Results of a report onto a drawing, and off it.
#include "apps/cli/results_job.h"

#include <algorithm>

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

// The period that is asked for, as the report writes it: "7:00" is "7:00:00" too, and in full the
// only one need not be named. Empty where there is none.
std::u16string wantedPeriod(const ResultsOptions& o, const vessora::ReportPeriods& periods) {
  const std::u16string wanted = platform::widen(o.period);
  const auto& times = periods.times;
  if (std::find(times.begin(), times.end(), wanted) != times.end()) return wanted;
  if (o.period.empty()) return periods.full && times.size() == 1 ? times[0] : std::u16string();
  const std::int64_t seconds = epanet::secondsOf(o.period);
  std::u16string found;
  for (const std::u16string& time : times) {
    if (seconds >= 0 && epanet::secondsOf(narrow(time)) == seconds) found = time;
  }
  return found;
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

// Why the rows should not go onto the network; empty when they may.
std::string faultOfRows(const vessora::ReportFindings& found, const std::u16string& network) {
  if (!found.hasRows) return describe(vessora::Notice{vessora::NoticeCode::reportWithoutRows});
  if (found.full && found.elements > 0) {
    return found.faults.empty() ? std::string() : describe(found.faults.front());
  }
  if (found.elements == 0) {
    return words("la rete non ha elementi a cui dare risultati: ") + narrow(network);
  }
  if (found.missing == found.elements) {
    return words("è il report di un'altra rete: nessun elemento vi compare di ") + narrow(network);
  }
  if (found.cut) {
    return words("il report è troncato: la tabella del periodo finisce a metà") +
           (found.missing == 0 ? ""
                               : words("; elementi senza riga: ") + std::to_string(found.missing));
  }
  return {};
}

void warnOfMissing(const vessora::ReportFindings& found) {
  if (found.missing == 0) return;
  const bool more = found.missing > static_cast<int>(found.firstMissing.size());
  warn(std::to_string(found.missing) + " " +
       (found.full ? words("elementi non compaiono in questo periodo e restano senza risultati (")
                   : words("elementi non compaiono in questo periodo del report: i loro valori "
                           "vengono da altre righe (")) +
       listed(found.firstMissing) + (more ? ", ...)" : ")"));
}

}  // namespace

int bringResults(const ResultsOptions& o, JobSpan& job, const vessora::Report& report,
                 const vessora::ReportPeriods& periods, const std::u16string& network) {
  const std::u16string period = wantedPeriod(o, periods);
  if (const std::string no = faultOfPeriod(o, periods, period); !no.empty()) {
    return fail(o.report + ": " + no);
  }
  vessora::ReportFindings found;
  vessora::ResultCounts written;
  {
    const Progress progress(words("Risultati"));
    const vessora::ReportRows rows = job->rowsOf(report, period, periods.lowerCaseHrs);
    found = job->examineResults(rows, network);
    if (const std::string no = faultOfRows(found, network); !no.empty()) {
      return fail((found.hasRows && found.elements == 0 ? o.drawing : o.report) + ": " + no);
    }
    written = job->writeResults(rows, network);
  }
  if (const int status = save(o)) return status;
  warnOfMissing(found);
  warn(found.remarks);
  warn(written.nodeNotices);
  warn(written.linkNotices);
  say(narrow(network) + ": " + words("risultati su nodi") + " " + std::to_string(written.nodes) +
      ", " + words("rami") + " " + std::to_string(written.links()) + ", " +
      (period.empty() ? words("periodo unico") : words("periodo ") + narrow(period)));
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
