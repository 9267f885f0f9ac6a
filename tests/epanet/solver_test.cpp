// Solvers that work, fail, hang, die or are not there. Most are shell scripts; the real one runs
// where its package is installed.
#include "epanet/solver.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/process.h"
#include "tests/platform/scratch_folder.h"

namespace {

using namespace epanet;
using End = SolverRun::End;
using Lack = SolverSearch::Lack;

// A variable of the environment for the time of a test.
class Variable {
 public:
  Variable(const char* name, const std::string& value) : name_(name) {
    if (const char* const before = std::getenv(name)) before_ = before;
    setenv(name, value.c_str(), 1);
  }
  ~Variable() { before_ ? setenv(name_, before_->c_str(), 1) : unsetenv(name_); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  const char* name_;
  std::optional<std::string> before_;
};

class SolverTest : public platform::ScratchFolder {
 protected:
  std::string write(const std::string& name, const std::string& text, mode_t mode = 0644) {
    std::ofstream(at(name), std::ios::binary) << text;
    chmod(at(name).c_str(), mode);
    return at(name);
  }
  // A native solver that does what the script says: $1 is the input file, $2 the report, $3 the
  // results.
  Solver fake(const std::string& script) {
    return {write("fake", "#!/bin/sh\n" + script + "\n", 0755), {}, {}};
  }
  void input(const std::string& text) { write(kRunInput, text); }
  void folder(const std::string& name) { std::filesystem::create_directories(at(name)); }
};

const std::string kWhole = "printf 'YH\\303\\036YH\\303\\036' > $3";  // the mark of results, twice

const std::string kTown =
    "[JUNCTIONS]\nA 10 5\nB 12 6\n[RESERVOIRS]\nR 60\n[PIPES]\np R A 500 300 120\n"
    "q A B 400 250 110\n[OPTIONS]\nUNITS LPS\n[TIMES]\nDURATION 2\n";

TEST_F(SolverTest, ItsResultsAndWarningsAreTold) {
  input(kTown);
  const SolverRun run = runSolver(
      fake("pwd > where; cat $1 > seen; " + kWhole +
           "; echo '  WARNING: Negative pressures at 1:00:00 hrs.' > $2; echo words; exit 6"),
      folder_);
  EXPECT_EQ(run.end, End::solved) << "an exit status is the last warning's";
  EXPECT_EQ(run.status, 6);
  ASSERT_EQ(run.messages.size(), 1U);
  EXPECT_FALSE(run.messages[0].isError);
  EXPECT_EQ(run.messages[0].time, "1:00:00");
  EXPECT_EQ(content("where"), folder_ + "\n");
  EXPECT_EQ(content("seen"), kTown);
  EXPECT_EQ(run.words, "words\n");
  EXPECT_EQ(run.report, at(kRunReport));
  EXPECT_EQ(run.output, at(kRunOutput));
}

TEST_F(SolverTest, ErrorsAreToldWithTheirRow) {
  input(kTown + "[PIPES]\n  z A  nobody 1 1 1 ; a remark\n");
  const SolverRun run =
      runSolver(fake("echo '  Error 203: undefined node nobody in [PIPES] section:' > $2\n"
                     "echo '  z A  nobody 1 1 1 ; a remark' >> $2\n"
                     "echo '  Error 200: one or more errors in input file' >> $2"),
                folder_);
  EXPECT_EQ(run.end, End::failed) << "whatever the exit status";
  ASSERT_EQ(run.messages.size(), 2U);
  EXPECT_EQ(run.messages[0].code, 203);
  EXPECT_EQ(run.messages[0].inputLine, 14U);
  EXPECT_EQ(run.messages[1].inputLine, 0U);
}

TEST_F(SolverTest, ARunThatEndsBadlyLeavesNoResults) {
  input(kTown);
  // What an earlier run left is not taken for results.
  write(kRunOutput, "old");
  write(kRunReport, "  Error 200: of old");
  SolverRun run = runSolver(fake("echo 'no licence' >&2; exit 3"), folder_);
  EXPECT_EQ(std::tuple(run.end, run.status, run.words),
            std::tuple(End::noResults, 3, "no licence\n"));
  EXPECT_TRUE(run.report.empty() && run.output.empty() && run.messages.empty());
  // Results without their end are none.
  run = runSolver(fake("printf 'YH\\303\\036 and so on' > $3"), folder_);
  EXPECT_EQ(run.end, End::noResults);
  run = runSolver(fake(": > $3"), folder_);
  EXPECT_EQ(run.end, End::noResults);
  run = runSolver(fake("kill -9 $$"), folder_);
  EXPECT_EQ(std::tuple(run.end, run.status), std::tuple(End::signalled, 9));
  run = runSolver({at("gone"), {}, {}}, folder_);
  EXPECT_EQ(run.end, End::notStarted);
}

TEST_F(SolverTest, AHangEndsWhenAskedTo) {
  input(kTown);
  SolverLimits limits;
  limits.cancelled = [this] { return platform::fileExists(at("began")); };
  SolverRun run = runSolver(fake(": > began; while :; do sleep 1000; done"), folder_, limits);
  EXPECT_EQ(run.end, End::cancelled);
  limits = {};
  limits.timeout = std::chrono::milliseconds(200);
  EXPECT_EQ(runSolver(fake("sleep 1000"), folder_, limits).end, End::timedOut);
}

TEST_F(SolverTest, IsFoundWhereItWasPut) {
  folder("bin");
  folder("home");
  const Variable home("HOME", at("home")), data("XDG_DATA_HOME", ""), path("PATH", at("bin"));
  const Variable named("VESSORA_SOLVER", ""), package("VESSORA_EPANET_JS", ""),
      node("NODE_PATH", "");
  const SolverPlaces places{"", at("root")};
  EXPECT_EQ(findSolver(places).lack, Lack::nothing);

  // The package is found in each of its places, and runs under Node with the script.
  folder("home/.local/share/vessora/node_modules/epanet-js");
  write("home/.local/share/vessora/node_modules/epanet-js/package.json", "{}");
  EXPECT_EQ(findSolver(places).lack, Lack::node);
  write("bin/node", "", 0755);
  EXPECT_EQ(findSolver(places).lack, Lack::script);
  folder("root");
  write("root/solve.cjs", "");
  auto search = findSolver(places);
  ASSERT_TRUE(search.solver);
  EXPECT_EQ(search.solver->program, at("bin/node"));
  EXPECT_EQ(search.solver->script, at("root/solve.cjs"));
  EXPECT_EQ(search.solver->package, at("home/.local/share/vessora/node_modules/epanet-js"));
  folder("modules/epanet-js");
  write("modules/epanet-js/package.json", "{}");
  {
    const Variable paths("NODE_PATH", at("none") + ":" + at("modules"));
    EXPECT_EQ(findSolver(places).solver->package, at("modules/epanet-js"));
  }
  for (const char* const folder : {"modules/epanet-js", "modules"}) {
    const Variable own("VESSORA_EPANET_JS", at(folder));
    EXPECT_EQ(findSolver(places).solver->package, at("modules/epanet-js"));
  }

  // A native solver comes before it, and what the user names before all.
  write("bin/epanet2", "", 0755);
  EXPECT_EQ(findSolver(places).solver->program, at("bin/epanet2"));
  write("bin/runepanet", "", 0755);
  EXPECT_EQ(findSolver(places).solver->program, at("bin/runepanet"));
  EXPECT_EQ(findSolver({at("modules"), at("root")}).solver->package, at("modules/epanet-js"));
  EXPECT_EQ(findSolver({"epanet2", at("root")}).solver->program, at("bin/epanet2"));
  search = findSolver({"no-such-solver", at("root")});
  EXPECT_EQ(std::tuple(search.lack, search.name),
            std::tuple(Lack::chosenIsMissing, "no-such-solver"));
  const Variable wrong("VESSORA_SOLVER", at("bin/none"));
  EXPECT_EQ(findSolver(places).lack, Lack::chosenIsMissing) << "no other takes its place";
}

TEST_F(SolverTest, NodeWithoutThePackageIsTold) {
  folder("bin");
  write("bin/nodejs", "", 0755);
  const Variable home("HOME", at("home")), data("XDG_DATA_HOME", ""), path("PATH", at("bin"));
  const Variable named("VESSORA_SOLVER", ""), package("VESSORA_EPANET_JS", ""),
      node("NODE_PATH", "");
  const auto search = findSolver({"", at("root")});
  EXPECT_EQ(search.lack, Lack::package);
  EXPECT_EQ(search.lookedIn,
            (std::vector<std::string>{at("root"), at("home/.local/share/vessora")}));
}

TEST_F(SolverTest, TheRealOneSolvesAndSaysWhyNot) {
  const std::string modules = std::string(VESSORA_TESTS_DIR) + "/solver/node_modules/epanet-js-2.3";
  const auto search = findSolver({modules, VESSORA_ROOT_DIRECTORY});
  if (!search.solver) GTEST_SKIP() << "it needs Node and the packages of tests/solver";
  input(kTown);
  SolverRun run = runSolver(*search.solver, folder_);
  EXPECT_EQ(run.end, End::solved) << run.words;
  EXPECT_TRUE(run.messages.empty());
  input(kTown + "[JUNCTIONS]\nlone 1\n");
  run = runSolver(*search.solver, folder_);
  EXPECT_EQ(run.end, End::failed);
  ASSERT_FALSE(run.messages.empty());
  EXPECT_EQ(run.messages[0].element, "lone");
  EXPECT_EQ(run.messages[0].inputLine, 14U);
  input(kTown + "[PUMPS]\nu R A HEAD nowhere\n");
  run = runSolver(*search.solver, folder_);
  EXPECT_EQ(run.end, End::failed);
  ASSERT_FALSE(run.messages.empty());
  EXPECT_EQ(std::tuple(run.messages[0].code, run.messages[0].inputLine), std::tuple(206, 14U));
  Solver broken = *search.solver;
  broken.package = at("nowhere");
  run = runSolver(broken, folder_);
  EXPECT_EQ(std::tuple(run.end, run.status), std::tuple(End::noResults, 3)) << run.words;
}

}  // namespace
