// Results of a report onto a drawing, and off it.
#include "apps/cli/host.h"
#include "apps/cli/jobs.h"
#include "apps/cli/outputs.h"
#include "platform/files.h"
#include "platform/text.h"

namespace cli {
namespace {

using platform::narrow;
using Failure = platform::Error;

int save(const ResultsOptions& o) {
  const Progress progress(words("Salvataggio", "Saving"));
  const auto saved = saveDrawing(o.out.empty() ? o.drawing : o.out);
  return saved ? 0 : fail(saved.error());
}

int clearResults(const ResultsOptions& o, JobSpan& job, const std::u16string& network) {
  const vessora::ResultCounts removed = job->writeResults(nullptr, network);
  if (const int status = save(o)) return status;
  say(narrow(network) + ": " + words("risultati tolti, elementi", "results removed, elements") +
      " " + std::to_string(removed.nodes + removed.links()));
  return 0;
}

int listPeriods(const vessora::ReportPeriods& periods) {
  if (!periods.several) say(words("un solo periodo", "a single period"));
  for (const std::u16string& time : periods.times) say(narrow(time));
  return 0;
}

// Why the wanted period cannot be taken; empty when it can.
std::string faultOfPeriod(const ResultsOptions& o, const vessora::ReportPeriods& periods) {
  if (!periods.several) {
    return o.period.empty() ? ""
                            : words("il report non elenca periodi; togliere --period",
                                    "the report lists no periods; leave --period out");
  }
  const std::u16string wanted = platform::widen(o.period);
  for (const std::u16string& time : periods.times) {
    if (!wanted.empty() && time == wanted) return {};
  }
  return (wanted.empty() ? words("indicare un periodo con --period; ci sono: ",
                                 "name a period with --period; it has: ")
                         : words("il periodo non c'è; ci sono: ", "no such period; it has: ")) +
         listed(periods.times);
}

// Why the rows should not go onto the network; empty when they may.
std::string faultOfRows(const vessora::ReportFindings& found, const std::u16string& network) {
  if (!found.hasRows) return describe(vessora::Notice{vessora::NoticeCode::reportWithoutRows});
  if (found.elements == 0) {
    return words("la rete non ha elementi a cui dare risultati: ",
                 "the network has no element to give results to: ") +
           narrow(network);
  }
  if (found.missing == found.elements) {
    return words("è il report di un'altra rete: nessun elemento vi compare di ",
                 "this is the report of another network: it has no element of ") +
           narrow(network);
  }
  if (found.cut) {
    return words("il report è troncato: la tabella del periodo finisce a metà",
                 "the report is cut short: the period's table ends in the middle") +
           (found.missing == 0 ? ""
                               : words("; elementi senza riga: ", "; elements without a row: ") +
                                     std::to_string(found.missing));
  }
  return {};
}

void warnOfMissing(const vessora::ReportFindings& found) {
  if (found.missing == 0) return;
  const bool more = found.missing > static_cast<int>(found.firstMissing.size());
  warn(std::to_string(found.missing) + " " +
       words("elementi non compaiono in questo periodo del report: i loro valori vengono da "
             "altre righe (",
             "elements are not in this period of the report: their values are those of "
             "other rows (") +
       listed(found.firstMissing) + (more ? ", ...)" : ")"));
}

int importReport(const ResultsOptions& o, JobSpan& job, const vessora::Report& report,
                 const vessora::ReportPeriods& periods, const std::u16string& network) {
  if (const std::string no = faultOfPeriod(o, periods); !no.empty()) {
    return fail(o.report + ": " + no);
  }
  vessora::ReportFindings found;
  vessora::ResultCounts written;
  {
    const Progress progress(words("Risultati", "Results"));
    const vessora::ReportRows rows =
        job->rowsOf(report, platform::widen(o.period), periods.lowerCaseHrs);
    found = job->examineResults(rows, network);
    if (const std::string no = faultOfRows(found, network); !no.empty()) {
      return fail((found.hasRows && found.elements == 0 ? o.drawing : o.report) + ": " + no);
    }
    written = job->writeResults(rows, network);
  }
  if (const int status = save(o)) return status;
  warnOfMissing(found);
  warn(written.nodeNotices);
  warn(written.linkNotices);
  say(narrow(network) + ": " + words("risultati su nodi", "results on nodes") + " " +
      std::to_string(written.nodes) + ", " + words("rami", "links") + " " +
      std::to_string(written.links()) + ", " +
      (o.period.empty() ? words("periodo unico", "single period")
                        : words("periodo ", "period ") + o.period));
  return 0;
}

}  // namespace

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
                 : importReport(o, job, report, periods, picked.name);
}

}  // namespace cli
