#include "epanet/convert.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace epanet;

// Rows of the converted file that are not in the old one, and the remarks.
struct Outcome {
  std::string text;
  std::vector<std::string> rows;
  std::vector<Remark> remarks;
};

Outcome converted(const std::string& text, FlowUnits target,
                  SolverVersion runBy = SolverVersion::v23) {
  const Document document(text);
  Record record;
  const Network network(document, &record);
  Converted result = convert(document, network, record, target, runBy);
  Outcome outcome{std::move(result.edit.text), {}, std::move(result.remarks)};
  for (const Change& change : result.edit.changes) outcome.rows.push_back(change.after);
  return outcome;
}

using Rows = std::vector<std::string>;

const std::string kTown =
    "[JUNCTIONS]\n"
    " A   \t10   5   ; first\n"
    "B 12 0\n"
    "[RESERVOIRS]\nR 60\n"
    "[PIPES]\n"
    "p R A 100 200 120\n"
    "q A B 100\n"
    "[OPTIONS]\nUnits LPS\n";

TEST(Convert, ChangesNothingInTheUnitsOfTheFile) {
  const Outcome outcome = converted(kTown, FlowUnits::lps);
  EXPECT_EQ(outcome.text, kTown);
  EXPECT_TRUE(outcome.remarks.empty());
}

TEST(Convert, OfTheSameSystemOnlyFlowsChange) {
  EXPECT_EQ(converted(kTown, FlowUnits::cmh).rows,
            (Rows{" A   \t10   17.9997881 ; first", "Units CMH"}));
}

// The options stand behind the pipes: the solver has filled in 10 inches, and takes them for mm.
TEST(Convert, WritesOutWhatShortRowsLeaveToTheSolver) {
  const Outcome outcome = converted(kTown, FlowUnits::gpm);
  const Rows& rows = outcome.rows;
  EXPECT_NE(std::find(rows.begin(), rows.end(), "q A B 328.08399 0.393700787 130"), rows.end());
  EXPECT_NE(std::find(rows.begin(), rows.end(), "B 39.3700787 0"), rows.end());
}

TEST(Convert, PutsInTheUnitsThatTheFileLeavesOut) {
  const Outcome outcome = converted("[JUNCTIONS]\nA 100\n[END]\n", FlowUnits::lps);
  EXPECT_EQ(outcome.text, "[JUNCTIONS]\nA 30.48\n\n[OPTIONS]\n UNITS            LPS\n\n[END]\n");
}

TEST(Convert, PressuresKeepTheUnitThatTheFileChose) {
  const std::string valve = "[JUNCTIONS]\nA\nB\n[VALVES]\nv A B 100 PRV 50\n[OPTIONS]\n";
  const auto last = [&](const std::string& options, FlowUnits target, SolverVersion runBy) {
    return converted(valve + options, target, runBy).rows;
  };
  // The system's own gives way to the system's own.
  EXPECT_EQ(last("UNITS LPS\nPRESSURE METERS\n", FlowUnits::gpm, SolverVersion::v23),
            (Rows{"v A B 3.93700787 PRV 71.0793963", "UNITS GPM", "PRESSURE PSI"}));
  // Another unit stays, where the release takes notice of it.
  EXPECT_EQ(last("UNITS LPS\nPRESSURE KPA\n", FlowUnits::gpm, SolverVersion::v23),
            (Rows{"v A B 3.93700787 PRV 50", "UNITS GPM"}));
  EXPECT_EQ(last("UNITS LPS\nPRESSURE KPA\n", FlowUnits::gpm, SolverVersion::v22),
            (Rows{"v A B 3.93700787 PRV 7.25163162", "UNITS GPM", "PRESSURE PSI"}));
  // Older releases take psi in SI for metres.
  EXPECT_EQ(last("UNITS LPS\nPRESSURE PSI\n", FlowUnits::gpm, SolverVersion::v22),
            (Rows{"v A B 3.93700787 PRV 71.0793963", "UNITS GPM"}));
  EXPECT_EQ(last("UNITS LPS\nPRESSURE PSI\n", FlowUnits::cmh, SolverVersion::v23),
            (Rows{"UNITS CMH"}));
}

// A required pressure that no row gives is 0.1 of whatever the unit is.
TEST(Convert, WritesOutTheRequiredPressureOfPartialDemands) {
  const std::string metres = "[OPTIONS]\nUNITS LPS\nDEMAND MODEL PDA\nMINIMUM PRESSURE 5\n";
  const std::string psi = converted(metres, FlowUnits::gpm).text;
  EXPECT_NE(psi.find("MINIMUM PRESSURE 7.10793963\n"), std::string::npos) << psi;
  EXPECT_NE(psi.find("REQUIRED PRESSURE 7.25009843\n"), std::string::npos) << psi;
}

TEST(Convert, OneStatusForLinksOfSeveralKindsIsDivided) {
  const std::string links =
      "[JUNCTIONS]\nA\nB\nC\n[VALVES]\na A B 100 PRV 50\nb B C 100 FCV 5\n[PUMPS]\nc A C POWER 1\n"
      "[OPTIONS]\nUNITS LPS\n[STATUS]\n";
  Outcome outcome = converted(links + "a b 2\n", FlowUnits::cmh);
  EXPECT_EQ(outcome.text.substr(outcome.text.find("[STATUS]")), "[STATUS]\na b 2\nb 7.19991525\n");
  ASSERT_EQ(outcome.remarks.size(), 1U);
  EXPECT_EQ(outcome.remarks[0].what, Remark::What::statusRange);
  // A pump's speed keeps its number.
  outcome = converted(links + "b c 2\n", FlowUnits::cmh);
  EXPECT_EQ(outcome.text.substr(outcome.text.find("[STATUS]")), "[STATUS]\nb c 2\nb 7.19991525\n");
  outcome = converted(links + "b bb 2\n", FlowUnits::cmh);
  EXPECT_EQ(outcome.text.substr(outcome.text.find("[STATUS]")), "[STATUS]\nb bb 7.19991525\n");
}

TEST(Convert, TellsWhatCannotBeCarriedOver) {
  const Outcome outcome = converted(
      "[JUNCTIONS]\nA 1 x\nB 1\n[RESERVOIRS]\nR 1\n[PUMPS]\nu A B HEAD two\n"
      "[TANKS]\nT 1 1 0 2 3 0 two\n[CURVES]\nfree 1 2\ntwo 0 5\ntwo 5 1\n"
      "[OPTIONS]\nUNITS GPM\nDEMAND MODEL PDA\nREQUIRED PRESSURE 0.1\nHEADLOSS D-W\n"
      "[REACTIONS]\nROUGHNESS CORRELATION -1\n",
      FlowUnits::lps);
  std::vector<Remark::What> kinds;
  for (const Remark& remark : outcome.remarks) kinds.push_back(remark.what);
  using What = Remark::What;
  for (const What what : {What::rowWithError, What::curveWithoutUse, What::curveOfTwoUses,
                          What::pressureLimits, What::wallCorrelation}) {
    EXPECT_NE(std::find(kinds.begin(), kinds.end(), what), kinds.end()) << static_cast<int>(what);
  }
  EXPECT_NE(outcome.text.find("free 1 2\n"), std::string::npos);
  EXPECT_NE(outcome.text.find("REQUIRED PRESSURE 0.1\n"), std::string::npos);
}

}  // namespace
