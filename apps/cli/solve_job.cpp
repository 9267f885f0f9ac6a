// A drawn network solved by the real solver: written into a folder of its own, run, and the results
// brought back onto the drawing.
#include "apps/cli/outputs.h"
#include "apps/cli/results_job.h"
#include "apps/program/solver_words.h"
#include "cad/editor/commands.h"
#include "epanet/solver.h"
#include "platform/files.h"
#include "platform/temporary_files.h"
#include "platform/text.h"

namespace cli {
namespace {

using epanet::SolverRun;
using epanet::SolverSearch;
using program::describe;

constexpr std::size_t kShown = 8;

// Errors and warnings of a run, on standard error; the first error is left for the program's last
// word.
std::string tell(const SolverRun& run, const epanet::Document& input) {
  std::string first;
  std::size_t shown = 0;
  for (const epanet::SolverMessage& message : run.messages) {
    if (message.isError && first.empty()) {
      first = describe(message, input);
    } else if (shown++ < kShown) {
      warn("EPANET: " + describe(message, input));
    }
  }
  if (shown > kShown) {
    warn("EPANET: " + words("altri messaggi: ") + std::to_string(shown - kShown) +
         words("; sono nel report (--keep)"));
  }
  return first;
}

// Copies the files of a run to a folder of the user's, under the network's name.
platform::Result<void> keepFiles(const std::string& folder, const std::string& to,
                                 const std::string& name) {
  if (!platform::makeFolders(to)) {
    return platform::Error{to + ": " + words("la cartella non si può creare")};
  }
  const struct {
    const char *from, *extension;
  } kFiles[] = {
      {epanet::kRunInput, ".inp"}, {epanet::kRunReport, ".rpt"}, {epanet::kRunOutput, ".out"}};
  for (const auto& file : kFiles) {
    const std::string from = folder + "/" + file.from;
    if (!platform::fileExists(from)) continue;
    const auto bytes = platform::readFile(from);
    if (!bytes) return platform::Error{bytes.error()};
    if (auto written = platform::writeFile(to + "/" + name + file.extension, *bytes); !written) {
      return written;
    }
  }
  return {};
}

bool exportTo(JobSpan& job, const std::string& folder, const std::u16string& network,
              const std::string& drawing) {
  const Progress progress(words("Esportazione"));
  const std::u16string path = platform::widen(folder + "/" + epanet::kRunInput);
  const vessora::ExportResult result =
      job->exportNetwork({.network = network, .path = path, .csvPath = {}});
  if (!result.written) {
    fail(drawing + ": " +
         (result.notices.empty() ? words("la rete non si può esportare")
                                 : describe(result.notices.back())));
    return false;
  }
  warn(result.notices);
  return true;
}

int solveIn(const std::string& folder, const SolveOptions& o, JobSpan& job,
            const std::u16string& network, const epanet::Solver& solver) {
  if (!exportTo(job, folder, network, o.drawing)) return 1;
  SolverRun run;
  {
    const Progress progress(words("Calcolo"));
    run = epanet::runSolver(solver, folder);
  }
  if (!o.keep.empty()) {
    if (auto kept = keepFiles(folder, o.keep, platform::narrow(network)); !kept) {
      return fail(kept.error());
    }
  }
  auto input = platform::readFile(folder + "/" + epanet::kRunInput);
  const std::string firstError =
      tell(run, epanet::Document(input ? std::move(*input) : std::string()));
  if (const std::string no = program::faultOf(run, firstError); !no.empty())
    return fail(o.drawing + ": " + no);
  ResultsOptions results;
  results.drawing = o.drawing;
  results.out = o.out;
  results.report = "EPANET";
  results.period = o.period;
  const vessora::Report report = job->openReport(platform::widen(run.output));
  const vessora::ReportPeriods periods = job->periodsOf(report);
  if (!periods.readable || !periods.faults.empty()) {
    return fail("EPANET: " + (periods.faults.empty() ? words("risultati illeggibili")
                                                     : describe(periods.faults.front())));
  }
  // Whoever names none sees the first period.
  if (results.period.empty() && !periods.times.empty()) {
    results.period = platform::narrow(periods.times.front());
  }
  return bringResults(results, job, report, periods, network);
}

}  // namespace

int solveNetwork(const SolveOptions& o) {
  if (!o.out.empty()) {
    if (const std::string no = refusalOf(o.out, {{o.drawing, true}}); !no.empty()) return fail(no);
  }
  JobSpan job(o.mode);
  if (auto opened = job.open(o.drawing); !opened) return fail(opened.error());
  const vessora::PickedNetwork picked = job->pickNetwork(platform::widen(o.network), u"");
  if (picked.why != vessora::PickedNetwork::Why::found) {
    return fail(describe(picked, o.drawing, o.network));
  }
  const SolverSearch search =
      epanet::findSolver({.chosen = o.solver, .productRoot = cad::findInstallation().root});
  if (!search.solver) return fail(program::lackOf(search));
  auto folder = platform::TemporaryFolder::make();
  if (!folder) return fail(folder.error());
  return solveIn(folder->path(), o, job, picked.name, *search.solver);
}

}  // namespace cli
