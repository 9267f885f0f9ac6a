// A drawn network solved by the real solver: written into a folder of its own, run, and the results
// brought back onto the drawing.
#include "apps/cli/inp_words.h"
#include "apps/cli/outputs.h"
#include "apps/cli/results_job.h"
#include "cad/editor/commands.h"
#include "epanet/solver.h"
#include "platform/files.h"
#include "platform/temporary_files.h"
#include "platform/text.h"

namespace cli {
namespace {

using epanet::SolverRun;
using epanet::SolverSearch;

constexpr std::size_t kShown = 8;

// What is missing, and how to get it.
std::string lackOf(const SolverSearch& search) {
  using Lack = SolverSearch::Lack;
  const std::string get = words("installare Node.js e poi: npm install --prefix ");
  const std::string package = get + epanet::userPackageFolder() + " epanet-js@0.9.0";
  const std::string own =
      words("; oppure indicare un solutore EPANET con --solver o VESSORA_SOLVER");
  switch (search.lack) {
    case Lack::chosenIsMissing:
      return search.name + ": " +
             words(
                 "non è un programma né il pacchetto epanet-js; controllare "
                 "--solver o VESSORA_SOLVER");
    case Lack::package:
      return words("manca il solutore EPANET; ") + package + own;
    case Lack::node:
      return words("c'è il pacchetto epanet-js ma non Node.js; installarlo (apt install nodejs)");
    case Lack::script:
      return search.name + ": " + words("manca; reinstallare");
    default:
      return words("manca il solutore EPANET (runepanet); ") + package + own;
  }
}

// The row that an error is about: the solver shows it, or it is that of the element in the file
// that was solved.
std::string rowOf(const epanet::SolverMessage& message, const epanet::Document& input) {
  if (!message.row.empty() || !message.isError) return message.row;
  for (epanet::RowId row = 0; message.inputLine > 0 && row < input.rows().size(); ++row) {
    if (input.lineOf(row) != message.inputLine) continue;
    epanet::Tokens tokens;
    input.tokens(row, tokens);
    std::string text;
    for (int i = 0; i < tokens.count; ++i) {
      (text += i > 0 ? " " : "") += tokens.text(i);
    }
    return text;
  }
  return {};
}

// "8:00:00 Node 5: ..." with the row.
std::string wordsOf(const epanet::SolverMessage& message, const epanet::Document& input) {
  std::string text;
  if (message.isError) text += words("errore ") + std::to_string(message.code) + ": ";
  if (!message.time.empty()) text += message.time + " ";
  text += message.words;
  if (!message.element.empty() && message.words.find(message.element) == std::string::npos) {
    text += " (" + message.elementKind + " " + message.element + ")";
  }
  // The solver's words of an error end where the row follows.
  if (text.ends_with(':')) text.pop_back();
  if (const std::string row = rowOf(message, input); !row.empty()) {
    text += words(", riga: ") + row;
  }
  return text;
}

// Errors and warnings of a run, on standard error; the first error is left for the program's last
// word.
std::string tell(const SolverRun& run, const epanet::Document& input) {
  std::string first;
  std::size_t shown = 0;
  for (const epanet::SolverMessage& message : run.messages) {
    if (message.isError && first.empty()) {
      first = wordsOf(message, input);
    } else if (shown++ < kShown) {
      warn("EPANET: " + wordsOf(message, input));
    }
  }
  if (shown > kShown) {
    warn("EPANET: " + words("altri messaggi: ") + std::to_string(shown - kShown) +
         words("; sono nel report (--keep)"));
  }
  return first;
}

std::string faultOf(const SolverRun& run, const std::string& firstError) {
  switch (run.end) {
    case SolverRun::End::solved:
      return {};
    case SolverRun::End::failed:
      return "EPANET: " + firstError;
    case SolverRun::End::signalled:
      return words("il solutore è stato interrotto dal segnale ") + std::to_string(run.status);
    case SolverRun::End::cancelled:
    case SolverRun::End::timedOut:
      return words("il solutore è stato fermato");
    case SolverRun::End::notStarted:
      return words("il solutore non si può avviare; controllare --solver o VESSORA_SOLVER");
    case SolverRun::End::noResults:
      break;
  }
  return words("il solutore è finito senza risultati") +
         (run.words.empty() ? "" : ": " + run.words.substr(0, run.words.find('\n')));
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
  if (const std::string no = faultOf(run, firstError); !no.empty())
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
  if (!search.solver) return fail(lackOf(search));
  auto folder = platform::TemporaryFolder::make();
  if (!folder) return fail(folder.error());
  return solveIn(folder->path(), o, job, picked.name, *search.solver);
}

}  // namespace cli
