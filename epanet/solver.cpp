#include "epanet/solver.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "epanet/network.h"
#include "platform/files.h"
#include "platform/process.h"

namespace epanet {

// --- finding -------------------------------------------------------------------------------------

namespace {

constexpr const char* kPackage = "epanet-js";

std::string variable(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

// The package in a folder: that itself, or under it. Empty when it is not there.
std::string packageIn(const std::string& folder) {
  if (folder.empty()) return {};
  const std::string at = platform::absolutePath(folder);
  const std::string modules = at + "/node_modules/" + kPackage, inside = at + "/" + kPackage;
  for (const std::string& place : {modules, inside, at}) {
    if (platform::fileExists(place + "/package.json")) return place;
  }
  return {};
}

std::vector<std::string> packageFolders(const std::string& productRoot) {
  std::vector<std::string> folders{variable("VESSORA_EPANET_JS"), productRoot};
  std::string paths = variable("NODE_PATH");
  while (!paths.empty()) {
    const std::size_t colon = paths.find(':');
    folders.push_back(paths.substr(0, colon));
    paths = colon == paths.npos ? std::string() : paths.substr(colon + 1);
  }
  folders.push_back(userPackageFolder());
  std::erase_if(folders, [](const std::string& folder) { return folder.empty(); });
  return folders;
}

SolverSearch lacking(SolverSearch::Lack lack, std::string name = {}) {
  SolverSearch search;
  search.lack = lack;
  search.name = std::move(name);
  return search;
}

SolverSearch found(Solver solver) {
  SolverSearch search;
  search.solver = std::move(solver);
  return search;
}

// The package under Node, if both are there, and the script.
SolverSearch withPackage(const std::string& package, const std::string& productRoot) {
  std::string node = platform::findProgram("node");
  if (node.empty()) node = platform::findProgram("nodejs");
  if (node.empty()) return lacking(SolverSearch::Lack::node, package);
  const std::string script = platform::absolutePath(productRoot) + "/solve.cjs";
  if (!platform::fileExists(script)) return lacking(SolverSearch::Lack::script, script);
  return found({node, script, package});
}

SolverSearch findChosen(const std::string& name, const std::string& productRoot) {
  if (const std::string program = platform::findProgram(name); !program.empty()) {
    return found({program, {}, {}});
  }
  const std::string package = packageIn(name);
  if (package.empty()) return lacking(SolverSearch::Lack::chosenIsMissing, name);
  return withPackage(package, productRoot);
}

}  // namespace

std::string userPackageFolder() {
  const std::string data = variable("XDG_DATA_HOME");
  if (data.starts_with('/')) return data + "/vessora";
  const std::string home = variable("HOME");
  return home.empty() ? std::string() : home + "/.local/share/vessora";
}

SolverSearch findSolver(const SolverPlaces& places) {
  if (!places.chosen.empty()) return findChosen(places.chosen, places.productRoot);
  const std::string named = variable("VESSORA_SOLVER");
  if (!named.empty()) return findChosen(named, places.productRoot);
  for (const char* const name : {"runepanet", "epanet2"}) {
    const std::string program = platform::findProgram(name);
    if (!program.empty()) return found({program, {}, {}});
  }
  const std::vector<std::string> folders = packageFolders(places.productRoot);
  for (const std::string& folder : folders) {
    const std::string package = packageIn(folder);
    if (!package.empty()) return withPackage(package, places.productRoot);
  }
  const bool node =
      !platform::findProgram("node").empty() || !platform::findProgram("nodejs").empty();
  SolverSearch search = lacking(node ? SolverSearch::Lack::package : SolverSearch::Lack::nothing);
  search.lookedIn = folders;
  return search;
}

// --- running -------------------------------------------------------------------------------------

namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool endsWithWord(std::string_view words, std::string_view word) {
  if (word.empty() || !words.ends_with(word)) return false;
  words.remove_suffix(word.size());
  return words.empty() || words.back() == ' ';
}

// The row that a message shows.
RowId shownRow(const ReportMessage& message, const Document& document) {
  const std::string_view row = trimmed(message.row);
  for (RowId id = 0; !row.empty() && id < document.rows().size(); ++id) {
    const RowKind kind = document.rows()[id].kind;
    if (kind != RowKind::data && kind != RowKind::heading) continue;
    if (trimmed(document.contentOf(id)).starts_with(row)) return id;
  }
  return kNoRow;
}

// What our reader found of the same kind, about the word that ends the message.
const Problem* sameProblem(const ReportMessage& message, const Network& network) {
  constexpr int kUnconnected = 233, kUnconnectedNode = 234;  // of the network, and of each node
  const int code = message.code == kUnconnectedNode ? kUnconnected : message.code;
  for (const Problem& problem : network.problems) {
    const bool named = endsWithWord(message.words, problem.text) ||
                       message.words.find(" " + problem.text + ":") != std::string::npos;
    if (solverCode(problem.fault) == code && !problem.text.empty() && named) return &problem;
  }
  return nullptr;
}

RowId elementRow(const ReportMessage& message, const Network& network) {
  if (message.element.empty()) return kNoRow;
  const std::uint32_t node = network.findNode(message.element);
  const std::uint32_t link = network.findLink(message.element);
  const bool ofNode = message.elementKind == "Node" || message.elementKind == "node";
  if (node != kNone && (ofNode || link == kNone)) return network.nodes[node].row;
  return link == kNone ? kNoRow : network.links[link].row;
}

// A message with the line of the input file where its reason stands.
SolverMessage located(const ReportMessage& message, const Network& network) {
  SolverMessage result{message, 0};
  RowId row = shownRow(message, network.document());
  if (row == kNoRow && message.isError) {
    if (const Problem* const problem = sameProblem(message, network)) {
      row = problem->row;
      if (problem->fault == Fault::unconnectedNode) result.element = problem->text;
    }
  }
  if (row == kNoRow) row = elementRow(message, network);
  if (row != kNoRow) result.inputLine = network.document().lineOf(row);
  return result;
}

void readMessages(SolverRun& run, const std::string& input) {
  auto bytes = platform::readFile(run.report);
  if (!bytes) return;
  const Report report(std::move(*bytes));
  if (report.messages().empty()) return;
  auto text = platform::readFile(input);
  const Document document(text ? std::move(*text) : std::string());
  const Network network(document);
  for (const ReportMessage& message : report.messages()) {
    run.messages.push_back(located(message, network));
  }
}

// Whether the results are there to their end: an unfinished run leaves a file too.
bool isWhole(const std::string& output) {
  constexpr std::uint32_t kMagic = 516114521;
  std::ifstream file(output, std::ios::binary);
  const auto readsMagic = [&] {
    std::array<unsigned char, 4> bytes{};
    file.read(reinterpret_cast<char*>(bytes.data()), bytes.size());
    const std::uint32_t number =
        bytes[0] | bytes[1] << 8U | bytes[2] << 16U | static_cast<std::uint32_t>(bytes[3]) << 24U;
    return file.good() && number == kMagic;
  };
  if (!readsMagic()) return false;
  file.seekg(-4, std::ios::end);
  return readsMagic();
}

SolverRun::End endOf(const platform::ProcessResult& process, const SolverRun& run) {
  using From = platform::ProcessResult::End;
  using To = SolverRun::End;
  switch (process.end) {
    case From::exited:
      break;
    case From::signalled:
      return To::signalled;
    case From::cancelled:
      return To::cancelled;
    case From::timedOut:
      return To::timedOut;
    default:
      return To::notStarted;
  }
  // Exit statuses tell nothing: some solvers always end with 0, others with their last warning.
  for (const SolverMessage& message : run.messages) {
    if (message.isError) return To::failed;
  }
  return !run.output.empty() && isWhole(run.output) ? To::solved : To::noResults;
}

}  // namespace

SolverRun runSolver(const Solver& solver, const std::string& folder, const SolverLimits& limits) {
  const std::string at = folder + "/", report = at + kRunReport, output = at + kRunOutput;
  std::remove(report.c_str());
  std::remove(output.c_str());
  std::vector<std::string> arguments{kRunInput, kRunReport, kRunOutput};
  if (solver.isPackage()) {
    arguments.insert(arguments.begin(), {solver.script, solver.package});
  }
  platform::ProcessOptions options;
  options.folder = folder;
  // Numbers with a point, and no debugger or other module in a Node of ours.
  options.environment = {{"LC_ALL", "C"}, {"NODE_OPTIONS", ""}};
  options.outputLimit = 4000;
  options.timeout = limits.timeout;
  options.cancelled = limits.cancelled;
  const platform::ProcessResult process = platform::runProcess(solver.program, arguments, options);

  SolverRun run;
  run.status = process.code;
  run.words = process.errors.empty() ? process.output : process.errors;
  if (platform::fileExists(report)) run.report = report;
  if (platform::fileExists(output)) run.output = output;
  if (!run.report.empty()) readMessages(run, at + kRunInput);
  run.end = endOf(process, run);
  return run;
}

}  // namespace epanet
