// Finding the real solver and running it on an input file, as a process of its own.
//
// A solver is a program that is called as `runepanet NET.inp NET.rpt NET.out`, or the npm package
// epanet-js, run under Node by a script of the product's. Nothing here outlives a call: the solver
// and all that it starts end before a run returns.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "epanet/report.h"

namespace epanet {

struct Solver {
  std::string program;  // absolute: the solver itself, or Node
  std::string script;   // of the package
  std::string package;  // folder of the package; empty of a native solver
  bool isPackage() const { return !package.empty(); }
};

struct SolverPlaces {
  // A program, a name on the PATH, or a folder of the package. What the user names wins over the
  // environment (VESSORA_SOLVER), and either must be there.
  std::string chosen;
  // The product root: the script lies there, and a package may be under its node_modules.
  std::string productRoot;
};

struct SolverSearch {
  enum class Lack : std::uint8_t {
    none,
    chosenIsMissing,  // `name` is no program and no folder of the package
    nothing,          // neither a native solver nor Node
    package,          // Node is there; the package is in none of `lookedIn`
    node,             // the package is there, Node is not
    script,           // the product root has no script: `name` is where it was looked for
  };
  std::optional<Solver> solver;
  Lack lack = Lack::none;
  std::string name;
  std::vector<std::string> lookedIn;
};

// Looks for runepanet and epanet2 on the PATH, then for the package: in VESSORA_EPANET_JS, under
// the product root, in NODE_PATH, and where `tools/prepare.sh solver` puts it.
SolverSearch findSolver(const SolverPlaces& places);

// The folder into which the package is installed for a user: npm's prefix.
std::string userPackageFolder();

struct SolverMessage : ReportMessage {
  std::uint32_t inputLine = 0;  // of the input file, from 1: its row, or that of its element; or 0
};

struct SolverRun {
  enum class End : std::uint8_t {
    solved,     // perhaps with warnings, among the messages
    failed,     // the solver says why, in the messages
    noResults,  // it ended without results and without a reason; `words` has what it wrote
    signalled,  // a signal ended it: `status`
    cancelled,
    timedOut,
    notStarted,  // errno in `status`, or 0 where there is no such program any more
  };
  End end = End::notStarted;
  int status = 0;  // its exit status, which says little: solvers differ
  std::vector<SolverMessage> messages;
  std::string words;           // what it wrote to its streams, at most 4000 bytes
  std::string report, output;  // paths, as far as it wrote them
};

struct SolverLimits {
  std::optional<std::chrono::milliseconds> timeout;
  std::function<bool()> cancelled;
};

// The names of the three files in the folder of a run.
inline constexpr const char* kRunInput = "network.inp";
inline constexpr const char* kRunReport = "network.rpt";
inline constexpr const char* kRunOutput = "network.out";

// Runs the solver in `folder`, a private one that has the input file under its name; results of an
// earlier run are taken away first.
SolverRun runSolver(const Solver& solver, const std::string& folder,
                    const SolverLimits& limits = {});

}  // namespace epanet
