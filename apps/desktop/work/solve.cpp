#include "apps/desktop/work/solve.h"

#include "apps/desktop/text.h"
#include "apps/desktop/work/progress.h"
#include "apps/program/inp_words.h"
#include "apps/program/solver_words.h"
#include "apps/program/words.h"
#include "cad/editor/session.h"
#include "epanet/solver.h"
#include "module/jobs.h"
#include "platform/files.h"
#include "platform/text.h"

namespace desktop {
namespace {

// Writes the network's input file into the folder.
bool writeInput(std::u16string_view network, Solved& solved) {
  const std::u16string path = platform::widen(solved.folder->path() + "/" + epanet::kRunInput);
  const vessora::ExportResult result =
      vessora::Jobs::find()->exportNetwork({.network = network, .path = path, .csvPath = {}});
  solved.messages = program::described(result.notices);
  for (const epanet::Remark& remark : result.remarks) {
    solved.messages.push_back(program::describe(remark));
  }
  if (result.written) return true;
  solved.fault = solved.messages.empty() ? program::words("la rete non si può esportare")
                                         : solved.messages.back();
  return false;
}

void tell(const epanet::SolverRun& run, Solved& solved) {
  auto input = platform::readFile(solved.folder->path() + "/" + epanet::kRunInput);
  const epanet::Document document(input ? std::move(*input) : std::string());
  std::string first;
  for (const epanet::SolverMessage& message : run.messages) {
    const std::string text = program::describe(message, document);
    if (message.isError && first.empty()) first = text;
    solved.messages.push_back("EPANET: " + text);
  }
  solved.fault = program::faultOf(run, first);
}

}  // namespace

Solved solveNetwork(std::u16string_view network, QWidget* parent) {
  Solved solved;
  const epanet::SolverSearch search =
      epanet::findSolver({.chosen = {}, .productRoot = cad::findInstallation().root});
  if (!search.solver) {
    solved.fault = program::lackOf(search);
    return solved;
  }
  auto folder = platform::TemporaryFolder::make();
  if (!folder) {
    solved.fault = folder.error();
    return solved;
  }
  solved.folder = std::make_shared<platform::TemporaryFolder>(std::move(*folder));
  if (!writeInput(network, solved)) return solved;
  epanet::SolverRun run;
  const std::string path = solved.folder->path();
  solved.cancelled =
      !runBeside(parent, words(u"Calcolo della rete"), [&](const std::atomic<bool>& cancelled) {
        run = epanet::runSolver(*search.solver, path,
                                {.timeout = {}, .cancelled = [&] { return cancelled.load(); }});
      });
  tell(run, solved);
  solved.output = run.output;
  solved.report = run.report;
  return solved;
}

}  // namespace desktop
